#pragma once

#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>

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
    /// caller's own. Work may run more work, on any thread: who waits works for others.
    void run(std::uint32_t thread, const std::function<void()>& work);

private:
    struct Lane;
    Lane& laneOf(std::uint32_t thread);
    void serve(Lane& lane, std::unique_lock<std::mutex>& guard);
    void loop(Lane& lane);

    std::mutex lock_;
    std::condition_variable changed_;
    bool ends_ = false;
    std::map<std::uint32_t, std::unique_ptr<Lane>> lanes_;
};

} // namespace ZLT::Capture
