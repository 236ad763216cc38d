#pragma once

#include <cstdint>
#include <stdexcept>
#include <string_view>

namespace ZLT::Interception {

/// Reads a file's bytes one after the other, and trusts none of them.
/// Everything throws std::runtime_error where the bytes end too early.
class Bytes {
public:
    explicit Bytes(std::string_view bytes, std::uint64_t offset = 0) : bytes_(bytes) { skip(offset); }

    std::uint64_t offset() const { return offset_; }
    std::uint64_t rest() const { return bytes_.size() - offset_; }
    bool atEnd() const { return rest() == 0; }

    std::string_view take(std::uint64_t size) {
        if (size > rest())
            throw std::runtime_error("it ends too early");
        const std::string_view taken = bytes_.substr(offset_, size);
        offset_ += size;
        return taken;
    }
    void skip(std::uint64_t size) { take(size); }

    /// Of up to eight bytes, the lowest first.
    std::uint64_t number(unsigned int size) {
        std::uint64_t number = 0;
        unsigned int shift = 0;
        for (const char byte : take(size)) {
            number |= std::uint64_t{static_cast<unsigned char>(byte)} << shift;
            shift += 8;
        }
        return number;
    }
    std::uint8_t byte() { return static_cast<std::uint8_t>(number(1)); }
    std::uint16_t half() { return static_cast<std::uint16_t>(number(2)); }
    std::uint32_t word() { return static_cast<std::uint32_t>(number(4)); }

    /// Numbers of any size, in groups of seven bits (LEB128).
    std::uint64_t grouped() {
        unsigned int bits = 0;
        bool isNegative = false;
        return groups(bits, isNegative);
    }
    std::int64_t groupedSigned() {
        unsigned int bits = 0;
        bool isNegative = false;
        std::uint64_t number = groups(bits, isNegative);
        if (isNegative && bits < 64)
            number |= ~std::uint64_t{0} << bits;
        return static_cast<std::int64_t>(number);
    }

    /// Up to its zero, which is skipped.
    std::string_view text() {
        const std::size_t end = bytes_.find('\0', offset_);
        const std::string_view text = take((end == bytes_.npos ? bytes_.size() : end) - offset_);
        skip(1);
        return text;
    }

private:
    std::uint64_t groups(unsigned int& bits, bool& isNegative) {
        std::uint64_t number = 0;
        for (bool more = true; more; bits += 7) {
            const std::uint8_t group = byte();
            if (bits < 64)
                number |= std::uint64_t{group & 0x7Fu} << bits;
            isNegative = group & 0x40;
            more = group & 0x80;
        }
        return number;
    }

    std::string_view bytes_;
    std::uint64_t offset_ = 0;
};

} // namespace ZLT::Interception
