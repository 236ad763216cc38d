// The chain on a real driver: what the scripted one can't know.

#include "ExceptionOGL.h"
#include "StartedDriver.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/ScopedInterceptor.h"

#include <algorithm>
#include <cstdlib>
#include <sstream>

using namespace ZLT::OGL;

namespace {

class ChainDriverTest : public CurrentDriver {};

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

TEST_F(ChainDriverTest, anErrorBetweenBeginAndEndComesOutAtEnd) {
    CGM(Begin, GL_TRIANGLES);
    EXPECT_EQ(errorOf([] { CGM(Begin, GL_TRIANGLES); }).errorNumber(), 0u);
    EXPECT_NO_THROW(CGM(Enable, GL_FOG)); // not allowed here
    EXPECT_NO_THROW(CGM(Vertex2f, 0.0f, 0.0f));
    EXPECT_EQ(errorOf([] { CGM(End); }).errorNumber(), unsigned(GL_INVALID_OPERATION));
    EXPECT_STREQ(errorOf([] { CGM(End); }).what(), "Unbalanced glEnd()!");
    EXPECT_NO_THROW(CGM(Finish));
}

// ZLT_MESSAGES is "no" where the driver's own messages are hidden from it.
TEST_F(ChainDriverTest, theReporterSaysWhatTheDriverSaysAndWhoRaisedAnError) {
    const char* setting = std::getenv("ZLT_MESSAGES");
    const bool hidden = setting && std::string(setting) == "no";
    const ExtensionManager& manager = *ExtensionManager::Instance();
    const auto names = manager.driverExtensions();
    const bool speaks =
        std::ranges::count(names, "GL_KHR_debug") || std::ranges::count(names, "GL_ARB_debug_output");
    EXPECT_FALSE(hidden && speaks);
    std::ostringstream text;
    const auto newText = [&] {
        const std::string told = text.str();
        text.str("");
        return told;
    };
    glEnable(GL_FOG_MODE); // nobody asked yet
    OpenGLErrorReporter reporter(text);
    const ScopedInterceptor installed(reporter);
    CGM(Finish);
    EXPECT_NE(newText().find(": warning: GL_INVALID_ENUM raised before this call, outside the chain\n"),
              std::string::npos);

    CGM(Enable, 0xDEAD);
    const std::string told = newText();
    EXPECT_NE(told.find(": error: GL_INVALID_ENUM in glEnable(0xDEAD)\n"), std::string::npos) << told;
    EXPECT_EQ(speaks, told.find(": note: the driver says: ") != std::string::npos) << told;
    EXPECT_EQ(GLenum(GL_INVALID_ENUM), CGM(GetError));
    CGM(Finish);
    EXPECT_EQ("", newText());
    if (!speaks)
        return;

    glEnable(GL_FOG_MODE); // between two calls
    CGM(Finish);
    EXPECT_NE(newText().find(": warning: GL_INVALID_ENUM raised before this call, outside the chain\n"),
              std::string::npos);
    reporter.setMessageFilter([](const OpenGLDriverMessage& message) { return !message.text.empty(); });
    const GLuint shader = CGM(CreateShader, GL_VERTEX_SHADER);
    const GLchar* source = "nonsense";
    CGM(ShaderSource, shader, 1, &source, nullptr);
    CGM(CompileShader, shader);
    CGM(DeleteShader, shader);
    EXPECT_NE(newText().find(" says: 0:1"), std::string::npos) << "the shader compiler speaks too";
}
