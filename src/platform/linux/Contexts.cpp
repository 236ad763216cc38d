// Rendering contexts. EGL shares at creation alone, so the native context of a handle that was never current
// is made again when it gets a share.

#include "platform/linux/Handles.h"

#include <cstring>
#include <memory>

using namespace ZLT::Platform;

namespace {

// What is current on this thread. Gives it back when the thread ends.
struct Current {
    HDC device = nullptr;
    HGLRC context = nullptr;
    ~Current();
};
thread_local Current current;

// The pair is no longer current on this thread. The caller holds the lock.
void forget() {
    if (!current.context)
        return;
    current.context->currentOn = {};
    const HWND window = current.device->window;
    if (--window->current == 0 && window->gone)
        delete window;
    current.context = nullptr;
    current.device = nullptr;
}

EGLContext createNative(const State& state, int pixelFormat, EGLContext share) {
    eglBindAPI(EGL_OPENGL_API);
    return eglCreateContext(state.display, state.config(pixelFormat), share, nullptr);
}

// Ends what is current on this thread. The caller holds the lock.
bool release(const State& state) {
    if (!current.context)
        return true;
    if (!eglMakeCurrent(state.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT))
        return false;
    forget();
    return true;
}

Current::~Current() {
    if (!context)
        return;
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    release(state);
}

bool isCurrentElsewhere(HGLRC context) {
    return context != current.context && context->currentOn != std::thread::id();
}

} // namespace

HGLRC wglCreateContext(HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HWND window = windowOf(state, device);
    if (!window)
        return fail(ERROR_INVALID_HANDLE);
    if (window->pixelFormat == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    const EGLContext native = createNative(state, window->pixelFormat, EGL_NO_CONTEXT);
    if (native == EGL_NO_CONTEXT)
        return failOfEGL();
    auto context = std::make_unique<RenderingContext>(RenderingContext{window->pixelFormat, native});
    state.contexts.insert(context.get());
    return context.release();
}

// Only the main plane exists.
HGLRC wglCreateLayerContext(HDC device, int layer) {
    return layer == 0 ? wglCreateContext(device) : fail(ERROR_INVALID_PARAMETER);
}

BOOL wglDeleteContext(HGLRC context) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.contexts.contains(context))
        return fail(ERROR_INVALID_HANDLE);
    if (isCurrentElsewhere(context))
        return fail(ERROR_BUSY);
    if (context == current.context && !release(state))
        return failOfEGL();
    eglDestroyContext(state.display, context->native);
    state.contexts.erase(context);
    delete context;
    return TRUE;
}

HGLRC wglGetCurrentContext() { return current.context; }
HDC wglGetCurrentDC() { return current.device; }

BOOL wglMakeCurrent(HDC device, HGLRC context) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!context)
        return release(state) ? TRUE : failOfEGL();
    const HWND window = windowOf(state, device);
    if (!window || !state.contexts.contains(context))
        return fail(ERROR_INVALID_HANDLE);
    if (window->pixelFormat != context->pixelFormat)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (isCurrentElsewhere(context))
        return fail(ERROR_BUSY);
    eglBindAPI(EGL_OPENGL_API);
    if (!eglMakeCurrent(state.display, window->surface, window->surface, context->native))
        return failOfEGL();
    ++window->current;
    forget();
    current.context = context;
    current.device = device;
    context->currentOn = std::this_thread::get_id();
    context->used = true;
    return TRUE;
}

BOOL wglShareLists(HGLRC first, HGLRC second) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.contexts.contains(first) || !state.contexts.contains(second))
        return fail(ERROR_INVALID_HANDLE);
    if (first == second)
        return fail(ERROR_INVALID_PARAMETER);
    if (second->used)
        return fail(ERROR_INVALID_OPERATION);
    const EGLContext shared = createNative(state, second->pixelFormat, first->native);
    if (shared == EGL_NO_CONTEXT)
        return failOfEGL();
    eglDestroyContext(state.display, second->native);
    second->native = shared;
    // Made again with another share, either would leave the group.
    first->used = second->used = true;
    return TRUE;
}

PROC wglGetProcAddress(LPCSTR name) {
    if (!current.context)
        return fail(ERROR_INVALID_HANDLE);
    // EGL's own functions are not WGL's to give.
    const PROC address = name && std::strncmp(name, "gl", 2) == 0 ? eglGetProcAddress(name) : nullptr;
    return address ? address : fail(ERROR_PROC_NOT_FOUND);
}

BOOL wglSwapLayerBuffers(HDC device, UINT planes) {
    return planes == WGL_SWAP_MAIN_PLANE ? SwapBuffers(device) : fail(ERROR_INVALID_PARAMETER);
}

DWORD wglSwapMultipleBuffers(UINT count, const WGLSWAP* buffers) {
    if (!buffers || count > 32)
        return fail(ERROR_INVALID_PARAMETER);
    DWORD swapped = 0;
    for (UINT i = 0; i < count; ++i)
        if (wglSwapLayerBuffers(buffers[i].hdc, buffers[i].uiFlags))
            swapped |= DWORD(1) << i;
    return swapped;
}
