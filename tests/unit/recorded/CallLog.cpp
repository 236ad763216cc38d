#include "CallLog.h"

#include "FakeGL.h"

#include <map>

namespace {

using FakeGL::Call;

// How many bytes GL reads behind the last argument, in the calls that Record.cpp makes: two elements of each.
std::size_t capturedBytes(const std::string& function) {
    static const std::map<std::string, std::size_t> sizes = {
        {"glTexImage2D", 48},        {"glTexSubImage2D", 6},        {"glLoadMatrixf", 64},
        {"glMultMatrixf", 64},       {"glMultMatrixd", 128},        {"glUniformMatrix2fv", 32},
        {"glVertex2fv", 8},          {"glUniformMatrix2fvARB", 32}, {"glDeleteTextures", 8},
        {"glDeleteQueries", 8},      {"glDrawBuffersARB", 8},       {"glDeleteFramebuffersEXT", 8},
        {"glGetUniformLocation", 6}, {"glGetUniformLocationARB", 6}};
    const auto found = sizes.find(function);
    if (found != sizes.end())
        return found->second;
    const auto digitBehind = [&](const std::string& family) {
        return function.starts_with(family) ? std::size_t(function[family.size()] - '0') : 0;
    };
    if (function.find("v") == std::string::npos)
        return 0;
    return 8 * digitBehind("glUniform") + 4 * digitBehind("glMultiTexCoord");
}

void writeBytes(std::ostream& out, const char* data, std::size_t size) {
    out << " \"" << std::hex;
    for (std::size_t i = 0; i < size; ++i)
        out << ' ' << static_cast<unsigned>(static_cast<unsigned char>(data[i]));
    out << '"' << std::dec;
}

void writeSources(std::ostream& out, const Call& call) {
    const auto* const strings = call.arguments.at(2).as<const char* const*>();
    const auto* const lengths = call.arguments.at(3).as<const int*>();
    for (int i = 0; i < call.arguments.at(1).as<int>(); ++i) {
        const std::size_t size = lengths ? static_cast<std::size_t>(lengths[i]) : std::strlen(strings[i]);
        writeBytes(out, strings[i], size);
    }
    out << (lengths ? " lengths" : "");
}

} // namespace

void logCallsTo(std::ostream& out) {
    FakeGL::setHook([&out](const Call& call) {
        out << call.function;
        for (const FakeGL::Value& value : call.arguments)
            if (!value.isPointer())
                out << ' ' << value;
            else if (const char* const data = value.as<const char*>(); !data)
                out << " null";
            else if (const std::size_t size =
                         &value == &call.arguments.back() ? capturedBytes(call.function) : 0)
                writeBytes(out, data, size);
            else
                out << " address";
        if (call.function.starts_with("glShaderSource"))
            writeSources(out, call);
        out << '\n';
    });
}
