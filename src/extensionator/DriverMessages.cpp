#include "extensionator/DriverMessages.h"

#include "extensionator/DriverStrings.h"
#include "extensionator/Load.h"
#include "extensionator/ReporterThread.h"
#include "platform/GL.h"

#include <algorithm>
#include <deque>
#include <mutex>
#include <string_view>
#include <utility>

namespace ZLT::OGL {

namespace Detail {

constinit thread_local ReporterThread reporterThread;

void noticeContextChange() noexcept { reporterThread.settledFor = 0; }

namespace {

// A driver that talks without end, while nobody takes the messages, must not fill the memory.
constexpr std::size_t mostWaiting = 1000;

thread_local std::vector<OpenGLDriverMessage> waiting;

std::mutex receiversLock;
std::vector<MessageReceiver*> receivers; // the newest last

// A callback that was there before ours, which is called on. One for each context that had one; they stay,
// since a driver may call with them until its context is gone.
struct Previous {
    GLDEBUGPROC function;
    const void* user;
};
std::mutex previousLock;
std::deque<Previous> previousCallbacks;

void store(OpenGLDriverMessage message, std::string_view text) {
    const std::lock_guard guard(receiversLock);
    if (receivers.empty() || waiting.size() >= mostWaiting)
        return;
    MessageReceiver& receiver = *receivers.back();
    if (!message.isError() && message.severity == GL_DEBUG_SEVERITY_NOTIFICATION &&
        receiver.dropsNotifications())
        return;
    while (text.ends_with('\n') || text.ends_with('\r') || text.ends_with('\0'))
        text.remove_suffix(1);
    message.text = text;
    if (!receiver.wants(message))
        return;
    waiting.push_back(std::move(message));
    ++reporterThread.messages;
}

void APIENTRY received(GLenum source, GLenum type, GLuint id, GLenum severity, GLsizei length,
                       const GLchar* text, const void* user) {
    // Nothing may be thrown through a driver: what there is no memory for is lost.
    try {
        const auto size = length < 0 ? std::string_view(text).size() : static_cast<std::size_t>(length);
        store({source, type, id, severity, reporterThread.inCall, {}}, {text, size});
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
    if (const auto* previous = static_cast<const Previous*>(user))
        previous->function(source, type, id, severity, length, text, previous->user);
}

// The function that sets the callback, or null.
PFNGLDEBUGMESSAGECALLBACKPROC callbackSetter(bool& isKhr) {
    const String names = ' ' + driverExtensions(3) + ' ';
    isKhr = names.find(" GL_KHR_debug ") != String::npos;
    if (isKhr)
        return functionAddress<PFNGLDEBUGMESSAGECALLBACKPROC>("glDebugMessageCallback");
    if (names.find(" GL_ARB_debug_output ") != String::npos)
        return functionAddress<PFNGLDEBUGMESSAGECALLBACKPROC>("glDebugMessageCallbackARB");
    return nullptr;
}

Previous currentCallback() {
    void* function = nullptr;
    void* user = nullptr;
    glGetPointerv(GL_DEBUG_CALLBACK_FUNCTION, &function);
    glGetPointerv(GL_DEBUG_CALLBACK_USER_PARAM, &user);
    return {reinterpret_cast<GLDEBUGPROC>(function), user};
}

} // namespace

void addReceiver(MessageReceiver& receiver) {
    const std::lock_guard guard(receiversLock);
    receivers.push_back(&receiver);
}

void removeReceiver(MessageReceiver& receiver) {
    const std::lock_guard guard(receiversLock);
    std::erase(receivers, &receiver);
}

void listenToDriver() {
    bool isKhr = false;
    const PFNGLDEBUGMESSAGECALLBACKPROC setCallback = callbackSetter(isKhr);
    if (!setCallback)
        return;
    const Previous before = currentCallback();
    if (before.function != received) {
        const Previous* kept = nullptr;
        if (before.function) {
            const std::lock_guard guard(previousLock);
            kept = &previousCallbacks.emplace_back(before);
        }
        setCallback(received, kept);
    }
    // A context that is no debug context is silent until it is told to speak.
    if (isKhr)
        glEnable(GL_DEBUG_OUTPUT);
    glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
    // What these calls raised is ours: a driver of 3.0 with the extension may refuse one of them.
    for (int flags = 0; flags < 8 && glGetError(); ++flags)
        continue;
    takeMessages();
}

void stopListening() {
    bool isKhr = false;
    const PFNGLDEBUGMESSAGECALLBACKPROC setCallback = callbackSetter(isKhr);
    if (!setCallback)
        return;
    const Previous now = currentCallback();
    if (now.function != received)
        return;
    if (const auto* previous = static_cast<const Previous*>(now.user))
        setCallback(previous->function, previous->user);
    else
        setCallback(nullptr, nullptr);
}

std::vector<OpenGLDriverMessage> takeMessages() {
    reporterThread.messages = 0;
    return std::exchange(waiting, {});
}

} // namespace Detail
} // namespace ZLT::OGL
