#pragma once

#include <condition_variable>
#include <cstdint>
#include <exception>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <thread>
#include <utility>

namespace ZLT::Capture {

/// One thread for each that was captured, of which one works at a time. What was begun on a thread stays
/// there: a context, and a glBegin.
class PlayerThreads {
public:
    PlayerThreads();
    ~PlayerThreads();
    PlayerThreads(const PlayerThreads&) = delete;
    PlayerThreads& operator=(const PlayerThreads&) = delete;

    /// Does the work on the thread, and waits for it. What it throws is thrown here. The first thread is the
    /// caller's own.
    void run(std::uint32_t thread, const std::function<void()>& work);

private:
    struct Worker;
    std::uint32_t own_ = 0;
    std::map<std::uint32_t, std::unique_ptr<Worker>> workers_;
};

} // namespace ZLT::Capture
