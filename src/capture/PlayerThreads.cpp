#include "capture/PlayerThreads.h"

namespace ZLT::Capture {

struct PlayerThreads::Worker {
    std::mutex lock;
    std::condition_variable changed;
    const std::function<void()>* work = nullptr;
    bool ends = false;
    std::exception_ptr failure;
    std::thread thread{[this] { loop(); }};

    void loop() {
        std::unique_lock guard(lock);
        for (;;) {
            changed.wait(guard, [this] { return work || ends; });
            if (ends)
                return;
            try {
                (*work)();
            } catch (...) {
                failure = std::current_exception();
            }
            work = nullptr;
            changed.notify_all();
        }
    }
};

PlayerThreads::PlayerThreads() = default;

PlayerThreads::~PlayerThreads() {
    for (const auto& [number, worker] : workers_) {
        {
            const std::lock_guard guard(worker->lock);
            worker->ends = true;
        }
        worker->changed.notify_all();
        worker->thread.join();
    }
}

void PlayerThreads::run(std::uint32_t thread, const std::function<void()>& work) {
    if (own_ == 0)
        own_ = thread;
    if (thread == own_)
        return work();
    std::unique_ptr<Worker>& worker = workers_[thread];
    if (!worker)
        worker = std::make_unique<Worker>();
    std::unique_lock guard(worker->lock);
    worker->work = &work;
    worker->changed.notify_all();
    worker->changed.wait(guard, [&] { return !worker->work; });
    if (const std::exception_ptr failure = std::exchange(worker->failure, nullptr))
        std::rethrow_exception(failure);
}

} // namespace ZLT::Capture
