#include "extensionator/OpenGLErrorSinks.h"

#include "platform/GL.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <csignal>
#include <fstream>
#include <iterator>
#include <ostream>
#include <string>
#include <string_view>

#if defined(_WIN32)
#include <windows.h>
#endif

namespace ZLT::OGL {

namespace {

using Kind = OpenGLErrorReport::Kind;
using Level = OpenGLErrorReport::Level;

const char* levelName(Level level) {
    switch (level) {
    case Level::Error:
        return "error";
    case Level::Warning:
        return "warning";
    default:
        return "note";
    }
}

String hexadecimal(unsigned int number) {
    char text[10] = "0x";
    return String(std::string_view(text, std::to_chars(text + 2, std::end(text), number, 16).ptr));
}

// "the driver says: TEXT".
String quoted(const OpenGLDriverMessage& message) {
    return String("the ") + message.sourceName() + " says: " + message.text;
}

// "file:line: ", as far as they are known; of a report or a frame of the stack.
void writePlace(std::ostream& out, const auto& place) {
    if (place.file.empty())
        return;
    out << place.file;
    if (place.line > 0)
        out << ':' << std::to_string(place.line);
    out << ": ";
}

// A text of several lines keeps them, further in, so that no editor takes the next ones for a place.
void writeLines(std::ostream& out, std::string_view text) {
    for (std::size_t end; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1))
        out << text.substr(0, end) << "\n    ";
    out << text << '\n';
}

} // namespace

bool OpenGLDriverMessage::isError() const noexcept { return type == GL_DEBUG_TYPE_ERROR; }

const char* OpenGLDriverMessage::sourceName() const noexcept {
    switch (source) {
    case GL_DEBUG_SOURCE_API:
        return "driver";
    case GL_DEBUG_SOURCE_WINDOW_SYSTEM:
        return "window system";
    case GL_DEBUG_SOURCE_SHADER_COMPILER:
        return "shader compiler";
    case GL_DEBUG_SOURCE_THIRD_PARTY:
        return "third party";
    case GL_DEBUG_SOURCE_APPLICATION:
        return "application";
    default:
        return "other";
    }
}

const char* OpenGLDriverMessage::typeName() const noexcept {
    switch (type) {
    case GL_DEBUG_TYPE_ERROR:
        return "error";
    case GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR:
        return "deprecated behavior";
    case GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR:
        return "undefined behavior";
    case GL_DEBUG_TYPE_PORTABILITY:
        return "portability";
    case GL_DEBUG_TYPE_PERFORMANCE:
        return "performance";
    case GL_DEBUG_TYPE_MARKER:
        return "marker";
    default:
        return "other";
    }
}

const char* OpenGLDriverMessage::severityName() const noexcept {
    switch (severity) {
    case GL_DEBUG_SEVERITY_HIGH:
        return "high";
    case GL_DEBUG_SEVERITY_MEDIUM:
        return "medium";
    case GL_DEBUG_SEVERITY_LOW:
        return "low";
    default:
        return "notification";
    }
}

OpenGLErrorReport::Level OpenGLErrorReport::level() const noexcept {
    switch (kind) {
    case Kind::CallFailed:
    case Kind::CallRefused:
    case Kind::ContextLost:
        return Level::Error;
    case Kind::RaisedBefore:
        return Level::Warning;
    case Kind::FoundByCheck:
        return check == "never-made" ? Level::Warning : Level::Error;
    case Kind::DriverMessage:
        break;
    }
    const unsigned int severity = messages.empty() ? 0 : messages.front().severity;
    return severity == GL_DEBUG_SEVERITY_HIGH || severity == GL_DEBUG_SEVERITY_MEDIUM ? Level::Warning
                                                                                      : Level::Note;
}

String OpenGLErrorReport::sentence() const {
    switch (kind) {
    case Kind::CallFailed:
    case Kind::CallRefused:
    case Kind::FoundByCheck:
        return reason + " in " + function + '(' + arguments + ')';
    case Kind::RaisedBefore:
        return reason + " raised before this call, outside the chain";
    case Kind::ContextLost:
        return reason + "; nothing more is said about it";
    case Kind::DriverMessage:
        break;
    }
    if (messages.empty())
        return reason;
    const OpenGLDriverMessage& message = messages.front();
    String text = quoted(message) + " [" + message.typeName() + ", " + message.severityName() + ", id ";
    text += std::to_string(message.id);
    return text + ']';
}

String OpenGLErrorReport::rule() const {
    switch (kind) {
    case Kind::CallFailed:
    case Kind::RaisedBefore:
        return openGLErrorName(code);
    case Kind::CallRefused:
        return "not-called";
    case Kind::ContextLost:
        return "context-lost";
    case Kind::FoundByCheck:
        return check;
    case Kind::DriverMessage:
        break;
    }
    return "driver-message";
}

String openGLErrorName(unsigned int code) {
    switch (code) {
    case GL_NO_ERROR:
        return "GL_NO_ERROR";
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_STACK_OVERFLOW:
        return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
        return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    case GL_INVALID_FRAMEBUFFER_OPERATION:
        return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case 0x0507:
        return "GL_CONTEXT_LOST";
    case GL_TABLE_TOO_LARGE:
        return "GL_TABLE_TOO_LARGE";
    default:
        return hexadecimal(code);
    }
}

OpenGLErrorSink::~OpenGLErrorSink() = default;
void OpenGLErrorSink::repeated(std::size_t) {}
void OpenGLErrorSink::finish(const std::vector<OpenGLErrorTotal>&) {}

OpenGLCallbackSink::OpenGLCallbackSink(Callback callback) : callback_(std::move(callback)) {}
OpenGLCallbackSink::~OpenGLCallbackSink() = default;
void OpenGLCallbackSink::report(const OpenGLErrorReport& report) {
    if (callback_)
        callback_(report);
}

OpenGLTextSink::OpenGLTextSink(std::ostream& out) : out_(&out) {}
OpenGLTextSink::~OpenGLTextSink() = default;

void OpenGLTextSink::report(const OpenGLErrorReport& report) {
    std::ostream& out = *out_;
    writePlace(out, report);
    out << levelName(report.level()) << ": ";
    writeLines(out, report.sentence());
    if (report.kind != Kind::DriverMessage)
        for (const OpenGLDriverMessage& message : report.messages) {
            writePlace(out, report);
            out << "note: ";
            writeLines(out, quoted(message));
        }
    for (const OpenGLStackFrame& frame : report.stack) {
        writePlace(out, frame);
        out << "note: called from ";
        writeLines(out, frame.function.empty() ? "here" : std::string_view(frame.function));
    }
    out.flush();
}

void OpenGLTextSink::finish(const std::vector<OpenGLErrorTotal>& totals) {
    std::ostream& out = *out_;
    for (const OpenGLErrorTotal& total : totals) {
        if (total.count < 2)
            continue;
        writePlace(out, total.first);
        out << "note: " << std::to_string(total.count) << " times in all: ";
        writeLines(out, total.first.sentence());
    }
    out.flush();
}

OpenGLSarifSink::OpenGLSarifSink(std::ostream& out) : out_(&out) {}
OpenGLSarifSink::~OpenGLSarifSink() = default;
void OpenGLSarifSink::report(const OpenGLErrorReport&) {}

namespace {

// A path as a reference of a URI: a scheme where it is absolute, slashes, and a percent sign in front of what
// a URI gives a meaning.
std::string uriOf(std::string_view path) {
    const bool hasDrive = path.size() > 1 && path[1] == ':';
    std::string uri = hasDrive ? "file:///" : path.starts_with('/') ? "file://" : "";
    for (const char c : path) {
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                           std::string_view("-._~/").find(c) != std::string_view::npos ||
                           (hasDrive && c == ':');
        if (plain) {
            uri += c;
        } else if (c == '\\') {
            uri += '/';
        } else {
            constexpr const char* digits = "0123456789ABCDEF";
            const auto byte = static_cast<unsigned char>(c);
            uri += {'%', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return uri;
}

using Json = nlohmann::ordered_json;

// Of a report or a frame of the stack.
Json locationOf(const auto& at) {
    Json place = {{"artifactLocation", {{"uri", uriOf(at.file)}}}};
    if (at.line > 0)
        place["region"] = {{"startLine", at.line}};
    return {{"physicalLocation", place}};
}

Json stackOf(const OpenGLErrorReport& report) {
    Json frames = Json::array();
    for (const OpenGLStackFrame& frame : report.stack) {
        Json location = locationOf(frame);
        if (!frame.function.empty())
            location["logicalLocations"] = Json::array({{{"name", std::string(frame.function)}}});
        frames.push_back({{"location", location}});
    }
    return {{"frames", frames}};
}

Json messagesOf(const OpenGLErrorReport& report) {
    Json list = Json::array();
    for (const OpenGLDriverMessage& message : report.messages)
        list.push_back({{"text", std::string(message.text)},
                        {"source", message.sourceName()},
                        {"type", message.typeName()},
                        {"severity", message.severityName()},
                        {"id", message.id}});
    return list;
}

Json resultOf(const OpenGLErrorTotal& total) {
    const OpenGLErrorReport& report = total.first;
    Json result = {{"ruleId", std::string(report.rule())},
                   {"level", levelName(report.level())},
                   {"message", {{"text", std::string(report.sentence())}}},
                   {"occurrenceCount", total.count}};
    if (!report.file.empty())
        result["locations"] = Json::array({locationOf(report)});
    if (!report.stack.empty())
        result["stacks"] = Json::array({stackOf(report)});
    if (!report.messages.empty())
        result["properties"] = {{"driverMessages", messagesOf(report)}};
    return result;
}

} // namespace

void OpenGLSarifSink::finish(const std::vector<OpenGLErrorTotal>& totals) {
    Json rules = Json::array(), results = Json::array();
    for (const OpenGLErrorTotal& total : totals) {
        const Json rule = {{"id", std::string(total.first.rule())}};
        if (std::find(rules.begin(), rules.end(), rule) == rules.end())
            rules.push_back(rule);
        results.push_back(resultOf(total));
    }
    const Json run = {{"tool", {{"driver", {{"name", "zlt_ogl"}, {"rules", rules}}}}}, {"results", results}};
    const Json log = {{"$schema", "https://json.schemastore.org/sarif-2.1.0.json"},
                      {"version", "2.1.0"},
                      {"runs", Json::array({run})}};
    // A driver's text that is not UTF-8 loses its odd bytes, not the log.
    *out_ << log.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    out_->flush();
}

OpenGLTrapSink::OpenGLTrapSink() = default;
OpenGLTrapSink::~OpenGLTrapSink() = default;

bool OpenGLTrapSink::isDebuggerPresent() {
#if defined(_WIN32)
    return IsDebuggerPresent() != 0;
#else
    // The kernel says who traces this process; nobody is 0.
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("TracerPid:"))
            return line.find_first_not_of(" \t0", line.find(':') + 1) != std::string::npos;
    return false;
#endif
}

void OpenGLTrapSink::report(const OpenGLErrorReport&) {
    if (!isDebuggerPresent())
        return;
#if defined(_WIN32)
    DebugBreak();
#else
    std::raise(SIGTRAP);
#endif
}

} // namespace ZLT::OGL
