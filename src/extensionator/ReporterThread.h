#pragma once

/// @file
/// What an OpenGLErrorReporter knows of the calling thread.

namespace ZLT::OGL::Detail {

struct ReporterThread {
    /// The serial of the reporter that has looked at the thread's current context; 0 for none.
    unsigned int settledFor = 0;
    /// How many messages of the driver wait on this thread.
    unsigned int messages = 0;
    bool inCall = false;
    bool insideBeginEnd = false;
};

// Each call reads it: on Linux by one instruction, since the library is loaded with the program that uses it
// or has the few bytes that the loader keeps for later ones.
#if defined(_WIN32)
extern constinit thread_local ReporterThread reporterThread;
#else
[[gnu::tls_model("initial-exec")]] extern constinit thread_local ReporterThread reporterThread;
#endif

/// Another context was made current on this thread, or was wrapped: what is pending in it is not known.
void noticeContextChange() noexcept;

} // namespace ZLT::OGL::Detail
