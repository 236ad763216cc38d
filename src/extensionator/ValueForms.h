#pragma once

#include "extensionator/TokenName.h"

#include <bit>
#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <locale>
#include <ostream>
#include <string_view>
#include <type_traits>

/// @file
/// How a value of a GL call becomes text: one inserter for each form, used by every layer that writes.
///
/// A number goes by the stream's own inserter, which follows its flags, precision, width and locale; while
/// all of these are as in a new stream, a short route writes the same bytes in a fraction of the time. Text
/// needs no short route. Streams that fail or throw behave alike on both, since either ends in one insertion.

namespace ZLT::OGL::ValueForms {

namespace Detail {

/// The largest number of characters that "%g" with six digits writes: "-1.23457e-308".
inline constexpr std::size_t maxRealSize = 13;

/// Writes `value` as "%g" does, if its magnitude is 0 or lies where that shows no exponent, and returns the
/// end of the text; returns null otherwise and writes nothing. Exact, with ties to even: bench/ShortReals
/// compares it with `std::to_chars` for all 2^32 floats.
inline char* formatShort(char* to, float value) {
    const std::uint32_t word = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t magnitude = word & 0x7FFFFFFF;
    const float absolute = std::bit_cast<float>(magnitude);
    const bool zero = magnitude == 0;
    // From 999999.5 on, six digits round up to 1e+06.
    if (!zero && !(absolute >= 1e-4f && absolute < 999999.5f))
        return nullptr;
    *to = '-';
    to += word >> 31;
    if (zero) {
        *to = '0';
        return to + 1;
    }

    // The decimals that leave six digits in front of the point. Where a power of ten is not a float, its
    // nearest float lies so close that rounding gives the same digits with either number of decimals.
    int decimals = 0;
    std::uint64_t scale = 1;
    for (const float power : {1e5f, 1e4f, 1e3f, 1e2f, 1e1f, 1e0f, 1e-1f, 1e-2f, 1e-3f}) {
        if (absolute >= power)
            break;
        ++decimals;
        scale *= 10;
    }

    // 24 bits times at most 10^9 fit into 54 bits, and the binary point stands at least four bits up.
    const int shift = 150 - static_cast<int>(magnitude >> 23);
    const std::uint64_t exact = ((magnitude & 0x7FFFFF) | 0x800000) * scale;
    std::uint64_t digits = exact >> shift;
    const std::uint64_t rest = exact & ((std::uint64_t(1) << shift) - 1);
    const std::uint64_t half = std::uint64_t(1) << (shift - 1);
    digits += rest > half || (rest == half && (digits & 1));
    if (digits == 1000000) {
        digits = 100000;
        --decimals;
    }

    char text[6];
    auto remaining = static_cast<std::uint32_t>(digits);
    for (int i = 5; i >= 0; --i) {
        text[i] = static_cast<char>('0' + remaining % 10);
        remaining /= 10;
    }
    int count = 6;
    const int whole = 6 - decimals;
    while (count > whole && count > 1 && text[count - 1] == '0')
        --count;
    if (whole <= 0) {
        *to++ = '0';
        *to++ = '.';
        for (int i = whole; i < 0; ++i)
            *to++ = '0';
    }
    for (int i = 0; i < count; ++i) {
        if (i == whole && i > 0)
            *to++ = '.';
        *to++ = text[i];
    }
    return to;
}

/// Writes `value` as a new stream does, and returns the end of the text.
template <std::floating_point Real>
char* formatReal(char* to, Real value) {
    const auto narrow = static_cast<float>(value);
    if (static_cast<Real>(narrow) == value)
        if (char* end = formatShort(to, narrow))
            return end;
    return std::to_chars(to, to + maxRealSize, value, std::chars_format::general, 6).ptr;
}

/// Whether the next whole number comes out as from a new stream: decimal, not padded, no sign or grouping.
inline bool isPlain(const std::ostream& out) {
    constexpr auto relevant = std::ios_base::basefield | std::ios_base::floatfield | std::ios_base::showbase |
                              std::ios_base::showpoint | std::ios_base::showpos | std::ios_base::uppercase;
    return (out.flags() & relevant) == std::ios_base::dec && out.width() == 0 &&
           out.getloc() == std::locale::classic();
}

/// Likewise for the next float or double: with six digits as well.
inline bool isPlainReal(const std::ostream& out) { return out.precision() == 6 && isPlain(out); }

} // namespace Detail

/// "file:line: ", which begins a line.
struct CallSite {
    CallSite(const char* file, unsigned int line) : file(file), line(line) {}
    const char* file;
    unsigned int line;
};
inline std::ostream& operator<<(std::ostream& out, CallSite site) {
    out << site.file;
    if (!Detail::isPlain(out))
        return out << ':' << site.line << ": ";
    char text[16] = ":";
    char* end = std::to_chars(text + 1, text + sizeof(text) - 2, site.line).ptr;
    *end++ = ':';
    *end++ = ' ';
    return out.write(text, end - text);
}

/// GLenum: its name.
struct Enumerant {
    explicit Enumerant(unsigned int value) : value(value) {}
    unsigned int value;
};
inline std::ostream& operator<<(std::ostream& out, Enumerant form) { return out << TokenName(form.value); }

/// GLboolean: "GL_FALSE" or "GL_TRUE".
struct Boolean {
    explicit Boolean(unsigned char value) : value(value) {}
    unsigned char value;
};
inline std::ostream& operator<<(std::ostream& out, Boolean form) { return out << boolToString(form.value); }

/// Whole numbers and doubles: decimal.
template <class T>
struct Number {
    explicit Number(T value) : value(value) {}
    T value;
};
template <class T>
std::ostream& operator<<(std::ostream& out, Number<T> form) {
    if constexpr (std::is_floating_point_v<T>) {
        if (!Detail::isPlainReal(out))
            return out << form.value;
        char text[Detail::maxRealSize];
        return out.write(text, Detail::formatReal(text, form.value) - text);
    } else {
        if (!Detail::isPlain(out))
            return out << form.value;
        char text[24];
        return out.write(text, std::to_chars(text, text + sizeof(text), form.value).ptr - text);
    }
}

/// GLhandleARB: "(GLhandleARB)" and the number.
struct Handle {
    explicit Handle(unsigned int value) : value(value) {}
    unsigned int value;
};
inline std::ostream& operator<<(std::ostream& out, Handle form) {
    return out << "(GLhandleARB)" << Number(form.value);
}

/// GLintptr and GLsizeiptr: the low 32 bits, signed. The high half is dropped on purpose.
struct Low32 {
    explicit Low32(long long value) : value(static_cast<std::int32_t>(value)) {}
    std::int32_t value;
};
inline std::ostream& operator<<(std::ostream& out, Low32 form) { return out << Number(form.value); }

/// GLbyte and GLubyte by value: the byte itself, on purpose, and not its number.
struct Character {
    explicit Character(signed char value) : value(static_cast<char>(value)) {}
    explicit Character(unsigned char value) : value(static_cast<char>(value)) {}
    char value;
};
inline std::ostream& operator<<(std::ostream& out, Character form) { return out << form.value; }

/// GLfloat: "makeFloat(1065353216) /* 1 */", the bits as a signed number so that a replay loses nothing.
struct Float {
    explicit Float(float value) : value(value) {}
    float value;
};
inline std::ostream& operator<<(std::ostream& out, Float form) {
    const auto bits = std::bit_cast<std::int32_t>(form.value);
    if (!Detail::isPlainReal(out))
        return out << "makeFloat(" << bits << ") /* " << form.value << " */";
    char text[48] = "makeFloat(";
    char* end = std::to_chars(text + 10, text + 21, bits).ptr;
    for (const char c : {')', ' ', '/', '*', ' '})
        *end++ = c;
    end = Detail::formatReal(end, form.value);
    for (const char c : {' ', '*', '/'})
        *end++ = c;
    return out.write(text, end - text);
}

/// Pointer to characters or bytes: the text they are, up to a zero byte.
template <class T>
struct Text {
    explicit Text(T* value) : value(reinterpret_cast<const char*>(value)) {}
    const char* value;
};
template <class T>
std::ostream& operator<<(std::ostream& out, Text<T> form) {
    return out << form.value;
}

/// Any other pointer: 16 upper-case hexadecimal digits.
struct Pointer {
    explicit Pointer(const volatile void* value) : value(reinterpret_cast<std::uintptr_t>(value)) {}
    std::uint64_t value;
};
inline std::ostream& operator<<(std::ostream& out, Pointer form) {
    char text[16];
    for (int i = 15; i >= 0; --i, form.value >>= 4)
        text[i] = "0123456789ABCDEF"[form.value & 15];
    return out << std::string_view(text, sizeof(text));
}

/// Between two arguments.
inline constexpr const char* comma = ", ";

} // namespace ZLT::OGL::ValueForms
