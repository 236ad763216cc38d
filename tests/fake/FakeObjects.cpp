#include "FakeObjects.h"

#include "extensionator/TokenName.h"

#include <algorithm>
#include <cstring>
#include <sstream>

namespace {

using FakeGL::Call;
using FakeGL::Value;

// Targets, and the queries for what is bound to them.
const std::map<unsigned int, unsigned int> queries = {{0x0DE0, 0x8068}, {0x0DE1, 0x8069}, {0x806F, 0x806A},
                                                      {0x8C18, 0x8C1C}, {0x8C1A, 0x8C1D}, {0x84F5, 0x84F6},
                                                      {0x88EC, 0x88EF}, {0x88EB, 0x88ED}, {0x8892, 0x8894},
                                                      {0x8893, 0x8895}, {0x8D40, 0x8CA6}, {0x8D41, 0x8CA7}};
constexpr unsigned int currentProgram = 0x8B8D;

std::string number(std::uint64_t value) {
    if (value < 256 || value > 0xFFFF)
        return std::to_string(static_cast<std::int64_t>(value));
    const std::string name = ZLT::OGL::TokenName(static_cast<unsigned int>(value));
    return name == "Unknown Token" ? std::to_string(value) : name;
}

std::string textOf(const Value& value) {
    if (value.is<const void*>()) {
        const auto address = reinterpret_cast<std::uintptr_t>(value.as<const void*>());
        return address == 0 ? "null" : address > 0xFFFF ? "p" : std::to_string(address);
    }
    if (value.is<float>() || value.is<double>()) {
        std::ostringstream out;
        out << (value.is<float>() ? value.as<float>() : value.as<double>());
        return out.str();
    }
    if (value.is<unsigned int>())
        return number(value.as<unsigned int>());
    if (value.is<unsigned char>())
        return number(value.as<unsigned char>());
    const std::int64_t whole = value.is<int>() ? value.as<int>() : value.as<std::int64_t>();
    return whole < 0 ? std::to_string(whole) : number(static_cast<std::uint64_t>(whole));
}

std::string textOf(const Call& call) {
    std::string text = call.function + '(';
    for (const Value& argument : call.arguments)
        text += (&argument == call.arguments.data() ? "" : ", ") + textOf(argument);
    return text + ')';
}

bool isQuestion(const std::string& function) {
    return function.starts_with("glIs") ||
           (function.starts_with("glGet") && function != "glGetTexImage" && function != "glGetBufferSubData");
}

} // namespace

FakeObjects::FakeObjects() : taken_(FakeGL::calls().size()) {
    FakeGL::setHook([this](const Call& call) { answer(call); });
}

FakeObjects::~FakeObjects() { FakeGL::setHook({}); }

void FakeObjects::answer(const Call& call) {
    const std::string& function = call.function;
    const auto token = [&](std::size_t i) { return call.arguments[i].as<unsigned int>(); };
    if (function.starts_with("glGen") && call.arguments.size() == 2) {
        auto* names = call.arguments[1].as<unsigned int*>();
        for (int i = 0; i < call.arguments[0].as<int>(); ++i)
            names[i] = nextName == 0 ? 0 : nextName++;
    } else if (function.starts_with("glBind") && queries.contains(token(0))) {
        integers[queries.at(token(0))] = static_cast<int>(token(1));
    } else if (function == "glUseProgram") {
        integers[currentProgram] = static_cast<int>(token(0));
    } else if (function == "glGetIntegerv") {
        if (const auto found = integers.find(token(0)); found != integers.end())
            *call.arguments[1].as<int*>() = found->second;
    } else if (function == "glGetShaderiv" || function == "glGetProgramiv") {
        if (const auto found = parameters.find(token(1)); found != parameters.end())
            *call.arguments[2].as<int*>() = found->second;
    } else if (function == "glGetShaderInfoLog" || function == "glGetProgramInfoLog") {
        const int size = call.arguments[1].as<int>(); // with the 0 at the end; GL refuses a negative one
        if (size > 0) {
            const std::string log = infoLog.substr(0, static_cast<std::size_t>(size - 1));
            std::memcpy(call.arguments[3].as<char*>(), log.c_str(), log.size() + 1);
        }
    } else if (function == "glGetAttachedShaders") {
        const auto count = std::min(attached.size(), static_cast<std::size_t>(call.arguments[1].as<int>()));
        *call.arguments[2].as<int*>() = static_cast<int>(count);
        std::copy_n(attached.begin(), count, call.arguments[3].as<unsigned int*>());
    } else if (function == "glAttachShader") {
        attached.push_back(token(1));
    } else if (function == "glDetachShader") {
        std::erase(attached, token(1));
    } else if (more) {
        more(call);
    }
}

std::vector<std::string> FakeObjects::takeAllCalls() {
    std::vector<std::string> texts;
    for (; taken_ < FakeGL::calls().size(); ++taken_)
        texts.push_back(textOf(FakeGL::calls()[taken_]));
    return texts;
}

std::vector<std::string> FakeObjects::takeCalls() {
    std::vector<std::string> texts = takeAllCalls();
    std::erase_if(texts, [](const std::string& text) { return isQuestion(text.substr(0, text.find('('))); });
    return texts;
}
