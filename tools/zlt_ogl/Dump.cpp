#include "Dump.h"

#include "capture/CallText.h"
#include "capture/CaptureFile.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace ZLT::Interception {

namespace {

using namespace Capture;
using Json = nlohmann::ordered_json;

Json numberJson(const Function& function, std::size_t index, char form, std::uint64_t bits) {
    switch (form) {
    case 'e':
        return constantText(function, index, static_cast<std::uint32_t>(bits));
    case 'b':
        return bits != 0;
    case 'f':
        return std::bit_cast<float>(static_cast<std::uint32_t>(bits));
    case 'd':
        return std::bit_cast<double>(bits);
    case 'i':
    case 's':
    case 'c':
    case 'l':
        return static_cast<std::int64_t>(bits);
    default:
        return bits;
    }
}

// Of a parameter by its place, or of the result.
Json valueJson(const CapturedCall& call, std::size_t index) {
    const Function& function = *call.function;
    const bool isResult = index == call.values.size();
    const Parameter& parameter = isResult ? function.result : function.parameters[index];
    const CapturedValue& value = isResult ? call.result : call.values[index];
    switch (parameter.form) {
    case 'w':
        return std::string(value.bytes);
    case 't':
        return value.isMemory() ? Json(std::string(withoutZero(value.bytes))) : Json();
    case 'x': {
        Json list = Json::array();
        for (const std::string_view one : textsOf(value))
            list.push_back(std::string(one));
        return list;
    }
    case 'p':
    case 'o':
    case 'n':
    case 'a': {
        if (value.pointer == PointerForm::Null)
            return Json();
        if (value.pointer == PointerForm::Address)
            return Json{{"address", value.bits}};
        if (!isWrittenOut(parameter, value))
            return Json{{"bytes", value.bytes.size()}};
        Json list = Json::array();
        for (std::size_t i = 0; i < value.bytes.size() / sizeOfForm(parameter.element); ++i)
            list.push_back(
                numberJson(function, index, parameter.element, elementAt(value.bytes, parameter.element, i)));
        return list;
    }
    default:
        return numberJson(function, index, parameter.form, value.bits);
    }
}

Json callJson(const CapturedCall& call, const std::string& site) {
    Json line;
    if (call.function->isCall())
        line["call"] = call.number;
    line["frame"] = call.frame;
    line["thread"] = call.thread;
    if (!site.empty())
        line["site"] = site;
    line[call.function->isCall() ? "function" : "event"] = call.function->name;
    Json arguments = Json::object();
    for (std::size_t i = 0; i < call.values.size(); ++i) {
        const Parameter& parameter = call.function->parameters[i];
        arguments[parameter.name.empty() ? std::to_string(i) : std::string(parameter.name)] =
            valueJson(call, i);
    }
    line["arguments"] = std::move(arguments);
    if (call.function->result.form != 0)
        line["result"] = valueJson(call, call.values.size());
    return line;
}

// What is about the file more than about the program.
bool isBookkeeping(const CapturedCall& call) {
    return call.is(Event::Function) || call.is(Event::Site) || call.is(Event::Thread);
}

} // namespace

int dump(const DumpOptions& options) {
    CaptureFile file(options.file);
    CapturedCall call;
    std::uint64_t frame = 0;
    std::uint32_t thread = 0;
    if (options.frames.first > 1)
        file.seekFrame(options.frames.first);
    while (file.next(call)) {
        if (isBookkeeping(call) || call.frame < options.frames.first ||
            (options.calls.first > 1 && call.number < options.calls.first))
            continue;
        if (call.frame > options.frames.last || call.number > options.calls.last)
            break;
        if (options.isJson) {
            std::cout
                << callJson(call, file.siteOf(call)).dump(-1, ' ', false, Json::error_handler_t::replace)
                << '\n';
            continue;
        }
        if (call.frame != frame)
            std::cout << "// frame " << (frame = call.frame) << '\n';
        if (call.thread != thread)
            std::cout << "// thread " << (thread = call.thread) << '\n';
        if (!call.function->isCall()) {
            std::cout << "// " << callText(call) << '\n';
            continue;
        }
        std::cout << call.number << ' ';
        if (const std::string& site = file.siteOf(call); !site.empty())
            std::cout << site << ": ";
        std::cout << callText(call) << '\n';
    }
    std::cout.flush();
    if (file.damage().empty())
        return 0;
    std::cerr << "zlt_ogl: " << file.damage() << ".\n";
    return 1;
}

} // namespace ZLT::Interception
