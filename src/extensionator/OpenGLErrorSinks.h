#pragma once

#include "Export.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <cstddef>
#include <functional>
#include <iosfwd>
#include <vector>

/// @file
/// Where an OpenGLErrorReporter's reports go, and what a report is.

namespace ZLT::OGL {

/// A message of the driver, by `GL_KHR_debug` or `GL_ARB_debug_output`. The numbers are GL's own.
struct OpenGLDriverMessage {   // NOLINT(bugprone-exception-escape): a move allocates nothing
    unsigned int source = 0;   ///< GL_DEBUG_SOURCE_API, ...
    unsigned int type = 0;     ///< GL_DEBUG_TYPE_ERROR, ...
    unsigned int id = 0;       ///< the driver's number for this kind of message
    unsigned int severity = 0; ///< GL_DEBUG_SEVERITY_HIGH, ...
    bool insideCall = false;   ///< whether it came while the thread was in a call of the chain
    String text;               ///< without a line end

    /// Whether the type is GL_DEBUG_TYPE_ERROR.
    ZLT_OGL_API bool isError() const noexcept;
    /// "driver", "window system", "shader compiler", "third party", "application" or "other".
    ZLT_OGL_API const char* sourceName() const noexcept;
    /// "error", "deprecated behavior", "undefined behavior", "portability", "performance", "marker", "other".
    ZLT_OGL_API const char* typeName() const noexcept;
    /// "high", "medium", "low" or "notification".
    ZLT_OGL_API const char* severityName() const noexcept;
};

/// A caller of the call that failed.
struct OpenGLStackFrame {
    String function; ///< empty where it is not known
    String file;     ///< as for the report; the module and the offset in it where it is not known
    unsigned int line = 0;
};

/// One thing that went wrong. Lives as long as the call that hands it over, unless it is copied.
struct OpenGLErrorReport {
    enum class Kind {
        CallFailed,    ///< GL reported an error for the call
        CallRefused,   ///< the call was not made: an unbalanced glBegin or glEnd, or a context that is not
                       ///< known
        RaisedBefore,  ///< the error was there before the call; something outside of the chain raised it
        ContextLost,   ///< the context is lost, or none is current; nothing more is said about it
        DriverMessage, ///< a message of the driver without an error, of the shader compiler for example
        FoundByCheck,  ///< GL reports nothing, and the call does harm or nothing of what it seems to do: what
                       ///< `zlt_ogl check --more` finds
    };
    enum class Level { Error, Warning, Note };

    Kind kind = Kind::CallFailed;
    String file;               ///< the caller's file; empty where it is not known
    unsigned int line = 0;     ///< the caller's line; 0 where it is not known
    const char* function = ""; ///< "glEnable"
    String arguments;          ///< for a reader: "0xDEAD"; of a call that failed, was refused or was checked
    unsigned int code = 0;     ///< the value of `glGetError`, or 0
    String reason;             ///< "GL_INVALID_ENUM", or why the call was refused
    String check;              ///< of a FoundByCheck: "out-of-bounds", "unreadable-pointer", ...
    /// What the driver said about it, or, of a DriverMessage, the one message.
    std::vector<OpenGLDriverMessage> messages;
    /// The callers of the function that made the call, the nearest first. The reporter leaves it empty; a
    /// sink of the client's own may fill it and hand the report on.
    std::vector<OpenGLStackFrame> stack;

    /// DriverMessage: by severity. RaisedBefore: a warning, since the line is not to blame. A name that was
    /// never made: a warning, since GL allows it. Else an error.
    ZLT_OGL_API Level level() const noexcept;
    /// What happened, in one line: "GL_INVALID_ENUM in glEnable(0xDEAD)".
    ZLT_OGL_API String sentence() const;
    /// A rule's name for tools that group by it: "GL_INVALID_ENUM", "not-called", "context-lost",
    /// "driver-message", or the check.
    ZLT_OGL_API String rule() const;
};

/// How often an error of one line came.
struct OpenGLErrorTotal {
    OpenGLErrorReport first;
    unsigned long long count = 0;
};

/// The name of an error code, "GL_INVALID_ENUM", or its number in hexadecimal.
ZLT_OGL_API String openGLErrorName(unsigned int code);

/// Where reports go. A sink is called by one thread at a time, on the thread of the call, after the call. It
/// may make GL calls; an exception that it throws leaves the call.
class ZLT_OGL_API OpenGLErrorSink {
public:
    OpenGLErrorSink() = default;
    OpenGLErrorSink(const OpenGLErrorSink&) = delete;
    OpenGLErrorSink& operator=(const OpenGLErrorSink&) = delete;
    virtual ~OpenGLErrorSink();

    /// An error that was not told before: of the errors of one line that are equal but for their arguments,
    /// the first.
    virtual void report(const OpenGLErrorReport& report) = 0;
    /// An error that was told before came again.
    /// @param number  of the report() that told it, from 0, counted from the start or the last finish()
    virtual void repeated(std::size_t number);
    /// The end: all that was reported, in that order, with the number of times it came.
    virtual void finish(const std::vector<OpenGLErrorTotal>& totals);
};

/// Calls a function with each report.
class ZLT_OGL_API OpenGLCallbackSink : public OpenGLErrorSink {
public:
    using Callback = std::function<void(const OpenGLErrorReport&)>;
    explicit OpenGLCallbackSink(Callback callback);
    ~OpenGLCallbackSink() override;

    void report(const OpenGLErrorReport& report) override;

private:
    Callback callback_;
};

/// Writes the lines that compilers write, so that editors jump to them:
///
///     scene.cpp:105: error: GL_INVALID_ENUM in glEnable(0xDEAD)
///     scene.cpp:105: note: the driver says: GL_INVALID_ENUM in glEnable(0xdead)
///     main.cpp:12: note: called from main
///
/// and at the end a note for each that came more than once. Each report is flushed, so that a crash loses
/// none.
class ZLT_OGL_API OpenGLTextSink : public OpenGLErrorSink {
public:
    /// @param out  not owned; must live as long as the sink
    explicit OpenGLTextSink(std::ostream& out);
    ~OpenGLTextSink() override;

    void report(const OpenGLErrorReport& report) override;
    void finish(const std::vector<OpenGLErrorTotal>& totals) override;

private:
    std::ostream* out_;
};

/// Writes a log in SARIF 2.1.0, the format of results that code hosts and editors show, at the end.
class ZLT_OGL_API OpenGLSarifSink : public OpenGLErrorSink {
public:
    /// @param out  not owned; must live as long as the sink. Nothing is written before finish()
    explicit OpenGLSarifSink(std::ostream& out);
    ~OpenGLSarifSink() override;

    void report(const OpenGLErrorReport& report) override;
    void finish(const std::vector<OpenGLErrorTotal>& totals) override;

private:
    std::ostream* out_;
};

/// Stops in the debugger, one step after the call that failed. Without a debugger it does nothing.
class ZLT_OGL_API OpenGLTrapSink : public OpenGLErrorSink {
public:
    OpenGLTrapSink();
    ~OpenGLTrapSink() override;

    void report(const OpenGLErrorReport& report) override;
    /// Whether a debugger is attached to this process now.
    static bool isDebuggerPresent();
};

} // namespace ZLT::OGL
