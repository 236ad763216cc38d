#include "extensionator/TokenName.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace ZLT::OGL {

namespace {

// All names one after the other, so that the tables below hold offsets and the loader has nothing to
// relocate. "Unknown Token" stands at offset 0.
constexpr char text[] = "Unknown Token\0"
#define ZLT_GL_TOKEN(value, name) name "\0"
#include "extensionator/TokenRows.inl"
#undef ZLT_GL_TOKEN
    ;
static_assert(sizeof(text) <= 0x10000, "offsets have 16 bits");

struct Row {
    std::uint32_t value;
    std::size_t size;
};
constexpr Row rows[] = {
#define ZLT_GL_TOKEN(value, name) {value, sizeof(name)},
#include "extensionator/TokenRows.inl"
#undef ZLT_GL_TOKEN
};

struct Token {
    std::uint32_t value = 0;
    std::uint16_t offset = 0;
};
constexpr auto tokens = [] {
    std::array<Token, std::size(rows)> tokens;
    std::size_t offset = sizeof("Unknown Token");
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        tokens[i] = {rows[i].value, static_cast<std::uint16_t>(offset)};
        offset += rows[i].size;
    }
    return tokens;
}();

// The enumerants lie in dense runs below 0x9200: pages of 32 values, and the one page 0 for all that are
// empty. Above are single bits and two masks.
constexpr std::uint32_t pageSize = 32;
constexpr std::uint32_t enumerantEnd = 0x9200;
constexpr std::size_t enumerantCount =
    std::ranges::lower_bound(tokens, enumerantEnd, {}, &Token::value) - tokens.begin();

constexpr std::size_t pageCount = [] {
    std::size_t count = 1;
    std::uint32_t last = ~0u;
    for (std::size_t i = 0; i < enumerantCount; ++i) {
        count += tokens[i].value / pageSize != last;
        last = tokens[i].value / pageSize;
    }
    return count;
}();
static_assert(pageCount <= 256, "page numbers have 8 bits");

struct Pages {
    std::array<std::uint8_t, enumerantEnd / pageSize> number{};
    std::array<std::array<std::uint16_t, pageSize>, pageCount> offsets{};
};

constexpr Pages pages = [] {
    Pages pages;
    std::uint8_t used = 0;
    for (std::size_t i = 0; i < enumerantCount; ++i) {
        std::uint8_t& number = pages.number[tokens[i].value / pageSize];
        if (number == 0)
            number = ++used;
        pages.offsets[number][tokens[i].value % pageSize] = tokens[i].offset;
    }
    return pages;
}();

// Offset for each single bit above the enumerants; 0, "Unknown Token", for one without a name.
constexpr auto bits = [] {
    std::array<std::uint16_t, 32> bits{};
    for (std::size_t i = enumerantCount; i < tokens.size(); ++i)
        if (std::has_single_bit(tokens[i].value))
            bits[std::countr_zero(tokens[i].value)] = tokens[i].offset;
    return bits;
}();

constexpr std::size_t maskCount = std::ranges::count_if(
    tokens, [](std::uint32_t value) { return value >= enumerantEnd && !std::has_single_bit(value); },
    &Token::value);

constexpr auto masks = [] {
    std::array<Token, maskCount> masks;
    std::ranges::copy_if(tokens, masks.begin(), [](const Token& token) {
        return token.value >= enumerantEnd && !std::has_single_bit(token.value);
    });
    return masks;
}();

} // namespace

const char* TokenName(unsigned int value) {
    if (value < enumerantEnd)
        return text + pages.offsets[pages.number[value / pageSize]][value % pageSize];
    // A single bit. std::has_single_bit is a call where the processor is not known to count bits.
    if ((value & (value - 1)) == 0)
        return text + bits[std::countr_zero(value)];
    for (const Token& mask : masks)
        if (mask.value == value)
            return text + mask.offset;
    return text;
}

const char* boolToString(unsigned char value) { return value ? "GL_TRUE" : "GL_FALSE"; }

} // namespace ZLT::OGL
