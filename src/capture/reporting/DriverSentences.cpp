#include "capture/reporting/DriverSentences.h"

#include "capture/FindFunction.h"
#include "platform/GL.h"

#include <string_view>
#include <utility>

namespace ZLT::Capture::Reporting {

namespace {

thread_local std::vector<std::string> sentences;

void APIENTRY hear(GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* message, const void*) {
    constexpr std::size_t most = 16; // that nobody takes
    if (type != GL_DEBUG_TYPE_ERROR)
        return;
    if (sentences.size() >= most)
        sentences.erase(sentences.begin());
    std::string_view text(message, length < 0 ? std::char_traits<char>::length(message)
                                              : static_cast<std::size_t>(length));
    while (!text.empty() && (text.back() == '\n' || text.back() == '\0'))
        text.remove_suffix(1);
    sentences.emplace_back(text);
}

} // namespace

void listenToDriver(const CapturedContext& context) {
    const bool isKhr = context.has("GL_KHR_debug") || context.isVersion(4, 3);
    if (!isKhr && !context.has("GL_ARB_debug_output"))
        return;
    PFNGLDEBUGMESSAGECALLBACKPROC setCallback = nullptr;
    findFunction(setCallback, isKhr ? "glDebugMessageCallback" : "glDebugMessageCallbackARB");
    if (!setCallback)
        return;
    setCallback(hear, nullptr);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    if (isKhr) // the older extension is on in debug contexts, and has no switch
        glEnable(GL_DEBUG_OUTPUT);
}

std::vector<std::string> takeSentences() { return std::exchange(sentences, {}); }

} // namespace ZLT::Capture::Reporting
