#include "extensionator/TokenName.h"

#include "extensionator/ConstantNames.h"
#include "extensionator/OpenGLCall.h"
#include "platform/GL.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <map>
#include <random>
#include <sstream>
#include <string>
#include <vector>

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

TEST(TokenNameTest, everyRowOfTheTableIsNamedAndNoneOfItsNeighbours) {
    ASSERT_EQ(2211u, table().size());
    for (const auto& [value, name] : table())
        for (const std::uint32_t other : {value - 1, value, value + 1, value ^ 0x80000000u, value | 0x10000u})
            expectName(other);
}

TEST(TokenNameTest, all32BitsAreCompared) {
    for (std::uint32_t value = 0; value <= 0x20000; ++value)
        expectName(value);
    std::mt19937 random(3);
    for (int i = 0; i < 3000000; ++i)
        expectName(static_cast<std::uint32_t>(random()) >> (i % 16));
    // Pairs of bits and runs of bits.
    for (int low = 0; low < 32; ++low)
        for (int high = low; high < 32; ++high) {
            expectName(1u << low | 1u << high);
            expectName((2u << high) - (1u << low));
        }
}

TEST(TokenNameTest, collidingMeaningsAreResolvedInTheKnownWay) {
    // A core name wins over a suffix and ARB over a vendor, but nothing is younger than GL 3.0.
    // clang-format off
    const std::map<std::uint32_t, const char*> names = {
        {0x0, "GL_POINTS"}, {0x1, "GL_CURRENT_BIT"}, {0x2, "GL_POINT_BIT"}, {0x3, "GL_LINE_STRIP"},
        {0x4, "GL_LINE_BIT"}, {0x8, "GL_POLYGON_BIT"}, {0xA, "GL_LINES_ADJACENCY_ARB"}, {0x4100, "Unknown Token"},
        {0x100, "GL_ACCUM"}, {0x80000000, "GL_TEXCOORD4_BIT_PGI"}, {0xFFFFFFFF, "GL_CLIENT_ALL_ATTRIB_BITS"},
        {0x0506, "GL_INVALID_FRAMEBUFFER_OPERATION"}, {0x0507, "Unknown Token"}, {0x8620, "GL_VERTEX_PROGRAM_ARB"},
        {0x8816, "GL_ALPHA_FLOAT32_APPLE"}, {0x8DD9, "GL_GEOMETRY_SHADER_ARB"}, {0x864F, "GL_DEPTH_CLAMP_NV"},
        {0x8A11, "Unknown Token"}, {0x8F36, "Unknown Token"}, {0x911D, "GL_WAIT_FAILED"}, {0x911E, "Unknown Token"},
    };
    // clang-format on
    for (const auto& [value, name] : names)
        EXPECT_STREQ(name, TokenName(value)) << std::hex << value;
}

TEST(TokenNameTest, everyByteButZeroIsTrue) {
    EXPECT_STREQ("GL_FALSE", boolToString(0));
    for (int value = 1; value < 256; ++value)
        EXPECT_STREQ("GL_TRUE", boolToString(static_cast<unsigned char>(value)));
}

// A call with one argument of interest: what a reader is told of it.
std::string readable(const char* name, const std::vector<CallValue>& values) {
    unsigned int number = 0;
    while (std::string_view(openGLEntryName(number)) != name)
        ++number;
    std::ostringstream out;
    OpenGLCall(number, nullptr, 0, values.data()).writeReadableArguments(out);
    return out.str();
}

TEST(ConstantNamesTest, aReaderIsToldTheMeaningOfTheArgument) {
    EXPECT_EQ("GL_TRIANGLES", readable("glBegin", {4}));
    EXPECT_EQ("0xE", readable("glBegin", {14}));
    EXPECT_EQ("GL_POLYGON, 0, 3", readable("glDrawArrays", {9, 0, 3}));
    EXPECT_EQ("GL_NONE", readable("glDrawBuffer", {0}));
    EXPECT_EQ("GL_FRONT_LEFT", readable("glDrawBuffer", {0x400}));
    EXPECT_EQ("GL_ONE, GL_ZERO", readable("glBlendFunc", {1, 0}));
    EXPECT_EQ("GL_NEVER, 1, 255", readable("glStencilFunc", {0x200, 1, 255}));
    EXPECT_EQ("GL_LIGHT0", readable("glEnable", {0x4000}));
    EXPECT_EQ("0x40000000", readable("glEnable", {0x40000000}));
    EXPECT_EQ("GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT", readable("glClear", {0x4100}));
    EXPECT_EQ("GL_DEPTH_BUFFER_BIT | 0x1", readable("glClear", {0x101}));
    EXPECT_EQ("0", readable("glClear", {0}));
    EXPECT_EQ("GL_ALL_ATTRIB_BITS", readable("glPushAttrib", {0xFFFFFFFFu}));
    EXPECT_EQ("GL_CURRENT_BIT | GL_LINE_BIT", readable("glPushAttrib", {5}));
    EXPECT_EQ("GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP",
              readable("glTexParameteri", {GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP}));
    EXPECT_EQ("GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 1024",
              readable("glTexParameteri", {GL_TEXTURE_2D, GL_TEXTURE_BASE_LEVEL, 1024}));
    EXPECT_EQ("GL_VERTEX_PROGRAM_ARB, 0, 10242, 9729, 0, 0",
              readable("glProgramEnvParameterI4iNV", {GL_VERTEX_PROGRAM_NV, 0, 0x2802, 9729, 0, 0}));
    const void* const nothing = nullptr;
    EXPECT_EQ("GL_TEXTURE_2D, 0, GL_RGB, 4, 4, 0, GL_RGB, GL_FLOAT, null",
              readable("glTexImage2D", {GL_TEXTURE_2D, 0, GL_RGB, 4, 4, 0, GL_RGB, GL_FLOAT, nothing}));
    EXPECT_EQ("GL_TEXTURE_2D, 0, 3, 4, 4, 0, GL_RGB, GL_FLOAT, null",
              readable("glTexImage2D", {GL_TEXTURE_2D, 0, 3, 4, 4, 0, GL_RGB, GL_FLOAT, nothing}));
    EXPECT_STREQ("GL_NO_ERROR", constantName("glGetError", -1u, 0));
}

} // namespace
