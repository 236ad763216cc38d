// Calls as statements.

#include "capture/CallText.h"
#include "capture/exporting/ExportedState.h"
#include "extensionator/OpenGLEntry.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace ZLT::Capture {

using namespace Exporting;
namespace Entry = OGL::OpenGLEntry;

namespace {

// As many elements of an array stand in place, and as long a text.
constexpr std::size_t longestList = 32, longestText = 12'000, longestTexts = 48'000;

const char* listOfForm(char form) {
    switch (form) {
    case 'e':
        return "enums";
    case 'u':
        return "uints";
    case 'i':
        return "ints";
    case 's':
        return "shorts";
    case 'S':
    case 'h':
        return "ushorts";
    case 'c':
        return "bytes";
    case 'C':
    case 'b':
        return "ubytes";
    case 'l':
        return "int64s";
    case 'L':
        return "uint64s";
    case 'f':
        return "floats";
    case 'd':
        return "doubles";
    default:
        return nullptr;
    }
}

// Of a GL type.
char formOfType(std::uint64_t type) {
    switch (type) {
    case GL_UNSIGNED_BYTE:
        return 'C';
    case GL_UNSIGNED_SHORT:
        return 'S';
    case GL_UNSIGNED_INT:
        return 'u';
    case GL_BYTE:
        return 'c';
    case GL_SHORT:
        return 's';
    case GL_INT:
        return 'i';
    case GL_FLOAT:
        return 'f';
    default:
        return 'v';
    }
}

} // namespace

void ProjectExport::appendList(char element, std::string_view bytes) {
    const std::size_t size = sizeOfForm(element);
    line += listOfForm(element);
    line += "({";
    for (std::size_t at = 0; at + size <= bytes.size(); at += size) {
        if (at > 0)
            line += ", ";
        std::uint64_t bits = 0;
        std::memcpy(&bits, bytes.data() + at, size);
        switch (element) {
        case 'e':
            constants.append(line, static_cast<std::uint32_t>(bits));
            break;
        case 'f':
            appendFloat(line, std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
            break;
        case 'd':
            appendDouble(line, std::bit_cast<double>(bits));
            break;
        case 'i':
            appendNumber(line, std::int64_t(static_cast<std::int32_t>(bits)));
            break;
        case 's':
            appendNumber(line, std::int64_t(static_cast<std::int16_t>(bits)));
            break;
        case 'c':
            appendNumber(line, std::int64_t(static_cast<std::int8_t>(bits)));
            break;
        case 'l':
            appendNumber(line, static_cast<std::int64_t>(bits));
            break;
        default:
            appendNumber(line, bits);
        }
    }
    line += "})";
}

void ProjectExport::appendData(std::string_view bytes, std::uint64_t skipped) {
    line += "data(";
    appendNumber(line, files.data(bytes));
    line += ", ";
    appendNumber(line, std::uint64_t(bytes.size()));
    if (skipped != 0) {
        line += ", ";
        appendNumber(line, skipped);
    }
    line += ')';
}

void ProjectExport::appendData(const CapturedValue& value) { appendData(value.bytes, value.skipped); }

void ProjectExport::appendAddress(const CapturedValue& value) {
    if (value.bits == 0) {
        line += "nullptr";
        return;
    }
    line += "offset(";
    appendNumber(line, value.bits);
    line += ')';
}

void ProjectExport::appendMemory(const Parameter& parameter, const CapturedValue& value) {
    if (!value.isMemory())
        return value.pointer == PointerForm::Null ? void(line += "nullptr") : appendAddress(value);
    const ObjectKind kind = kindOf(parameter.object);
    if (kind != ObjectKind::None && kind != ObjectKind::UniformLocation)
        return appendNames(kind, value, parameter.object, ".list");
    char element = parameter.element;
    // Indices and names of lists are of the type that the call says.
    if (element == 'v' && value.skipped == 0)
        for (std::size_t i = 0; i < call.values.size(); ++i)
            if (call.function->parameters[i].name == "type" &&
                (parameter.name == "indices" || parameter.name == "lists"))
                element = formOfType(call.values[i].bits);
    if (listOfForm(element) && value.skipped == 0 && !value.bytes.empty() &&
        value.bytes.size() / sizeOfForm(element) <= longestList &&
        value.bytes.size() % sizeOfForm(element) == 0)
        return appendList(element, value.bytes);
    appendData(value);
}

void ProjectExport::appendTexts(const CapturedValue& value) {
    if (!value.isMemory()) {
        line += "nullptr";
        return;
    }
    ByteReader from(value.bytes);
    line += "texts({";
    bool isFirst = true;
    while (!from.isAtEnd()) {
        const std::string_view text = from.text();
        line += isFirst ? "\n        " : ",\n        ";
        isFirst = false;
        if (text.size() <= longestText && value.bytes.size() <= longestTexts &&
            text.find('\0') == std::string_view::npos) {
            appendText(line, text);
        } else {
            // Compilers have limits for literals.
            line += "data(";
            appendNumber(line, files.data(std::string(text) + '\0'));
            line += ", ";
            appendNumber(line, std::uint64_t(text.size() + 1));
            line += ')';
        }
    }
    line += isFirst ? "nullptr})" : "})";
}

void ProjectExport::appendIndexLists(const CapturedValue& value) {
    if (!value.isMemory()) {
        line += "nullptr";
        return;
    }
    ByteReader from(value.bytes);
    const bool isInBuffer = from.number() != 0;
    const std::uint64_t draws = from.number();
    line += "pointers({";
    for (std::uint64_t i = 0; i < draws && !from.isAtEnd(); ++i) {
        line += i > 0 ? ", " : "";
        if (isInBuffer) {
            line += "offset(";
            appendNumber(line, from.number());
            line += ')';
        } else {
            const std::string_view indices = from.text();
            if (indices.empty())
                line += "nullptr";
            else
                appendData(indices, 0);
        }
    }
    line += "})";
}

void ProjectExport::appendOutput(const Parameter& parameter, const CapturedValue& value) {
    if (!value.isMemory())
        return value.pointer == PointerForm::Null ? void(line += "nullptr") : appendAddress(value);
    const ObjectKind kind = kindOf(parameter.object);
    if (kind != ObjectKind::None && call.function->name.starts_with("glGen"))
        return appendNames(kind, value, parameter.object, ".made");
    if (isReadBack(*call.function, parameter)) {
        line += "read_back(";
        appendNumber(line, files.data(value.bytes));
        line += ", ";
        appendNumber(line, std::uint64_t(value.bytes.size()));
        if (value.skipped != 0) {
            line += ", ";
            appendNumber(line, value.skipped);
        }
        line += ')';
        return;
    }
    // As much as the call has room for.
    std::uint64_t size = value.skipped + value.bytes.size();
    for (std::size_t i = 0; i < call.values.size(); ++i)
        if (call.values[i].form == 'i' && call.i32(i) > 0)
            size = std::max<std::uint64_t>(size, 8 * std::min<std::uint64_t>(call.values[i].bits, 1 << 20));
    line += "out(";
    appendNumber(line, size);
    line += ')';
}

void ProjectExport::appendNumberOf(const Parameter& parameter, std::size_t index) {
    const CapturedValue& value = call.values[index];
    switch (parameter.form) {
    case 'e':
        return constants.append(line, *call.function, index, static_cast<std::uint32_t>(value.bits));
    case 'b':
        if (value.bits > 1)
            return appendNumber(line, value.bits);
        constants.use(value.bits == 0 ? "GL_FALSE" : "GL_TRUE", static_cast<std::uint32_t>(value.bits));
        line += value.bits == 0 ? "GL_FALSE" : "GL_TRUE";
        return;
    case 'f':
    case 'i':
        if (const auto constant = constantOf(call, index)) {
            line += parameter.form == 'f' ? "GLfloat(" : "";
            constants.append(line, *call.function, index, *constant);
            line += parameter.form == 'f' ? ")" : "";
            return;
        }
        if (parameter.form == 'f')
            return appendFloat(line, value.asFloat());
        return appendNumber(line, std::int64_t(call.i32(index)));
    case 'd':
        return appendDouble(line, value.asDouble());
    case 's':
    case 'c':
    case 'l':
        return appendNumber(line, static_cast<std::int64_t>(value.bits));
    default:
        if (const auto names = OGL::bitNames(call.function->name, static_cast<unsigned int>(index));
            !names.empty())
            return constants.appendBits(line, names, static_cast<std::uint32_t>(value.bits));
        return appendNumber(line, value.bits);
    }
}

void ProjectExport::appendValue(std::size_t index) {
    const Parameter& parameter = call.function->parameters[index];
    const CapturedValue& value = call.values[index];
    switch (parameter.form) {
    case 'p':
        return appendMemory(parameter, value);
    case 't':
        if (!value.isMemory())
            line += "nullptr";
        else if (value.bytes.size() <= longestText)
            appendText(line, withoutZero(value.bytes));
        else
            appendData(value);
        return;
    case 'x':
        return appendTexts(value);
    case 'n':
        return appendIndexLists(value);
    case 'o':
        return appendOutput(parameter, value);
    case 'a': {
        const std::uint32_t entry = call.function->number - firstEntry;
        if (value.pointer != PointerForm::Address) {
            line += "nullptr";
        } else if (entry == Entry::FeedbackBuffer || entry == Entry::SelectBuffer) {
            line += entry == Entry::FeedbackBuffer ? "feedback(" : "selection(";
            appendNumber(line, std::int64_t(std::clamp(call.i32(0), 0, 1 << 24)));
            line += ')';
        } else if (context().client.arrayBuffer != 0) {
            appendAddress(value);
        } else {
            line += "client_memory";
        }
        return;
    }
    default:
        break;
    }
    if (parameter.object == "uniform location")
        return appendLocation(static_cast<std::int32_t>(value.bits));
    if (const ObjectKind kind = kindOf(parameter.object); kind != ObjectKind::None)
        return appendName(kind, parameter.form == 'i' ? call.u32(index) : value.bits, parameter.object);
    appendNumberOf(parameter, index);
}

std::string ProjectExport::nameOfFunction(const std::string& name) {
    if (const Function* const function = functionNamed(name))
        facts.functions.emplace(name, function);
    return name;
}

void ProjectExport::appendArguments() {
    line += '(';
    for (std::size_t i = 0; i < call.values.size(); ++i) {
        if (i > 0)
            line += ", ";
        appendValue(i);
    }
    line += ')';
}

void ProjectExport::endStatement() {
    line += ';';
    if (const std::string& site = file.siteOf(call); !site.empty()) {
        line += " // ";
        appendComment(line, site);
    }
    line += '\n';
    ++statements;
}

void ProjectExport::exportCall() {
    if (!contextOf(call.thread)) {
        // GL does nothing then.
        arrays.clear();
        return;
    }
    const Function& function = *call.function;
    ++facts.calls;
    line.clear();
    before.clear();
    assignment.clear();
    statements = 0;
    begin();
    if (!isReplaced()) {
        (line += "    ") += assignment;
        if (const ObjectKind kind = kindOf(function.result.object);
            kind != ObjectKind::None && kind != ObjectKind::UniformLocation && kind != ObjectKind::List &&
            call.result.bits != 0) {
            if (kind == ObjectKind::Sync) {
                syncs[call.result.bits] = ++syncCount;
                line += use({}, "sync") + '[' + std::to_string(syncCount) + "] = ";
            } else {
                if (function.name.starts_with("glCreateShader"))
                    context().group->shaders.insert(call.result.bits);
                else if (kind == ObjectKind::Program)
                    context().group->shaders.erase(call.result.bits);
                scopeOf(kind).known[kind].insert(call.result.bits);
                const bool isRange = kind == ObjectKind::FragmentShader || kind == ObjectKind::VertexShader ||
                                     kind == ObjectKind::AsyncMarker || kind == ObjectKind::Symbol;
                const std::string variable = variableOf(kind, call.result.bits, function.result.object);
                line += use(scopeOf(kind), variable);
                const std::string number = std::to_string(call.result.bits);
                if (isRange && !call.values.empty())
                    line += ".range(" + number + ", " +
                            std::to_string(std::clamp<std::uint64_t>(call.values.back().bits, 1, 1 << 16)) +
                            ") = ";
                else
                    line += '[' + number + "] = ";
            }
        }
        facts.functions.try_emplace(function.name, functionOf(function.number));
        line += function.name;
        appendArguments();
        endStatement();
    }
    if (!before.empty())
        line.insert(0, before);
    arrays.clear();
    learnNames();
    // The line of glEnd belongs to those that are kept together.
    addLine(statements);
    followCall();
    if (function.number == firstEntry + Entry::End) {
        line.clear();
        addLine(0);
    }
}

} // namespace ZLT::Capture
