// The chain on a real driver: what the scripted one can't know.

#include "ExceptionOGL.h"
#include "PlainWindow.h"
#include "StartedDriver.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/OpenGLTracer.h"
#include "ogl/BufferFormat.h"
#include "ogl/ContextWindowed.h"

#include <cstdlib>
#include <memory>
#include <sstream>

using namespace ZLT::OGL;

namespace {

constexpr int size = 64;

class ChainDriverTest : public StartedDriver {
protected:
    void SetUp() override {
        StartedDriver::SetUp();
        if (IsSkipped())
            return;
        window_ = std::make_unique<PlainWindow>(size, size);
        context_ =
            std::make_unique<ContextWindowed>(window_->handle(), BufferFormat(BufferFormat::RGBA8_D24),
                                              Context::eDoubleBuffered, Context::eNoMultisample, nullptr);
        context_->makeCurrent();
        RecordProperty("renderer", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    }
    void TearDown() override {
        context_.reset();
        window_.reset();
        StartedDriver::TearDown();
    }

private:
    std::unique_ptr<PlainWindow> window_;
    std::unique_ptr<ContextWindowed> context_;
};

// Runs `call`, which must fail, and gives back what it threw.
template <class Call>
ExceptionOGL errorOf(Call call) {
    try {
        call();
    } catch (const ExceptionOGL& error) {
        return error;
    }
    ADD_FAILURE() << "nothing was thrown";
    return {"", 0, "", 0};
}

// A red quad on the left and, nearer, a textured one in the middle: blue texels below, green ones above.
void drawThroughChain() {
    constexpr std::uint8_t texels[] = {0, 0, 255, 255, 0, 255, 0, 255};
    GLuint texture = 0;
    CGM(Viewport, 0, 0, size, size);
    CGM(ClearColor, 0.0f, 0.0f, 0.0f, 1.0f);
    CGM(Clear, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    CGM(Enable, GL_DEPTH_TEST);
    CGM(GenTextures, 1, &texture);
    CGM(BindTexture, GL_TEXTURE_2D, texture);
    CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    CGM(TexEnvi, GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGBA, 1, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels);
    CGM(Enable, GL_TEXTURE_2D);
    CGM(Begin, GL_QUADS);
    for (const auto& [u, v] : {std::array{0, 0}, std::array{1, 0}, std::array{1, 1}, std::array{0, 1}}) {
        CGM(TexCoord2i, u, v);
        CGM(Vertex3f, static_cast<float>(u) - 0.5f, static_cast<float>(v) - 0.5f, -0.5f);
    }
    CGM(End);
    CGM(Disable, GL_TEXTURE_2D);
    CGM(Color3ub, 255, 0, 0);
    CGM(Rectf, -1.0f, -1.0f, 0.0f, 1.0f);
    CGM(Disable, GL_DEPTH_TEST);
    CGM(DeleteTextures, 1, &texture);
}

} // namespace

TEST_F(ChainDriverTest, aWrongCallIsAnExceptionWithTheCallersLine) {
    const ExceptionOGL error = errorOf([] { CGM(Enable, GL_POSITION); });
    const int line = __LINE__ - 1;
    EXPECT_EQ(error.errorNumber(), unsigned(GL_INVALID_ENUM));
    EXPECT_STREQ(error.what(), "invalid enumerant");
    EXPECT_STREQ(error.file(), __FILE__);
    EXPECT_EQ(error.line(), line);
    EXPECT_NO_THROW(CGM(Enable, GL_FOG)); // the error was taken off the driver
    EXPECT_EQ(errorOf([] { CGM(LineWidth, -1.0f); }).errorNumber(), unsigned(GL_INVALID_VALUE));
}

TEST_F(ChainDriverTest, getErrorReturnsTheFirstErrorAndThrowsOnASecond) {
    const auto raiseTwo = [] {
        glEnable(GL_POSITION);
        glLineWidth(-1.0f);
    };
    // A driver may keep one error flag or several: ask this one.
    raiseTwo();
    const GLenum first = glGetError();
    const GLenum second = glGetError();
    while (glGetError() != GL_NO_ERROR) {
    }
    EXPECT_EQ(first, unsigned(GL_INVALID_ENUM));

    raiseTwo();
    if (second == GL_NO_ERROR) {
        EXPECT_EQ(CGM(GetError), first);
        EXPECT_EQ(CGM(GetError), unsigned(GL_NO_ERROR));
    } else {
        EXPECT_EQ(errorOf([] { CGM(GetError); }).errorNumber(), second);
    }
}

TEST_F(ChainDriverTest, anErrorBetweenBeginAndEndComesOutAtEnd) {
    CGM(Begin, GL_TRIANGLES);
    EXPECT_EQ(errorOf([] { CGM(Begin, GL_TRIANGLES); }).errorNumber(), 0u);
    EXPECT_NO_THROW(CGM(Enable, GL_FOG)); // not allowed here
    EXPECT_NO_THROW(CGM(Vertex2f, 0.0f, 0.0f));
    EXPECT_EQ(errorOf([] { CGM(End); }).errorNumber(), unsigned(GL_INVALID_OPERATION));
    EXPECT_STREQ(errorOf([] { CGM(End); }).what(), "Unbalanced glEnd()!");
    EXPECT_NO_THROW(CGM(Finish));
}

TEST_F(ChainDriverTest, aTracedSceneShowsTheRightPixels) {
    std::ostringstream trace;
    OpenGLTracer tracer(trace);
    OpenGLInterceptor::Instance()->addInterceptor(&tracer);
    drawThroughChain();
    OpenGLInterceptor::Instance()->popInterceptor();

    const std::array red = {255, 0, 0}, green = {0, 255, 0}, blue = {0, 0, 255}, black = {0, 0, 0};
    EXPECT_EQ(pixelAt(4, 32), red);
    EXPECT_EQ(pixelAt(20, 24), blue);
    EXPECT_EQ(pixelAt(44, 24), blue);
    EXPECT_EQ(pixelAt(20, 40), green);
    EXPECT_EQ(pixelAt(20, 4), red);
    EXPECT_EQ(pixelAt(60, 32), black);
    EXPECT_NE(trace.str().find(": glColor3ub(\xFF, "), std::string::npos);
    EXPECT_NE(trace.str().find(": glRectf(makeFloat(-1082130432) /* -1 */, "), std::string::npos);
}

TEST_F(ChainDriverTest, entriesOutsideGL11ReachTheDriver) {
    const char* source = "void main() { gl_FragColor = vec4(0.0, 1.0, 1.0, 1.0) + gl_Color * 0.0; }";
    if (std::strtod(reinterpret_cast<const char*>(CGM(GetString, GL_VERSION)), nullptr) < 2.0)
        GTEST_SKIP() << "the driver has no GL 2.0";
    const GLuint shader = CGM(CreateShader, GL_FRAGMENT_SHADER);
    CGM(ShaderSource, shader, 1, &source, nullptr);
    CGM(CompileShader, shader);
    int status = 0;
    CGM(GetShaderiv, shader, GL_COMPILE_STATUS, &status);
    ASSERT_EQ(status, GL_TRUE);
    const GLuint program = CGM(CreateProgram);
    CGM(AttachShader, program, shader);
    CGM(LinkProgram, program);
    CGM(UseProgram, program);
    CGM(Rectf, -1.0f, -1.0f, 1.0f, 1.0f);
    EXPECT_EQ(pixelAt(32, 32), (std::array{0, 255, 255}));
    EXPECT_EQ(CGM(GetUniformLocation, program, "none"), -1);
    CGM(UseProgram, 0);
    CGM(DeleteProgram, program);
    CGM(DeleteShader, shader);
    EXPECT_EQ(errorOf([] { CGM(ActiveTexture, GL_FOG); }).errorNumber(), unsigned(GL_INVALID_ENUM));
}
