#pragma once

#include "extensionator/OpenGLCall.h"
#include "extensionator/SharedCall.h"
#include "intercept/Calls.h"
#include "intercept/Contexts.h"
#include "intercept/DriverEnd.h"
#include "intercept/ErrorReports.h"
#include "intercept/Program.h"
#include "intercept/RealFunctions.h"
#include "intercept/Sites.h"
#include "intercept/Thread.h"
#include "zlt/core/Exceptions.h"

#include <exception>
#include <type_traits>

/// @file
/// What an exported function does: it hands the program's call to the chain, with its place, or straight to
/// the driver.

#if defined(_WIN32)
#define ZLT_INTERCEPTED extern "C"
#else
#define ZLT_INTERCEPTED extern "C" __attribute__((visibility("default")))
#endif

namespace ZLT::Interception {

/// Threads have a counter each, but for the last one, which many may share.
inline void countCall() {
    if (thread.number < threadSlotCount) [[likely]]
        thread.calls->store(thread.calls->load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    else
        thread.calls->fetch_add(1, std::memory_order_relaxed);
}

/// After each call, still inside.
template <class... Parameters>
void afterCall(unsigned int number, Parameters... arguments) {
    if (program().options().mode != Mode::Check)
        return;
    if (!thread.context) [[unlikely]] {
        const OGL::CallValue values[] = {arguments..., 0};
        tellMissingContext(OGL::OpenGLCall(number, siteFile, currentSite(), values));
    }
    settleBalance();
}

/// The work of an exported function: once for all entries of the same types.
template <class Result, class... Parameters>
[[gnu::noinline]] Result intercepted(const void* returnAddress, unsigned int index, Parameters... arguments) {
    const auto& entry = OGL::entriesOf<Result, Parameters...>[index];
    OGL::OpenGLInterceptor* head = thread.head;
    if (!head) [[unlikely]]
        head = enterChain(__builtin_frame_address(0));
    RealFunction real = realFunction(entry.number);
    if (!real) [[unlikely]]
        real = requireReal(entry.number);
    if (!head)
        return reinterpret_cast<Result (*)(Parameters...)>(real)(arguments...);

    if (thread.isNew) [[unlikely]] {
        const NoSignals calm;
        thread.isNew = false;
        return intercepted<Result, Parameters...>(returnAddress, index, arguments...);
    }

    // Gives the thread its chain back, also where the thread is ended or jumps out of the call by unwinding.
    struct Leave {
        ~Leave() {
            thread.inside = false;
            chooseChain();
        }
    } const leave;
    thread.frame = __builtin_frame_address(0);
    thread.returnAddress = returnAddress;
    thread.head = nullptr;
    std::atomic_signal_fence(
        std::memory_order_seq_cst); // a handler that jumps away finds the frame of the mark
    thread.inside = true;
    countCall();
    try {
        if constexpr (std::is_void_v<Result>) {
            (head->*entry.pointer)(siteFile, siteOf(returnAddress), arguments...);
            afterCall<Parameters...>(entry.number, arguments...);
        } else {
            const Result result = (head->*entry.pointer)(siteFile, siteOf(returnAddress), arguments...);
            afterCall<Parameters...>(entry.number, arguments...);
            return result;
        }
    } catch (const std::exception& failure) {
        tellFailure(failure);
    }
    if constexpr (!std::is_void_v<Result>)
        return Result();
}

} // namespace ZLT::Interception
