#pragma once

#include "intercept/ChannelWriter.h"

#include <atomic>
#include <cstdint>
#include <string_view>

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

struct Thread;

/// What this process does with the program's calls: the channel to the command, the layers, the counts.
class Program {
public:
    /// Begins to watch. Before any call is handed to the layers.
    void attach(Channel& channel);
    /// In a process that was forked off: all calls go straight to the driver.
    void leaveAlone();
    bool isActive() const { return active_.load(std::memory_order_relaxed); }

    const Options& options() const { return writer_.options(); }
    ChannelWriter& writer() { return writer_; }

    /// The calling thread's first call, or one that found the thread without a chain: gives it one. Null
    /// where the call is not for the layers.
    /// @param frame  of the function that stands for GL's
    OGL::OpenGLInterceptor* enter(const void* frame);
    /// After the thread's current context changed.
    void chooseChain();
    void countContext();
    /// A frame ends: to be called before the buffers are swapped, or after.
    void countFrame();
    /// A sentence for the user, in the command's words.
    void note(std::string_view text);
    /// The program sets up the driver's messages for itself: ours are given up in this context.
    static void giveUpDriverMessages();

private:
    void startThread(Thread& thread);

    std::atomic<bool> active_ = false;
    ChannelWriter writer_;
};

/// The one of the process. It is never destroyed: programs call GL while they end.
Program& program();

/// The number of the place of the call that the thread is in.
std::uint32_t currentSite();

} // namespace ZLT::Interception
