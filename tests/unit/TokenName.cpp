#include "extensionator/TokenName.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <random>
#include <string>

using namespace ZLT::OGL;

namespace {

const std::map<std::uint32_t, std::string>& table() {
    static const auto table = [] {
        std::map<std::uint32_t, std::string> names;
        std::ifstream in(ZLT_TABLES "/gl_tokens.tsv");
        std::string value, name;
        in >> value >> name; // the heading
        while (in >> value >> name)
            names[static_cast<std::uint32_t>(std::stoul(value, nullptr, 16))] = name;
        return names;
    }();
    return table;
}

// Without EXPECT_STREQ, which is too slow for millions.
void expectName(std::uint32_t value) {
    const auto found = table().find(value);
    const char* const expected = found == table().end() ? "Unknown Token" : found->second.c_str();
    if (TokenName(value) != std::string_view(expected))
        ADD_FAILURE() << std::hex << value << ": " << TokenName(value) << " instead of " << expected;
}

TEST(TokenName, NamesEveryRowOfTheTableAndNoneOfItsNeighbours) {
    ASSERT_EQ(2211u, table().size());
    for (const auto& [value, name] : table())
        for (const std::uint32_t near : {value - 1, value, value + 1, value ^ 0x80000000u, value | 0x10000u})
            expectName(near);
}

TEST(TokenName, ComparesAll32Bits) {
    for (std::uint32_t value = 0; value <= 0x20000; ++value)
        expectName(value);
    std::mt19937 random(3);
    for (int i = 0; i < 3000000; ++i)
        expectName(static_cast<std::uint32_t>(random()) >> (i % 16));
}

TEST(TokenName, CallsEveryByteButZeroTrue) {
    EXPECT_STREQ("GL_FALSE", boolToString(0));
    for (int value = 1; value < 256; ++value)
        EXPECT_STREQ("GL_TRUE", boolToString(static_cast<unsigned char>(value)));
}

} // namespace
