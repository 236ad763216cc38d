// A context that is current when its thread ends is current no more.

#include "platform/linux/adoption/Adoption.h"

#include <dlfcn.h>
#include <unwind.h>

namespace ZLT::Platform {

namespace {

// The C library's own, whatever a program calls by that name.
void* exitFunction() {
    static void* const address = dlsym(RTLD_NEXT, "exit");
    return address;
}

_Unwind_Reason_Code stopAtExit(_Unwind_Context* frame, void* found) {
    // The address returned to lies after the call, and may be the next function's.
    auto* const caller =
        reinterpret_cast<void*>(_Unwind_GetIP(frame) - 1); // NOLINT(performance-no-int-to-ptr)
    if (_Unwind_FindEnclosingFunction(caller) != exitFunction())
        return _URC_NO_REASON;
    *static_cast<bool*>(found) = true;
    return _URC_END_OF_STACK;
}

// exit() runs the calling thread's destructors as well, from wherever it was called: from an error handler of
// Xlib inside of a driver that holds its locks. The process gives everything back by ending; a call of EGL
// would wait for ever.
bool isCalledByExit() {
    bool found = false;
    _Unwind_Backtrace(stopAtExit, &found);
    return found;
}

struct AtThreadEnd {
    bool armed = false;
    ~AtThreadEnd() {
        if (!here.context || isCalledByExit())
            return;
        if (isCurrentNatively(*pinned()->context))
            releaseNative();
        Pins gone;
        const std::lock_guard guard(records().lock);
        gone = takeHere();
    }
};
thread_local AtThreadEnd atThreadEnd;

} // namespace

void releaseAtThreadEnd() { atThreadEnd.armed = true; }

} // namespace ZLT::Platform
