#include "ExceptionOGL.h"
#include "FakeGL.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLTracer.h"

#include <gmock/gmock.h>

#include <iomanip>
#include <sstream>

using namespace ZLT::OGL;
using namespace std::string_literals;

namespace {

class Tracer : public testing::Test {
protected:
    Tracer() { FakeGL::reset(); }

    std::ostringstream text;
    OpenGLErrorChecker checker;
    OpenGLTracer tracer{text, &checker};
};

template <class T = void>
T* at(std::uintptr_t address) {
    return reinterpret_cast<T*>(address); // NOLINT(performance-no-int-to-ptr)
}

unsigned char bytes[] = "ab";
const signed char signedBytes[] = {'-', '1', 0};
char log[] = "x\ty";

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

const Line lines[] = {
    LINE("()", Finish),
    LINE("(GL_TEXTURE_2D, 5)", BindTexture, 0x0DE1, 5),
    LINE("(Unknown Token)", Enable, 0x8A11),
    LINE("(16640)", Clear, 0x4100),
    LINE("(GL_NEVER, -3, 4294967295)", StencilFunc, 0x0200, -3, 0xFFFFFFFF),
    LINE("(GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE)", ColorMask, 0, 1, 2, 255),
    LINE("(-32768, 0, 32767)", Vertex3s, -32768, 0, 32767),
    LINE("(65535, 0, 1)", Color3us, 65535, 0, 1),
    // What a whole number means makes no difference: a format and a filter stay numbers.
    LINE("(GL_TEXTURE_2D, 0, 32856, 4, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, 0000000000000000)", TexImage2D,
         0x0DE1, 0, 0x8058, 4, 2, 0, 0x1908, 0x1401, nullptr),
    LINE("(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, 9729)", TexParameteri, 0x0DE1, 0x2801, 9729),
    // Floats show their bits as a signed number; doubles don't.
    LINE("(GL_TEXTURE_2D, GL_TEXTURE_MAX_ANISOTROPY_EXT, makeFloat(1082130432) /* 4 */)", TexParameterf,
         0x0DE1, 0x84FE, 4),
    LINE("(makeFloat(1065353216) /* 1 */, makeFloat(-1082130432) /* -1 */, makeFloat(1036831949) /* 0.1 */, "
         "makeFloat(-2147483648) /* -0 */)",
         ClearColor, 1, -1, 0.1f, -0.0f),
    LINE("(0.333333, -2.5e-07, 1.23457e+06)", Vertex3d, 1.0 / 3, -2.5e-7, 1234567),
    LINE("(1)", ClearDepth, 1),
    // The four that show a float bare.
    LINE("(GL_FRONT, GL_SHININESS, 0.5)", FragmentMaterialfEXT, 0x0404, 0x1601, 0.5f),
    LINE("(GL_FRONT, GL_SHININESS, 1e-05)", FragmentMaterialfSGIX, 0x0404, 0x1601, 1e-5f),
    LINE("(GL_FRONT, Unknown Token, -2)", ImageTransformParameterfHP, 0x0404, 0x8155, -2),
    LINE("(GL_PIXEL_TRANSFORM_2D_EXT, GL_FRONT, 1e+09)", PixelTransformParameterfEXT, 0x8330, 0x0404, 1e9f),
    LINE("((GLhandleARB)7, (GLhandleARB)4000000000)", AttachObjectARB, 7, 4000000000u),
    // Sizes and offsets lose their high half; other 64-bit values don't.
    LINE("(GL_ARRAY_BUFFER, 16, FEDCBA9876543210, GL_STATIC_DRAW)", BufferData, 0x8892, 0x100000010,
         at(0xFEDCBA9876543210), 0x88E4),
    LINE("(GL_ARRAY_BUFFER, -1, -2147483648, 0000000000000000)", BufferSubDataARB, 0x8892, 0xFFFFFFFF,
         0x180000000, nullptr),
    LINE("(0000000000000010, 1, 18446744073709551615)", WaitSync, at<__GLsync>(0x10), 1, ~0ull),
    LINE("(-1, 9223372036854775808)", Uniformui64NV, -1, 1ull << 63),
    LINE("(15360, 0, 65535)", Color3hNV, 0x3C00, 0, 65535),
    // A byte by value is a character, a zero byte too; a pointer to bytes is a text, whatever it points at.
    LINE("(A, B, C)", Color3ub, 65, 66, 67),
    LINE("(\xFF, \0, \n)", Color3b, -1, 0, 10),
    LINE("(3, 0, normal)", BindAttribLocation, 3, 0, "normal"),
    LINE("((GLhandleARB)3, 4, 0000000000000000, x\ty)", GetInfoLogARB, 3, 4, nullptr, log),
    LINE("(2, 0000000000000000, ab)", AreTexturesResident, 2, nullptr, bytes),
    LINE("(8, 2, makeFloat(0) /* 0 */, makeFloat(0) /* 0 */, makeFloat(0) /* 0 */, makeFloat(0) /* 0 */, ab)",
         Bitmap, 8, 2, 0, 0, 0, 0, bytes),
    LINE("(-1)", Normal3bv, signedBytes),
    // Any other pointer is an address.
    LINE("(1, 2, 0000000000000020, 0000000000ABCDEF)", ShaderSource, 1, 2, at<const char*>(0x20),
         at<int>(0xABCDEF)),
    LINE("(0000000000000040)", Vertex3hvNV, at<unsigned short>(0x40)),
};

TEST_F(Tracer, WritesEachValueInItsForm) {
    for (const Line& line : lines) {
        text.str("");
        line.call(tracer);
        EXPECT_EQ("a.cpp:7: " + line.text + "\n", text.str());
    }
}

TEST_F(Tracer, ShowsTheCallAndHandsBackItsResult) {
    FakeGL::setResult("glGetString", static_cast<const unsigned char*>(bytes));
    EXPECT_EQ(bytes, tracer.cgmGetString("dir\\b.cpp", 4000000000u, 0x1F02));
    EXPECT_EQ("dir\\b.cpp:4000000000: glGetString(GL_VERSION)\n", text.str());
    for (const int length : {0, 79, 80, 81, 1000}) {
        text.str("");
        const std::string path(length, 'x');
        tracer.cgmBindTexture(path.c_str(), 1, 0x0DE1, 5);
        EXPECT_EQ(path + ":1: glBindTexture(GL_TEXTURE_2D, 5)\n", text.str());
    }
}

struct Apostrophes : std::numpunct<char> {
    char do_thousands_sep() const override { return '\''; }
    char do_decimal_point() const override { return ','; }
    std::string do_grouping() const override { return "\3"; }
};

struct Format {
    void (*apply)(std::ostream& out);
    const char *line, *bits, *value; // of cgmPassThrough(-12345.678f) on line 1200
};

TEST_F(Tracer, FollowsTheFormatOfTheStreamAndLeavesItAlone) {
    const Format formats[] = {
        {[](auto&) {}, "a.cpp:1200", "-968825162", "-12345.7"},
        {[](auto& out) { out << std::hex; }, "a.cpp:4b0", "c640e6b6", "-12345.7"},
        {[](auto& out) { out << std::oct << std::showbase; }, "a.cpp:02260", "030620163266", "-12345.7"},
        {[](auto& out) { out << std::showpos; }, "a.cpp:1200", "-968825162", "-12345.7"},
        {[](auto& out) { out << std::setprecision(3); }, "a.cpp:1200", "-968825162", "-1.23e+04"},
        {[](auto& out) { out << std::fixed; }, "a.cpp:1200", "-968825162", "-12345.677734"},
        {[](auto& out) { out << std::scientific << std::uppercase; }, "a.cpp:1200", "-968825162",
         "-1.234568E+04"},
        // A width is for one insertion, the first.
        {[](auto& out) { out << std::setw(8) << std::setfill('*'); }, "***a.cpp:1200", "-968825162",
         "-12345.7"},
        {[](auto& out) { out.imbue(std::locale(std::locale::classic(), new Apostrophes)); }, "a.cpp:1'200",
         "-968'825'162", "-12'345,7"},
    };
    for (const Format& format : formats) {
        std::ostringstream out;
        format.apply(out);
        const auto flags = out.flags();
        const auto precision = out.precision();
        const char fill = out.fill();
        tracer.setOutputStream(out);
        tracer.cgmPassThrough("a.cpp", 1200, -12345.678f);
        EXPECT_EQ(format.line + ": glPassThrough(makeFloat("s + format.bits + ") /* " + format.value +
                      " */)\n",
                  out.str());
        EXPECT_EQ(flags, out.flags());
        EXPECT_EQ(precision, out.precision());
        EXPECT_EQ(fill, out.fill());
    }
    std::ostringstream out;
    tracer.setOutputStream(out);
    out << std::showpos;
    tracer.cgmVertex3d("a.cpp", 1, 0.5, -1, 2);
    tracer.cgmVertex2i("a.cpp", 2, 3, -4);
    EXPECT_EQ("a.cpp:1: glVertex3d(+0.5, -1, +2)\na.cpp:2: glVertex2i(+3, -4)\n", out.str());
}

TEST_F(Tracer, WritesToTheStreamThatWasSetLast) {
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

// Takes so many characters and fails then, by its result or by an exception.
class FullBuffer : public std::streambuf {
public:
    FullBuffer(std::size_t room, bool throws) : room_(room), throws_(throws) {}
    std::string text;

private:
    int_type overflow(int_type c) override {
        if (text.size() == room_)
            return throws_ ? throw std::domain_error("full") : traits_type::eof();
        text += traits_type::to_char_type(c);
        return c;
    }
    std::size_t room_;
    bool throws_;
};

TEST_F(Tracer, AStreamThatThrowsKeepsTheCallFromBeingMadeAndOneThatFailsDoesNot) {
    const std::string line =
        "a.cpp:8: glMap1f(GL_MAP1_INDEX, makeFloat(0) /* 0 */, makeFloat(1065353216) /* 1 */, 3, "
        "4, 0000000000000000)\n";
    for (const bool throws : {false, true})
        for (const auto exceptions : {std::ios_base::badbit, std::ios_base::goodbit})
            for (std::size_t room = 0; room <= line.size(); ++room) {
                FakeGL::reset();
                FullBuffer buffer(room, throws);
                std::ostream out(&buffer);
                out.exceptions(exceptions);
                tracer.setOutputStream(out);
                bool thrown = false;
                try {
                    tracer.cgmMap1f("a.cpp", 8, 0x0D91, 0, 1, 3, 4, nullptr);
                } catch (const std::ios_base::failure&) {
                    thrown = !throws;
                } catch (const std::domain_error&) { // the buffer's own, as from a plain insertion
                    thrown = throws;
                }
                EXPECT_EQ(exceptions == std::ios_base::badbit && room < line.size(), thrown) << room;
                EXPECT_EQ(thrown, FakeGL::calls().empty()) << room;
                EXPECT_EQ(line.substr(0, room), buffer.text);
                EXPECT_EQ(room < line.size(), out.bad());
            }
}

class SyncBuffer : public std::stringbuf {
public:
    std::string flushed = "nothing";

private:
    int sync() override {
        flushed = str();
        return 0;
    }
};

TEST_F(Tracer, FlushesWhenTheStreamAsksForItAndOnlyThen) {
    SyncBuffer buffer, tiedBuffer;
    std::ostream out(&buffer), tied(&tiedBuffer);
    tied << "prompt";
    tracer.setOutputStream(out);
    tracer.cgmPointSize("a.cpp", 7, 1);
    out.tie(&tied);
    tracer.cgmPointSize("a.cpp", 8, 1);
    EXPECT_EQ("prompt", tiedBuffer.flushed);
    EXPECT_EQ("nothing", buffer.flushed);

    // The whole line stands, and is flushed, when the next layer throws.
    buffer.str("");
    out << std::unitbuf;
    FakeGL::pushError(0x0500);
    EXPECT_THROW(tracer.cgmPointSize("a.cpp", 9, 1), ExceptionOGL);
    EXPECT_EQ("a.cpp:9: glPointSize(makeFloat(1065353216) /* 1 */)\n", buffer.flushed);
}

} // namespace
