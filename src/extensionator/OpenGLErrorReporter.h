#pragma once

#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLErrorSinks.h"
#include "extensionator/OpenGLInterceptorDecorator.h"

#include <functional>
#include <memory>

namespace ZLT {
class LogicalException;
} // namespace ZLT

namespace ZLT::OGL {

struct CallPlace;

/// A layer for programs that can't take an exception: what the checker throws ends here in a report, and the
/// program goes on as it would without the chain.
///
///     OpenGLErrorReporter reporter(std::cerr);
///     const ScopedInterceptor installed(reporter);
///     drawOldScene(); // scene.cpp:105: error: GL_INVALID_ENUM in glEnable(0xDEAD)
///
/// Of equal errors of one line the first is reported; all are counted, and the counts come at the end, which
/// is finish() or the destructor. A call that failed gives 0 or null as its result. All error flags that the
/// driver holds after a call that failed are reported with that call.
///
/// Before the first call on a thread, and on another context that the library made current or wrapped there,
/// errors that are pending already are reported as raised outside of the chain, and so are those of which the
/// driver's message came between two calls. reportPending() looks at any time, after foreign code has drawn
/// for example. Between `cgmBegin` and `cgmEnd` nothing is asked. Where a context is lost, or GL reports
/// errors without end, one sentence says so, and no more is said about that context; its calls are still
/// handed on.
///
/// `cgmGetError` hands an error that was reported to the program that asks for it, once, as GL would. An
/// exception of the library itself ("currentContext either not created with ZLT::OGL") is reported as well;
/// that call was not made. Other exceptions pass.
///
/// Where the context has `GL_KHR_debug` (also without being a debug context) or `GL_ARB_debug_output`, the
/// reporter has the driver's messages sent to it, at once and on the thread of the call, which may slow a
/// driver down that works on threads of its own. A program's own message callback is called on. Messages
/// about an error go with its report; others, of the shader compiler for example, are reports of their own.
///
/// Push it in front of the checker, outside of a begin-end pair; layers in front of it see no error. A call
/// without error takes no lock and allocates nothing. Several threads may call at the same time.
class ZLT_OGL_API OpenGLErrorReporter final : public OpenGLInterceptorDecorator {
public:
    /// Which of the driver's messages are wanted. Called on the thread of the message, inside of the driver:
    /// it must not call GL.
    using MessageFilter = std::function<bool(const OpenGLDriverMessage&)>;

    /// Reports nowhere until a sink is added.
    /// @param next  the next layer, not owned; addInterceptor() replaces it. No call may pass while it is
    /// null
    explicit OpenGLErrorReporter(OpenGLInterceptor* next = nullptr);
    /// Reports as lines of text.
    /// @param out  not owned; must live as long as the reporter
    explicit OpenGLErrorReporter(std::ostream& out, OpenGLInterceptor* next = nullptr);
    /// Finishes, unless that was done and nothing was reported since, and takes the driver's messages of the
    /// current context no more. Take the layer off first.
    ~OpenGLErrorReporter() override;

    /// Reports to `sink` as well. Not while another thread is in a call.
    void addSink(std::shared_ptr<OpenGLErrorSink> sink);
    /// Which messages of the driver are reported; null for the default, all but notifications. Errors among
    /// them are used in any case to tell who raised an error. Not while another thread is in a call.
    void setMessageFilter(MessageFilter filter);
    /// Whether the driver is asked for its messages; true from the start. For contexts that are met from now
    /// on.
    void setDriverMessages(bool on);

    /// Reports what is pending in the current context as raised outside of the chain, with this place. For
    /// use after foreign code that draws, and outside of a begin-end pair; without a current context nothing
    /// is done.
    void reportPending(const char* file, unsigned int line);
    /// Whether nothing is said about the current context any more, since it is lost.
    bool isContextLost() const;
    /// Hands the counts to the sinks, and begins to count anew.
    void finish();
    /// How many errors came since the start, also those that were counted only. Messages of the driver
    /// without an error don't count.
    unsigned long long errorCount() const;

#include "extensionator/LayerEntries.inl"

private:
    struct State;
    friend struct State;

    // Around each call (OpenGLErrorReporter.inl).
    template <class Result, class... Parameters>
    Result reported(CallPlace place, Parameters... arguments);
    void enter(const char* file, unsigned int line);
    static bool leave(); // whether the driver said something
    // The calling thread's first call, or its first on another context.
    void settle(const char* file, unsigned int line);
    // A call that threw.
    void failed(const LogicalException& failure, const OpenGLCall& call);
    // After a call during which the driver said something.
    void tellMessages(unsigned int number, const char* file, unsigned int line);

    unsigned int serial_; // no two reporters of a process have the same one
    std::unique_ptr<State> state_;
};

} // namespace ZLT::OGL
