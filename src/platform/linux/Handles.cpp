#include "platform/linux/Handles.h"

namespace ZLT::Platform {

namespace {
thread_local DWORD lastError = ERROR_SUCCESS;
}

State& state() {
    static State& only = *[] {
        auto* made = new State;
        made->classes["STATIC"] = 0;
        openDisplays(*made);
        return made;
    }();
    return only;
}

Failure fail(DWORD error) {
    lastError = error;
    return {};
}

Failure failOfEGL() {
    switch (eglGetError()) {
    case EGL_BAD_ALLOC:
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    case EGL_BAD_ACCESS:
        return fail(ERROR_BUSY);
    case EGL_BAD_CONFIG:
    case EGL_BAD_MATCH:
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    case EGL_BAD_CONTEXT:
    case EGL_BAD_SURFACE:
    case EGL_BAD_CURRENT_SURFACE:
        return fail(ERROR_INVALID_HANDLE);
    case EGL_BAD_NATIVE_WINDOW:
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    default:
        return fail(ERROR_GEN_FAILURE);
    }
}

std::size_t liveHandles() {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    std::size_t count = 0;
    for (const auto& [handle, window] : state.windows)
        count += window->foreign ? 0 : 1;
    for (const HDC device : state.devices)
        count += device->isPbuffer() ? 1 : 0;
    for (const HGLRC context : state.contexts)
        count += context->isForeign() ? 0 : 1;
    return count;
}

} // namespace ZLT::Platform

DWORD GetLastError() { return ZLT::Platform::lastError; }
void SetLastError(DWORD error) { ZLT::Platform::lastError = error; }
