#include "capture/PlayerThreads.h"

#include <exception>
#include <thread>
#include <utility>

namespace ZLT::Capture {

struct PlayerThreads::Lane {
    const std::function<void()>* work = nullptr; // that nobody has begun
    bool isDone = false;
    std::exception_ptr failure;
    std::thread::id id;
    std::thread thread; // none for the caller's own
};

PlayerThreads::PlayerThreads() = default;

PlayerThreads::~PlayerThreads() {
    {
        const std::lock_guard guard(lock_);
        ends_ = true;
    }
    changed_.notify_all();
    for (const auto& [number, lane] : lanes_)
        if (lane->thread.joinable())
            lane->thread.join();
}

PlayerThreads::Lane& PlayerThreads::laneOf(std::uint32_t thread) {
    std::unique_ptr<Lane>& lane = lanes_[thread];
    if (!lane) {
        lane = std::make_unique<Lane>();
        if (lanes_.size() == 1) {
            lane->id = std::this_thread::get_id();
        } else {
            lane->thread = std::thread([this, &work = *lane] { loop(work); });
            lane->id = lane->thread.get_id();
        }
    }
    return *lane;
}

void PlayerThreads::serve(Lane& lane, std::unique_lock<std::mutex>& guard) {
    const std::function<void()>& work = *std::exchange(lane.work, nullptr);
    guard.unlock();
    std::exception_ptr failure;
    try {
        work();
    } catch (...) {
        failure = std::current_exception();
    }
    guard.lock();
    lane.failure = failure;
    lane.isDone = true;
    changed_.notify_all();
}

void PlayerThreads::loop(Lane& lane) {
    std::unique_lock guard(lock_);
    for (;;) {
        changed_.wait(guard, [&] { return lane.work || ends_; });
        if (ends_)
            return;
        serve(lane, guard);
    }
}

void PlayerThreads::run(std::uint32_t thread, const std::function<void()>& work) {
    std::unique_lock guard(lock_);
    Lane& lane = laneOf(thread);
    const std::thread::id id = std::this_thread::get_id();
    if (lane.id == id) {
        guard.unlock();
        return work();
    }
    Lane* self = nullptr;
    for (const auto& [number, other] : lanes_)
        if (other->id == id)
            self = other.get();
    lane.work = &work;
    lane.isDone = false;
    changed_.notify_all();
    while (!lane.isDone) {
        if (self && self->work)
            serve(*self, guard);
        else
            changed_.wait(guard);
    }
    if (const std::exception_ptr failure = std::exchange(lane.failure, nullptr))
        std::rethrow_exception(failure);
}

} // namespace ZLT::Capture
