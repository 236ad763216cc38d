#pragma once

#include "capture/Export.h"

#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>

/// @file
/// How values lie in a capture (docs/capture-format.md): integers in groups of seven bits, the lowest first,
/// signed ones with their sign in the lowest bit; floats as their bytes.

namespace ZLT::Capture {

static_assert(std::endian::native == std::endian::little, "a capture has the byte order of x86");

/// The most bytes that one number takes.
inline constexpr std::size_t longestNumber = 10;

/// Writes a number; at least longestNumber bytes are there.
/// @return behind it
inline char* putNumber(char* to, std::uint64_t number) {
    while (number >= 0x80) {
        *to++ = static_cast<char>(number | 0x80);
        number >>= 7;
    }
    *to++ = static_cast<char>(number);
    return to;
}

/// The same for a value of any type that a call has.
template <class Value>
char* putValue(char* to, Value value) {
    if constexpr (std::is_floating_point_v<Value>) {
        std::memcpy(to, &value, sizeof value);
        return to + sizeof value;
    } else if constexpr (std::is_pointer_v<Value>) {
        return putNumber(to, reinterpret_cast<std::uintptr_t>(value));
    } else if constexpr (std::is_signed_v<Value>) {
        const auto wide = static_cast<std::int64_t>(value);
        return putNumber(to,
                         (static_cast<std::uint64_t>(wide) << 1) ^ static_cast<std::uint64_t>(wide >> 63));
    } else {
        return putNumber(to, value);
    }
}

/// The same at the end of a text.
template <class Value>
void appendValue(std::string& to, Value value) {
    char bytes[longestNumber];
    to.append(bytes, putValue(bytes, value));
}

/// What does not hold together, with the place in the file.
class ZLT_CAPTURE_API FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ~FormatError() override;
};

/// Reads what the functions above wrote. Trusts nothing: each function throws FormatError where the bytes end
/// too early, or say what can't be.
class ByteReader {
public:
    explicit ByteReader(std::string_view bytes) : bytes_(bytes) {}

    bool isAtEnd() const { return at_ == bytes_.size(); }
    std::size_t position() const { return at_; }
    std::size_t left() const { return bytes_.size() - at_; }

    std::uint64_t number() {
        std::uint64_t value = 0;
        for (unsigned shift = 0; shift < 64; shift += 7) {
            const auto byte = static_cast<unsigned char>(*take(1).data());
            value |= std::uint64_t(byte & 0x7F) << shift;
            if (byte < 0x80)
                return value;
        }
        throw FormatError("a number of more than 64 bits");
    }
    template <std::unsigned_integral Value>
    Value numberOf() {
        const std::uint64_t value = number();
        if (value > static_cast<Value>(-1))
            throw FormatError("the number " + std::to_string(value) + " has more than " +
                              std::to_string(8 * sizeof(Value)) + " bits");
        return static_cast<Value>(value);
    }
    std::int64_t signedNumber() {
        const std::uint64_t value = number();
        return static_cast<std::int64_t>(value >> 1) ^ -static_cast<std::int64_t>(value & 1);
    }
    template <std::floating_point Value>
    Value real() {
        Value value;
        std::memcpy(&value, take(sizeof value).data(), sizeof value);
        return value;
    }
    /// The next bytes, which stay where they are.
    std::string_view take(std::uint64_t size) {
        if (size > left())
            throw FormatError(std::to_string(size) + " bytes where " + std::to_string(left()) + " are left");
        const std::string_view bytes = bytes_.substr(at_, size);
        at_ += size;
        return bytes;
    }
    /// Bytes with their number in front.
    std::string_view text() { return take(number()); }

private:
    std::string_view bytes_;
    std::size_t at_ = 0;
};

} // namespace ZLT::Capture
