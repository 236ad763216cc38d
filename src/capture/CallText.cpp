#include "capture/CallText.h"

#include "capture/Bytes.h"
#include "extensionator/TokenName.h"

#include <cstdio>
#include <cstring>

namespace ZLT::Capture {

namespace {

// As many elements of an array are written out.
constexpr std::size_t longestList = 32;

std::string realText(double value) {
    char text[32];
    std::snprintf(text, sizeof text, "%.9g", value);
    return text;
}

std::string quoted(std::string_view text) {
    std::string all = "\"";
    for (const char letter : text) {
        if (letter == '"' || letter == '\\')
            (all += '\\') += letter;
        else if (letter == '\n')
            all += "\\n";
        else if (letter == '\t')
            all += "\\t";
        else if (static_cast<unsigned char>(letter) < ' ' || letter == 0x7F) {
            char code[8];
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<unsigned char>(letter));
            all += code;
        } else
            all += letter;
    }
    return all + '"';
}

std::string address(std::uint64_t bits) {
    char text[24];
    std::snprintf(text, sizeof text, "0x%llx", static_cast<unsigned long long>(bits));
    return text;
}

std::string numberText(char form, std::uint64_t bits) {
    switch (form) {
    case 'e':
        return tokenText(static_cast<std::uint32_t>(bits));
    case 'b':
        return bits == 0 ? "GL_FALSE" : bits == 1 ? "GL_TRUE" : std::to_string(bits);
    case 'f':
        return realText(std::bit_cast<float>(static_cast<std::uint32_t>(bits)));
    case 'd':
        return realText(std::bit_cast<double>(bits));
    case 'i':
    case 's':
    case 'c':
    case 'l':
        return std::to_string(static_cast<std::int64_t>(bits));
    case 'y':
        return address(bits);
    default:
        return std::to_string(bits);
    }
}

// "texture 5", "5".
std::string named(const Parameter& parameter, const std::string& number) {
    return parameter.object.empty() ? number : std::string(parameter.object) + ' ' + number;
}

std::string memoryText(const Parameter& parameter, const CapturedValue& value) {
    const bool isText = (parameter.element == 'c' || parameter.element == 'C') && value.bytes.ends_with('\0');
    if (isText)
        return quoted(withoutZero(value.bytes));
    if (!isWrittenOut(parameter, value))
        return '<' + std::to_string(value.bytes.size()) + " bytes" +
               (value.skipped != 0 ? " from byte " + std::to_string(value.skipped) : "") + '>';
    std::string text = "{";
    const std::size_t count = value.bytes.size() / sizeOfForm(parameter.element);
    for (std::size_t i = 0; i < count; ++i)
        text +=
            (i > 0 ? ", " : "") + numberText(parameter.element, elementAt(value.bytes, parameter.element, i));
    return named(parameter, text + '}');
}

std::string valueText(const Parameter& parameter, const CapturedValue& value) {
    switch (parameter.form) {
    case 'w':
        return quoted(value.bytes);
    case 't':
        return value.isMemory() ? quoted(withoutZero(value.bytes)) : "NULL";
    case 'x': {
        std::string text;
        for (const std::string_view one : textsOf(value))
            text += (text.empty() ? "" : ", ") + quoted(one);
        return '{' + text + '}';
    }
    case 'p':
    case 'o':
    case 'n':
    case 'a':
        if (value.pointer == PointerForm::Null)
            return "NULL";
        if (value.pointer == PointerForm::Address)
            return address(value.bits);
        return (parameter.form == 'o' ? "-> " : "") + memoryText(parameter, value);
    default:
        return named(parameter, numberText(parameter.form, value.bits));
    }
}

} // namespace

std::string tokenText(std::uint32_t value) {
    const std::string name = OGL::TokenName(value);
    return name == "Unknown Token" ? address(value) : name;
}

std::uint64_t elementAt(std::string_view bytes, char form, std::size_t index) {
    const std::size_t size = sizeOfForm(form);
    std::uint64_t bits = 0;
    std::memcpy(&bits, bytes.data() + index * size, size);
    if (form == 'c')
        return static_cast<std::uint64_t>(static_cast<std::int8_t>(bits));
    if (form == 's')
        return static_cast<std::uint64_t>(static_cast<std::int16_t>(bits));
    if (form == 'i')
        return static_cast<std::uint64_t>(static_cast<std::int32_t>(bits));
    return bits;
}

std::vector<std::string_view> textsOf(const CapturedValue& value) {
    std::vector<std::string_view> texts;
    ByteReader from(value.bytes);
    while (!from.isAtEnd())
        texts.push_back(from.text());
    return texts;
}

std::string_view withoutZero(std::string_view text) {
    return text.ends_with('\0') ? text.substr(0, text.size() - 1) : text;
}

bool isWrittenOut(const Parameter& parameter, const CapturedValue& value) {
    return value.isMemory() && value.skipped == 0 && parameter.element != 'v' && parameter.element != 0 &&
           value.bytes.size() / sizeOfForm(parameter.element) <= longestList;
}

std::string callText(const CapturedCall& call) {
    std::string text = call.function->name + '(';
    for (std::size_t i = 0; i < call.values.size(); ++i)
        text += (i > 0 ? ", " : "") + valueText(call.function->parameters[i], call.values[i]);
    text += ')';
    if (call.function->result.form != 0)
        text += " = " + valueText(call.function->result, call.result);
    return text;
}

} // namespace ZLT::Capture
