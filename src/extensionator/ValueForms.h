#pragma once

#include "extensionator/TokenName.h"

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <locale>
#include <ostream>
#include <string_view>
#include <type_traits>

/// @file
/// How a value of a GL call becomes text: one inserter for each form, used by every layer that writes.
///
/// A number uses the stream's own inserter, which follows its flags, precision, width and locale; while all
/// of these are as in a new stream, a short route writes the same bytes in a fraction of the time. Text needs
/// no short route. Streams that fail or throw behave alike on both, since either ends in one insertion.

namespace ZLT::OGL::ValueForms {

namespace Detail {

/// Room for a float or double. "%g" with six digits writes at most 13 characters: "-1.23457e-308".
inline constexpr std::size_t maxRealSize = 24;

/// For the floats from one power of two up to the next: the decimals that leave six digits in front of the
/// point, and the power of ten from which on it is one less. Where that is not a float, the nearest float
/// lies so close that rounding gives the same digits with either number.
struct Decimals {
    float limit;
    int below;
};

/// The first is 2^-14, just below 1e-4, and the last 2^19, just below 1e+06.
inline constexpr int firstExponent = 113;
inline constexpr auto decimalsForSixDigits = [] {
    constexpr float powers[] = {1e6f, 1e5f, 1e4f, 1e3f, 1e2f, 1e1f, 1e0f, 1e-1f, 1e-2f, 1e-3f};
    std::array<Decimals, 34> table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        const auto low = std::bit_cast<float>(static_cast<std::uint32_t>(firstExponent + i) << 23);
        int decimals = 0;
        while (decimals < 9 && low < powers[decimals + 1])
            ++decimals;
        table[i] = {powers[decimals], decimals};
    }
    return table;
}();

inline constexpr std::uint32_t powersOfTen[] = {1,      10,      100,      1000,      10000,
                                                100000, 1000000, 10000000, 100000000, 1000000000};

/// The six digits of `number` as bytes, the first one lowest.
inline std::uint64_t digitBytes(std::uint32_t number) {
    const auto pair = [](std::uint32_t number) { return std::uint64_t(number / 10 | number % 10 << 8); };
    return pair(number / 10000) | pair(number / 100 % 100) << 16 | pair(number % 100) << 32;
}

/// Writes `value` as "%g" does, if its magnitude is 0 or one for which that shows no exponent; returns the
/// end of the text; returns null otherwise. Exact, with ties to even: bench/ShortReals compares it with
/// `std::to_chars` for all 2^32 floats. Digits are written eight bytes at a time, also beyond the end of the
/// text; `to` has room for maxRealSize.
inline char* formatShort(char* to, float value) {
    static_assert(std::endian::native == std::endian::little);
    const std::uint32_t word = std::bit_cast<std::uint32_t>(value);
    const std::uint32_t magnitude = word & 0x7FFFFFFF;
    const float absolute = std::bit_cast<float>(magnitude);
    *to = '-';
    to += word >> 31;
    if (magnitude == 0) {
        *to = '0';
        return to + 1;
    }
    // From 999999.5 on, six digits round up to 1e+06.
    if (!(absolute >= 1e-4f && absolute < 999999.5f))
        return nullptr;

    // 24 bits times at most 10^9 fit into 54 bits, and the binary point stands at least four bits up. To the
    // nearest, ties to even.
    const int exponent = static_cast<int>(magnitude >> 23);
    const Decimals& range = decimalsForSixDigits[exponent - firstExponent];
    int decimals = range.below - (absolute >= range.limit);
    const int shift = 150 - exponent;
    const std::uint64_t exact = std::uint64_t((magnitude & 0x7FFFFF) | 0x800000) * powersOfTen[decimals];
    const std::uint64_t half = std::uint64_t(1) << (shift - 1);
    auto number = static_cast<std::uint32_t>((exact + half - 1 + (exact >> shift & 1)) >> shift);
    if (number == 1000000) {
        number = 100000;
        --decimals;
    }

    const std::uint64_t digits = digitBytes(number);
    const int count = 8 - std::countl_zero(digits) / 8;
    const std::uint64_t text = digits | 0x303030303030;
    const int whole = 6 - decimals;
    if (whole > 0) {
        const std::uint64_t fraction = text >> 8 * whole;
        std::memcpy(to, &text, 8);
        to[whole] = '.';
        std::memcpy(to + whole + 1, &fraction, 8);
        return to + (count > whole ? count + 1 : whole);
    }
    constexpr char zeros[] = {'0', '.', '0', '0', '0'};
    std::memcpy(to, zeros, sizeof(zeros));
    to += 2 - whole;
    std::memcpy(to, &text, 8);
    return to + count;
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
    static const std::locale& classic = std::locale::classic();
    constexpr auto relevant = std::ios_base::basefield | std::ios_base::floatfield | std::ios_base::showbase |
                              std::ios_base::showpoint | std::ios_base::showpos | std::ios_base::uppercase;
    return (out.flags() & relevant) == std::ios_base::dec && out.width() == 0 && out.getloc() == classic;
}

/// Likewise for the next float or double: with six digits as well, and finite, since the platforms write a
/// NaN differently.
template <std::floating_point Real>
bool isPlainReal(const std::ostream& out, Real value) {
    return std::isfinite(value) && out.precision() == 6 && isPlain(out);
}

/// The text of one form, put together on the stack for a single insertion. Holds at most two texts of
/// `largestText`, one number and a few characters between them; no name of a function or token is longer.
class Piece {
public:
    static constexpr std::size_t largestText = 80;

    // By hand, so that Piece() doesn't fill the text with zeros.
    Piece() : end_(text_) {}

    Piece& text(std::string_view text) {
        std::memcpy(end_, text.data(), text.size());
        end_ += text.size();
        return *this;
    }
    template <std::integral T>
    Piece& number(T value) {
        end_ = std::to_chars(end_, std::end(text_), value).ptr;
        return *this;
    }
    template <std::floating_point T>
    Piece& real(T value) {
        end_ = formatReal(end_, value);
        return *this;
    }
    std::ostream& insertInto(std::ostream& out) { return out.write(text_, end_ - text_); }

private:
    char text_[2 * largestText + 24];
    char* end_;
};

/// The byte, and the text up to a zero byte, as they are. In a foreign program, of which nothing may be
/// expected, others stand in their place (src/intercept/ByteForms.cpp).
void writeByte(std::ostream& out, char value);
void writeText(std::ostream& out, const char* text);

} // namespace Detail

/// What comes after an argument. Each form writes it in its own insertion.
inline constexpr std::string_view comma = ", ";
inline constexpr std::string_view closing = ")\n";

/// "file:line: function(", which begins a line.
struct CallSite {
    CallSite(const char* file, unsigned int line, std::string_view function = "")
        : file(file), line(line), function(function) {}
    const char* file;
    unsigned int line;
    std::string_view function;
};
inline std::ostream& operator<<(std::ostream& out, CallSite site) {
    // Most paths are short enough to go with the rest.
    if (site.file && Detail::isPlain(out))
        if (const std::string_view file = site.file; file.size() <= Detail::Piece::largestText)
            return Detail::Piece()
                .text(file)
                .text(":")
                .number(site.line)
                .text(": ")
                .text(site.function)
                .insertInto(out);
    out << site.file;
    if (!Detail::isPlain(out))
        return out << ':' << site.line << ": " << site.function;
    return Detail::Piece().text(":").number(site.line).text(": ").text(site.function).insertInto(out);
}

/// GLenum: its name.
struct Enumerant {
    explicit Enumerant(unsigned int value, std::string_view after = "") : value(value), after(after) {}
    unsigned int value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Enumerant form) {
    const std::string_view name = TokenName(form.value);
    if (out.width() != 0)
        return out << name << form.after;
    return Detail::Piece().text(name).text(form.after).insertInto(out);
}

/// GLboolean: "GL_FALSE" or "GL_TRUE".
struct Boolean {
    explicit Boolean(unsigned char value, std::string_view after = "") : value(value), after(after) {}
    unsigned char value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Boolean form) {
    return out << boolToString(form.value) << form.after;
}

/// Whole numbers and doubles: decimal.
template <class T>
struct Number {
    explicit Number(T value, std::string_view after = "") : value(value), after(after) {}
    T value;
    std::string_view after;
};
template <class T>
std::ostream& operator<<(std::ostream& out, Number<T> form) {
    if constexpr (std::is_floating_point_v<T>) {
        if (!Detail::isPlainReal(out, form.value))
            return out << form.value << form.after;
        return Detail::Piece().real(form.value).text(form.after).insertInto(out);
    } else {
        if (!Detail::isPlain(out))
            return out << form.value << form.after;
        return Detail::Piece().number(form.value).text(form.after).insertInto(out);
    }
}

/// GLhandleARB: "(GLhandleARB)" and the number.
struct Handle {
    explicit Handle(unsigned int value, std::string_view after = "") : value(value), after(after) {}
    unsigned int value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Handle form) {
    return out << "(GLhandleARB)" << Number(form.value, form.after);
}

/// GLintptr and GLsizeiptr: the low 32 bits, signed. The high half is dropped: tools match on it.
struct Low32 {
    explicit Low32(long long value, std::string_view after = "")
        : value(static_cast<std::int32_t>(value)), after(after) {}
    std::int32_t value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Low32 form) {
    return out << Number(form.value, form.after);
}

/// GLbyte and GLubyte by value: the byte itself and not its number: tools match on it.
struct Character {
    explicit Character(signed char value, std::string_view after = "")
        : value(static_cast<char>(value)), after(after) {}
    explicit Character(unsigned char value, std::string_view after = "")
        : value(static_cast<char>(value)), after(after) {}
    char value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Character form) {
    Detail::writeByte(out, form.value);
    return out << form.after;
}

/// GLfloat: "makeFloat(1065353216) /* 1 */", the bits as a signed number so that a replay loses nothing.
struct Float {
    explicit Float(float value, std::string_view after = "") : value(value), after(after) {}
    float value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Float form) {
    const auto bits = std::bit_cast<std::int32_t>(form.value);
    if (!Detail::isPlainReal(out, form.value))
        return out << "makeFloat(" << bits << ") /* " << form.value << " */" << form.after;
    return Detail::Piece()
        .text("makeFloat(")
        .number(bits)
        .text(") /* ")
        .real(form.value)
        .text(" */")
        .text(form.after)
        .insertInto(out);
}

/// Pointer to characters or bytes: the text they are, up to a zero byte.
template <class T>
struct Text {
    explicit Text(T* value, std::string_view after = "")
        : value(reinterpret_cast<const char*>(value)), after(after) {}
    const char* value;
    std::string_view after;
};
template <class T>
std::ostream& operator<<(std::ostream& out, Text<T> form) {
    Detail::writeText(out, form.value);
    return out << form.after;
}

/// Any other pointer: 16 upper-case hexadecimal digits.
struct Pointer {
    explicit Pointer(const volatile void* value, std::string_view after = "")
        : value(reinterpret_cast<std::uintptr_t>(value)), after(after) {}
    std::uint64_t value;
    std::string_view after;
};
inline std::ostream& operator<<(std::ostream& out, Pointer form) {
    char text[16];
    for (int i = 15; i >= 0; --i, form.value >>= 4)
        text[i] = "0123456789ABCDEF"[form.value & 15];
    const std::string_view digits(text, sizeof(text));
    if (out.width() != 0)
        return out << digits << form.after;
    return Detail::Piece().text(digits).text(form.after).insertInto(out);
}

} // namespace ZLT::OGL::ValueForms
