#pragma once

#include "intercept/ChannelWriter.h"

#include <atomic>
#include <cstdint>
#include <string_view>

namespace ZLT::Interception {

/// What this process is to the command: the channel, and the counts.
class Program {
public:
    /// Begins to watch.
    void attach(Channel& channel);
    /// In a process that was forked off: nothing more is written.
    void detach();
    /// Enough was seen: the calls that follow go straight to the driver.
    void stop() { active_.store(false, std::memory_order_relaxed); }
    bool isActive() const { return active_.load(std::memory_order_relaxed); }

    const Options& options() const { return writer_.options(); }
    ChannelWriter& writer() { return writer_; }

    void countContext();
    /// @return the number of the frame that begins
    std::uint64_t countFrame();
    /// A sentence for the user, in the command's words.
    void note(std::string_view text);

private:
    std::atomic<bool> active_ = false;
    ChannelWriter writer_;
};

/// The one of the process. It is never destroyed: programs call GL while they end.
Program& program();

} // namespace ZLT::Interception
