#pragma once

#include <atomic>
#include <cstdint>

/// @file
/// What is known of the calling thread. Each intercepted call reads it.

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

struct ContextRecord;
class TraceOutput;
#if defined(_WIN32)
extern void (*functionsWithoutContext[])();
#endif

struct Thread {
    /// Where the thread's calls go; null while it is inside of a call, and where its calls are none of ours.
    OGL::OpenGLInterceptor* head = nullptr;
    /// What `head` is between calls: set up with the first call.
    OGL::OpenGLInterceptor* chain = nullptr;
    /// The current context; null for none, or for one that was made past us.
    ContextRecord* context = nullptr;
    /// Of the call that the thread is in: where its frame began, and where it returns to.
    const void* frame = nullptr;
    const void* returnAddress = nullptr;
    bool inside = false;
    /// Whether the next call is the first one, of the thread or with its context: the layers make themselves
    /// ready.
    bool isNew = true;
    /// From 1 in the order of their first calls; 0 before.
    std::uint32_t number = 0;
    std::atomic<std::uint64_t>* calls = nullptr;
    TraceOutput* trace = nullptr;
    /// What the context draws to and reads from, by the numbers of the window system; 0 for none.
    std::uint64_t drawSurface = 0, readSurface = 0;
    void* display = nullptr; ///< on which these are
    bool isEgl = false;      ///< of EGL
#if defined(_WIN32)
    /// The driver's functions, of the current context: there each driver has its own.
    void (**functions)() = functionsWithoutContext;
#endif
};

// With one instruction on Linux: the object comes with the program.
#if defined(_WIN32)
extern constinit thread_local Thread thread;
#else
[[gnu::tls_model("initial-exec")]] extern constinit thread_local Thread thread;
#endif

/// For the time that the thread is in the driver, or does our work: what it calls goes straight on.
class Inside {
public:
    Inside() : head_(thread.head), inside_(thread.inside) {
        thread.head = nullptr;
        if (!inside_)
            thread.frame = __builtin_frame_address(0);
        thread.inside = true;
    }
    ~Inside() {
        thread.head = head_;
        thread.inside = inside_;
    }
    Inside(const Inside&) = delete;
    Inside& operator=(const Inside&) = delete;

private:
    OGL::OpenGLInterceptor* head_;
    bool inside_;
};

/// A call of the driver.
template <class Call>
auto inside(const Call& call) {
    const Inside driver;
    return call();
}

} // namespace ZLT::Interception
