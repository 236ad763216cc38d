#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#if !defined(_WIN32)
#include <csignal>
#include <pthread.h>
#endif

namespace ZLT::Interception {

/// A lock that survives a jump out of what it guards, from a signal handler: the thread that finds itself out
/// of a call that it never left gives its locks back, and if it comes no more, others take them. What is
/// guarded is valid at any time.
class Lock {
public:
    void lock() {
        int attempts = 0;
        std::uint32_t free = 0, beat = 0;
        while (!owner_.compare_exchange_weak(free, self(), std::memory_order_acquire)) {
            if (++attempts < spins) {
                std::this_thread::yield();
            } else if (attempts % patience == 0) {
                const std::uint32_t now = beat_.load(std::memory_order_relaxed);
                if (now == beat && free != 0 && owner_.compare_exchange_strong(free, self()))
                    return;
                beat = now;
            } else {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            free = 0;
        }
        beat_.fetch_add(1, std::memory_order_relaxed);
    }
    void unlock() { owner_.store(0, std::memory_order_release); }

    /// The owner is at work, however long it takes.
    void beat() { beat_.fetch_add(1, std::memory_order_relaxed); }
    /// After a jump: it is not at work any more.
    void giveBack() {
        std::uint32_t mine = self();
        owner_.compare_exchange_strong(mine, 0);
    }

private:
    static constexpr int spins = 100, patience = 2000;
    static std::uint32_t self() {
        static std::atomic<std::uint32_t> last = 0;
        thread_local const std::uint32_t number = ++last;
        return number;
    }

    std::atomic<std::uint32_t> owner_ = 0;
    std::atomic<std::uint32_t> beat_ = 0;
};

/// No signal handler runs on this thread: for what allocates, or asks the loader, out of which nobody may
/// jump.
class NoSignals {
public:
#if defined(_WIN32)
    NoSignals() {} // NOLINT(modernize-use-equals-default): an object of it is there for its life
#else
    NoSignals() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    ~NoSignals() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    NoSignals(const NoSignals&) = delete;
    NoSignals& operator=(const NoSignals&) = delete;

private:
    sigset_t before_;
#endif
};

} // namespace ZLT::Interception
