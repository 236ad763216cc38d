#include "capture/exporting/SourceText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <span>
#include <utility>

namespace ZLT::Capture {

namespace {

template <class Value>
void append(std::string& to, Value value) {
    char text[40];
    to.append(text, std::to_chars(text, text + sizeof text, value).ptr);
}

void appendHex(std::string& to, std::uint64_t value) {
    char text[24] = "0x";
    to.append(text, std::to_chars(text + 2, text + sizeof text, value, 16).ptr);
}

// As C++ takes it: "1" would be an integer.
template <class Value>
void appendReal(std::string& to, Value value) {
    const std::size_t start = to.size();
    append(to, value);
    if (to.find_first_of(".e", start) == std::string::npos)
        to += ".0";
}

} // namespace

void appendFloat(std::string& to, float value) {
    if (std::isfinite(value)) {
        appendReal(to, value);
        to += 'f';
        return;
    }
    to += "float_of(";
    appendHex(to, std::bit_cast<std::uint32_t>(value));
    to += ')';
}

void appendDouble(std::string& to, double value) {
    if (std::isfinite(value)) {
        appendReal(to, value);
        return;
    }
    to += "double_of(";
    appendHex(to, std::bit_cast<std::uint64_t>(value));
    to += ')';
}

void appendNumber(std::string& to, std::int64_t value) {
    // The smallest ones have no literal: a minus stands in front of one that is too large.
    if (value == INT32_MIN)
        to += "(-2147483647 - 1)";
    else if (value == INT64_MIN)
        to += "(-9223372036854775807 - 1)";
    else
        append(to, value);
}

void appendNumber(std::string& to, std::uint64_t value) {
    append(to, value);
    if (value > INT32_MAX)
        to += 'u';
}

void appendText(std::string& to, std::string_view text) {
    to += '"';
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char letter = text[i];
        if (letter == '"' || letter == '\\')
            (to += '\\') += letter;
        else if (letter == '\n') {
            to += "\\n";
            if (i + 1 < text.size())
                to += "\"\n        \"";
        } else if (letter == '\t')
            to += "\\t";
        else if (letter == '?')
            to += "\\?"; // no trigraphs
        else if (static_cast<unsigned char>(letter) < ' ' || static_cast<unsigned char>(letter) >= 0x7F) {
            const auto code = static_cast<unsigned char>(letter);
            to += '\\';
            for (const int shift : {6, 3, 0})
                to += static_cast<char>('0' + ((code >> shift) & 7));
        } else
            to += letter;
    }
    to += '"';
}

void appendComment(std::string& to, std::string_view text) {
    for (const char letter : text)
        to += static_cast<unsigned char>(letter) < ' ' || letter == 0x7F ? ' ' : letter;
    if (text.ends_with('\\')) // the next line would belong to it
        to += '.';
}

void ConstantText::use(std::string_view name, std::uint32_t value) {
    if (!used_.contains(name))
        used_.emplace(name, value);
}

void ConstantText::append(std::string& to, std::uint32_t value) {
    append(to, OGL::constantName({}, 0, value), value);
}

void ConstantText::append(std::string& to, const Function& function, std::size_t parameter,
                          std::uint32_t value) {
    append(to, OGL::constantName(function.name, static_cast<unsigned int>(parameter), value), value);
}

void ConstantText::append(std::string& to, const char* name, std::uint32_t value) {
    if (!name)
        return appendHex(to, value);
    use(name, value);
    to += name;
}

void ConstantText::appendBits(std::string& to, std::span<const OGL::NamedConstant> names,
                              std::uint32_t value) {
    const char* separator = "";
    OGL::eachBit(names, value, [&](const char* name, std::uint32_t bits) {
        to += separator;
        separator = " | ";
        if (bits == 0)
            to += '0';
        else
            append(to, name, bits);
    });
}

} // namespace ZLT::Capture
