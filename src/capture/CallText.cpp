#include "capture/CallText.h"

#include "capture/Bytes.h"
#include "extensionator/ConstantNames.h"
#include "extensionator/TokenName.h"

#include <cmath>
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

std::string bitsText(std::span<const OGL::NamedConstant> names, std::uint32_t value) {
    std::string text;
    OGL::eachBit(names, value, [&](const char* name, std::uint32_t bits) {
        text += text.empty() ? "" : " | ";
        text += name ? name : bits == 0 ? "0" : address(bits);
    });
    return text;
}

std::string numberText(const Function& function, std::size_t index, char form, std::uint64_t bits) {
    switch (form) {
    case 'e':
        return constantText(function, index, static_cast<std::uint32_t>(bits));
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

std::string memoryText(const Function& function, std::size_t index, const Parameter& parameter,
                       const CapturedValue& value) {
    const bool isText = (parameter.element == 'c' || parameter.element == 'C') && value.bytes.ends_with('\0');
    if (isText)
        return quoted(withoutZero(value.bytes));
    if (!isWrittenOut(parameter, value))
        return '<' + std::to_string(value.bytes.size()) + " bytes" +
               (value.skipped != 0 ? " from byte " + std::to_string(value.skipped) : "") + '>';
    std::string text = "{";
    const std::size_t count = value.bytes.size() / sizeOfForm(parameter.element);
    for (std::size_t i = 0; i < count; ++i)
        text += (i > 0 ? ", " : "") +
                numberText(function, index, parameter.element, elementAt(value.bytes, parameter.element, i));
    return named(parameter, text + '}');
}

std::string scalarText(const CapturedCall& call, std::size_t index, const Parameter& parameter,
                       const CapturedValue& value) {
    if (const auto constant = constantOf(call, index))
        return constantText(*call.function, index, *constant);
    if (parameter.form == 'u')
        if (const auto names = OGL::bitNames(call.function->name, static_cast<unsigned int>(index));
            !names.empty())
            return bitsText(names, static_cast<std::uint32_t>(value.bits));
    return named(parameter, numberText(*call.function, index, parameter.form, value.bits));
}

// Of a parameter by its place, or of the result.
std::string valueText(const CapturedCall& call, std::size_t index) {
    const bool isResult = index == call.values.size();
    const Parameter& parameter = isResult ? call.function->result : call.function->parameters[index];
    const CapturedValue& value = isResult ? call.result : call.values[index];
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
        return (parameter.form == 'o' ? "-> " : "") + memoryText(*call.function, index, parameter, value);
    default:
        return scalarText(call, index, parameter, value);
    }
}

} // namespace

std::optional<std::uint32_t> constantOf(const CapturedCall& call, std::size_t index) {
    if (index >= call.values.size())
        return std::nullopt;
    const char form = call.function->parameters[index].form;
    if (form != 'i' && form != 'f')
        return std::nullopt;
    std::uint32_t value = call.u32(index);
    if (form == 'f') {
        const float real = call.values[index].asFloat();
        if (!(real >= 0 && real < 65536) || real != std::floor(real))
            return std::nullopt;
        value = static_cast<std::uint32_t>(real);
    }
    const std::uint32_t before = index > 0 ? call.u32(index - 1) : 0;
    if (!OGL::isConstant(call.function->name, static_cast<unsigned int>(index), before, value))
        return std::nullopt;
    return value;
}

std::string constantText(const Function& function, std::size_t index, std::uint32_t value) {
    const char* const name = OGL::constantName(function.name, static_cast<unsigned int>(index), value);
    return name ? name : address(value);
}

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
        text += (i > 0 ? ", " : "") + valueText(call, i);
    text += ')';
    if (call.function->result.form != 0)
        text += " = " + valueText(call, call.values.size());
    return text;
}

} // namespace ZLT::Capture
