// What a played call is given: names of now, and memory.

#include "capture/CapturePlay.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Capture {

using namespace Playing;

NameTable& CapturePlay::tableOf(Context& of, ObjectKind kind) {
    return isOfContext(kind) ? of.names : of.group->names;
}
NameTable& CapturePlay::tableOf(ObjectKind kind) { return tableOf(context(), kind); }

std::optional<std::uint64_t> CapturePlay::findName(ObjectKind kind, std::uint64_t captured) {
    if (const auto found = tableOf(kind).find(kind, captured))
        return found;
    if (isOfContext(kind)) // some drivers share these too
        for (Context* other : context().group->contexts)
            if (const auto found = other->names.find(kind, captured))
                return found;
    return std::nullopt;
}

std::optional<std::uint64_t> CapturePlay::makeName(ObjectKind kind) {
    if (!context().facts.mayAsk())
        return std::nullopt;
    const std::string& function = call.function->name;
    unsigned int name = 0;
    switch (kind) {
    case ObjectKind::Texture:
        gl.cgmGenTextures(here, 0, 1, &name);
        break;
    case ObjectKind::Buffer:
        function.ends_with("ARB") ? gl.cgmGenBuffersARB(here, 0, 1, &name)
                                  : gl.cgmGenBuffers(here, 0, 1, &name);
        break;
    case ObjectKind::AssemblyProgram:
        function.ends_with("NV") ? gl.cgmGenProgramsNV(here, 0, 1, &name)
                                 : gl.cgmGenProgramsARB(here, 0, 1, &name);
        break;
    case ObjectKind::Framebuffer:
        function.ends_with("EXT") ? gl.cgmGenFramebuffersEXT(here, 0, 1, &name)
                                  : gl.cgmGenFramebuffers(here, 0, 1, &name);
        break;
    case ObjectKind::Renderbuffer:
        function.ends_with("EXT") ? gl.cgmGenRenderbuffersEXT(here, 0, 1, &name)
                                  : gl.cgmGenRenderbuffers(here, 0, 1, &name);
        break;
    case ObjectKind::Query:
        function.ends_with("ARB") ? gl.cgmGenQueriesARB(here, 0, 1, &name)
                                  : gl.cgmGenQueries(here, 0, 1, &name);
        break;
    case ObjectKind::OcclusionQuery:
        gl.cgmGenOcclusionQueriesNV(here, 0, 1, &name);
        break;
    case ObjectKind::Fence:
        function.ends_with("APPLE") ? gl.cgmGenFencesAPPLE(here, 0, 1, &name)
                                    : gl.cgmGenFencesNV(here, 0, 1, &name);
        break;
    default:
        break;
    }
    return name != 0 ? std::optional<std::uint64_t>(name) : std::nullopt;
}

std::uint64_t CapturePlay::nameNow(ObjectKind kind, std::uint64_t captured) {
    if (captured == 0 || kind == ObjectKind::List || &context() == &none)
        return captured; // lists have the names that the program gives, see playGenLists()
    if (const auto found = findName(kind, captured))
        return *found;
    if (const auto made = makeName(kind)) {
        tableOf(kind).set(kind, captured, *made);
        return *made;
    }
    return kind == ObjectKind::Program ? captured + nobody : captured;
}

void CapturePlay::forgetNames(std::size_t parameter, ObjectKind kind) {
    // A program lives on while it is used, and its name is not given again before.
    if (kind == ObjectKind::Program || kind == ObjectKind::List || &context() == &none)
        return;
    const CapturedValue& value = call.values[parameter];
    if (value.form != 'p') {
        tableOf(kind).erase(kind, value.bits);
        return;
    }
    for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4)
        tableOf(kind).erase(kind, wordAt(value.bytes, i));
}

std::uint32_t CapturePlay::wordAt(std::string_view bytes, std::size_t offset) {
    std::uint32_t word;
    std::memcpy(&word, bytes.data() + offset, sizeof word);
    return word;
}

std::int64_t CapturePlay::locationNow(std::int64_t captured) {
    Context& now = context();
    if (&now == &none)
        return captured;
    std::uint64_t program = 0;
    if (const std::string_view first = call.function->parameters[0].object; first == "program")
        program = call.values[0].bits;
    else
        program = currentProgram();
    const auto& locations = now.group->locations[program];
    const auto found = locations.find(captured);
    return found == locations.end() ? captured : found->second;
}

std::uint64_t CapturePlay::currentProgram() {
    Context& now = context();
    if (!now.isProgramKnown && now.facts.mayAsk()) {
        int program = 0;
        gl.cgmGetIntegerv(here, 0, GL_CURRENT_PROGRAM, &program);
        now.program = now.group->names.findCaptured(ObjectKind::Program, static_cast<std::uint32_t>(program))
                          .value_or(0);
        now.isProgramKnown = true;
    }
    return now.program;
}

char* CapturePlay::scratchOf(std::size_t size) {
    scratch.push_back(std::make_unique<char[]>(std::max<std::size_t>(size, 16)));
    return scratch.back().get();
}

std::uint64_t CapturePlay::input(const Parameter& parameter, const CapturedValue& value) {
    if (!value.isMemory())
        return value.pointer == PointerForm::Null ? 0 : value.bits;
    const ObjectKind kind = kindOf(parameter.object);
    if (kind != ObjectKind::None && kind != ObjectKind::UniformLocation) {
        char* const names = scratchOf(value.bytes.size());
        for (std::size_t i = 0; i + 4 <= value.bytes.size(); i += 4) {
            const auto name = static_cast<std::uint32_t>(nameNow(kind, wordAt(value.bytes, i)));
            std::memcpy(names + i, &name, sizeof name);
        }
        return addressOf(names);
    }
    if (value.pointer == PointerForm::Inline) {
        char* const copy = scratchOf(value.bytes.size());
        std::memcpy(copy, value.bytes.data(), value.bytes.size());
        return addressOf(copy);
    }
    return addressOf(value.bytes.data()) - value.skipped;
}

std::uint64_t CapturePlay::textInput(const CapturedValue& value) {
    if (!value.isMemory())
        return 0;
    char* const copy = scratchOf(value.bytes.size() + 1); // with a zero byte, whatever the file has
    std::memcpy(copy, value.bytes.data(), value.bytes.size());
    return addressOf(copy);
}

std::uint64_t CapturePlay::textsInput(const CapturedValue& value) {
    if (!value.isMemory())
        return 0;
    ByteReader from(value.bytes);
    std::vector<std::uint64_t> pointers;
    while (!from.isAtEnd()) {
        const std::string_view text = from.text();
        char* const copy = scratchOf(text.size() + 1);
        std::memcpy(copy, text.data(), text.size());
        pointers.push_back(addressOf(copy));
    }
    // The count of the call may claim more.
    const std::size_t claimed = std::max<std::size_t>(pointers.size(), claimedCount());
    char* const list = scratchOf((claimed + 1) * sizeof(std::uint64_t));
    char* const empty = scratchOf(1);
    for (std::size_t i = 0; i <= claimed; ++i) {
        const std::uint64_t pointer = i < pointers.size() ? pointers[i] : addressOf(empty);
        std::memcpy(list + i * sizeof pointer, &pointer, sizeof pointer);
    }
    return addressOf(list);
}

std::size_t CapturePlay::claimedCount() const {
    std::int64_t most = 0;
    for (const CapturedValue& value : call.values)
        if (value.form == 'i')
            most = std::max<std::int64_t>(most, static_cast<std::int64_t>(value.bits));
    return static_cast<std::size_t>(std::min<std::int64_t>(most, 1 << 20));
}

std::uint64_t CapturePlay::indexListsInput(const CapturedValue& value) {
    if (!value.isMemory())
        return 0;
    ByteReader from(value.bytes);
    const bool isInBuffer = from.number() != 0;
    const std::uint64_t draws = from.number();
    const std::size_t claimed =
        std::max<std::size_t>(std::min<std::uint64_t>(draws, 1 << 24), claimedCount());
    char* const list = scratchOf((claimed + 1) * sizeof(std::uint64_t));
    for (std::uint64_t i = 0; i < draws && !from.isAtEnd(); ++i) {
        std::uint64_t pointer = 0;
        if (isInBuffer) {
            pointer = from.number();
        } else {
            const std::string_view indices = from.text();
            char* const copy = scratchOf(indices.size());
            std::memcpy(copy, indices.data(), indices.size());
            pointer = indices.empty() ? 0 : addressOf(copy);
        }
        std::memcpy(list + i * sizeof pointer, &pointer, sizeof pointer);
    }
    return addressOf(list);
}

std::uint64_t CapturePlay::output(std::size_t parameter, const CapturedValue& value) {
    if (!value.isMemory())
        return value.pointer == PointerForm::Null ? 0 : value.bits;
    // Another driver may have more to say.
    const std::size_t size =
        value.skipped + value.bytes.size() + std::max<std::size_t>(4096, claimedCount() * 8);
    auto memory = std::make_unique<char[]>(size);
    for (std::size_t i = 0; options.verifies && i < value.bytes.size(); ++i)
        memory[value.skipped + i] = static_cast<char>(~value.bytes[i]);
    written.push_back({parameter, std::move(memory)});
    return addressOf(written.back().memory.get());
}

std::uint64_t CapturePlay::arrayAddress(const CapturedValue& value) {
    static const std::vector<char> nothing(std::size_t(1) << 16);
    if (value.pointer != PointerForm::Address)
        return 0;
    int buffer = 0;
    if (context().facts.hasBuffers && context().facts.mayAsk())
        gl.cgmGetIntegerv(here, 0, GL_ARRAY_BUFFER_BINDING, &buffer);
    return buffer != 0 ? value.bits : addressOf(nothing.data()); // set again by the draw
}

std::uint64_t CapturePlay::lentMemory(const CapturedValue& value) {
    if (value.pointer == PointerForm::Null)
        return 0;
    Context& now = context();
    const bool isFeedback = call.function->number == firstEntry + Entry::FeedbackBuffer;
    std::vector<std::uint32_t>& memory = isFeedback ? now.feedback : now.selection;
    memory.assign(std::min<std::size_t>(static_cast<std::uint32_t>(call.i32(0)), 1u << 24), 0);
    return addressOf(memory.data());
}

void CapturePlay::prepare() {
    arguments.clear();
    written.clear();
    scratch.clear();
    const Function& function = *call.function;
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const Parameter& parameter = function.parameters[i];
        const CapturedValue& value = call.values[i];
        std::uint64_t bits = value.bits;
        switch (parameter.form) {
        case 'p':
            bits = input(parameter, value);
            break;
        case 't':
            bits = textInput(value);
            break;
        case 'x':
            bits = textsInput(value);
            break;
        case 'n':
            bits = indexListsInput(value);
            break;
        case 'o':
            bits = output(i, value);
            break;
        case 'a': {
            const std::uint32_t entry = function.number - firstEntry;
            bits = entry == Entry::FeedbackBuffer || entry == Entry::SelectBuffer ? lentMemory(value)
                                                                                  : arrayAddress(value);
            break;
        }
        default:
            if (parameter.object == "uniform location")
                bits = static_cast<std::uint64_t>(locationNow(static_cast<std::int32_t>(bits)));
            else if (!parameter.object.empty())
                bits = nameNow(kindOf(parameter.object), bits);
        }
        arguments.push_back(bits);
    }
}

} // namespace ZLT::Capture
