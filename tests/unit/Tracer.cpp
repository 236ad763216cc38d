#include "ExceptionOGL.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLTracer.h"

#include <gmock/gmock.h>

#include <iomanip>
#include <sstream>

using namespace ZLT::OGL;
using namespace std::string_literals;

namespace {

class TracerTest : public testing::Test {
protected:
    LibraryWithAllOfGL library;
    std::ostringstream text;
    OpenGLErrorChecker checker;
    OpenGLTracer tracer{text, &checker};
};

template <class T = void>
T* at(std::uintptr_t address) {
    return reinterpret_cast<T*>(address); // NOLINT(performance-no-int-to-ptr)
}

const signed char signedBytes[] = {'-', '1', 0};

struct Line {
    void (*call)(OpenGLInterceptor& gl);
    std::string text;
};

// The text behind the function's name, the function and its arguments.
#define LINE(text, name, ...)                                                                                \
    {                                                                                                        \
        [](OpenGLInterceptor& gl) { gl.cgm##name("a.cpp", 7 __VA_OPT__(, ) __VA_ARGS__); },                  \
            "gl" #name + text##s                                                                             \
    }

// Of each form one. Sweep.cpp has all entries, with many values.
const Line lines[] = {
    LINE("(GL_NEVER, -3, 4294967295)", StencilFunc, 0x0200, -3, 0xFFFFFFFF),
    LINE("(GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE)", ColorMask, 0, 1, 2, 255),
    // What a whole number means makes no difference: a format stays a number.
    LINE("(GL_TEXTURE_2D, 0, 32856, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, 0000000000000000)", TexImage2D,
         0x0DE1, 0, 0x8058, 4, 2, 0, 0x1908, 0x1401, nullptr),
    // Floats show their bits as a signed number; doubles don't.
    LINE("(makeFloat(1065353216) /* 1 */, makeFloat(-1082130432) /* -1 */, makeFloat(1036831949) /* 0.1 */, "
         "makeFloat(-2147483648) /* -0 */)",
         ClearColor, 1, -1, 0.1f, -0.0f),
    LINE("(0.333333, -2.5e-07, 1.23457e+06)", Vertex3d, 1.0 / 3, -2.5e-7, 1234567),
    // One of four that show a float bare.
    LINE("(GL_FRONT, Unknown Token, -2)", ImageTransformParameterfHP, 0x0404, 0x8155, -2),
    LINE("((GLhandleARB)7, (GLhandleARB)4000000000)", AttachObjectARB, 7, 4000000000u),
    // Sizes and offsets lose their high half; other 64-bit values don't.
    LINE("(GL_ARRAY_BUFFER, 16, FEDCBA9876543210, GL_STATIC_DRAW)", BufferData, 0x8892, 0x100000010,
         at(0xFEDCBA9876543210), 0x88E4),
    LINE("(0000000000000010, 1, 18446744073709551615)", WaitSync, at<__GLsync>(0x10), 1, ~0ull),
    // A byte by value is a character, a zero byte too; a pointer to bytes is a text.
    LINE("(\xFF, \0, \n)", Color3b, -1, 0, 10),
    LINE("(3, 0, normal)", BindAttribLocation, 3, 0, "normal"),
    LINE("(-1)", Normal3bv, signedBytes),
};

TEST_F(TracerTest, eachValueIsWrittenInItsForm) {
    for (const Line& line : lines) {
        SCOPED_TRACE(line.text);
        text.str("");
        line.call(tracer);
        EXPECT_EQ("a.cpp:7: " + line.text + "\n", text.str());
    }
}

TEST_F(TracerTest, theCallersPlaceIsShownWhateverItsLength) {
    const std::string path(1000, 'x');
    tracer.cgmBindTexture(path.c_str(), 4000000000u, 0x0DE1, 5);
    EXPECT_EQ(path + ":4000000000: glBindTexture(GL_TEXTURE_2D, 5)\n", text.str());
}

// ValueForms.cpp compares every format with what the stream does.
TEST_F(TracerTest, theFormatOfTheStreamIsFollowedAndLeftAlone) {
    text << std::hex << std::uppercase << std::setprecision(3) << std::setfill('*');
    const auto flags = text.flags();
    tracer.cgmPassThrough("a.cpp", 1200, -12345.678f);
    text << std::fixed << std::dec << std::setw(8); // a width is for one insertion, the first
    tracer.cgmPassThrough("a.cpp", 1200, -12345.678f);
    EXPECT_EQ("a.cpp:4B0: glPassThrough(makeFloat(C640E6B6) /* -1.23E+04 */)\n"
              "***a.cpp:1200: glPassThrough(makeFloat(-968825162) /* -12345.678 */)\n",
              text.str());
    EXPECT_EQ(flags & ~std::ios_base::hex, text.flags() & ~(std::ios_base::dec | std::ios_base::fixed));
    EXPECT_EQ(3, text.precision());
    EXPECT_EQ('*', text.fill());
}

TEST_F(TracerTest, theStreamThatWasSetLastIsWritten) {
    EXPECT_EQ(&std::cout, OpenGLTracer().outputStream());
    EXPECT_EQ(nullptr, OpenGLTracer().interceptor());
    std::ostringstream other;
    tracer.cgmFinish("a.cpp", 1);
    tracer.setOutputStream(other);
    tracer.cgmFlush("a.cpp", 2);
    EXPECT_EQ(&other, static_cast<const OpenGLTracer&>(tracer).outputStream());
    EXPECT_EQ("a.cpp:1: glFinish()\n", text.str());
    EXPECT_EQ("a.cpp:2: glFlush()\n", other.str());
}

// Takes so many characters and then fails.
struct FullBuffer : std::streambuf {
    explicit FullBuffer(std::size_t room) { setp(text, text + room); }
    char text[100];
};

TEST_F(TracerTest, aStreamThatThrowsKeepsTheCallFromBeingMadeAndOneThatFailsDoesNot) {
    const std::string line = "a.cpp:8: glTexCoord2f(makeFloat(0) /* 0 */, makeFloat(1065353216) /* 1 */)\n";
    for (const bool throws : {false, true})
        for (std::size_t room = 0; room <= line.size(); ++room) {
            FakeGL::reset();
            FullBuffer buffer(room);
            std::ostream out(&buffer);
            out.exceptions(throws ? std::ios_base::badbit : std::ios_base::goodbit);
            tracer.setOutputStream(out);
            const bool refused = throws && room < line.size();
            if (refused)
                EXPECT_THROW(tracer.cgmTexCoord2f("a.cpp", 8, 0, 1), std::ios_base::failure);
            else
                tracer.cgmTexCoord2f("a.cpp", 8, 0, 1);
            EXPECT_EQ(refused, FakeGL::calls().empty()) << room;
            EXPECT_EQ(line.substr(0, room), std::string(buffer.text, room));
            EXPECT_EQ(room < line.size(), out.bad());
        }
}

TEST_F(TracerTest, theLineStandsWhenTheNextLayerThrows) {
    FakeGL::pushError(0x0500);
    EXPECT_THROW(tracer.cgmPointSize("a.cpp", 9, 1), ExceptionOGL);
    EXPECT_EQ("a.cpp:9: glPointSize(makeFloat(1065353216) /* 1 */)\n", text.str());
}

} // namespace
