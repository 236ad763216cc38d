// Rendering contexts. EGL shares at creation alone, so the native context of a handle that was never current
// is made again when it gets a share.

#include "platform/linux/Handles.h"

#include "platform/WglTokens.h"

#include <X11/Xlib.h>

using namespace ZLT::Platform;

namespace {

// Without a destructor, so that reading it takes no more than its address.
constinit thread_local Current here;

// Gives back what is current when the thread ends.
struct AtThreadEnd {
    bool armed = false;
    ~AtThreadEnd() {
        if (!here.context)
            return;
        State& state = ZLT::Platform::state();
        const std::lock_guard guard(state.lock);
        if (isCurrentNatively(*here.context))
            releaseCurrent();
        forgetOwnCurrent();
    }
};
thread_local AtThreadEnd atThreadEnd;

EGLContext createNative(const Connection& connection, int pixelFormat, EGLContext share,
                        const std::vector<EGLint>& attributes) {
    const DesktopGl api;
    return eglCreateContext(connection.display, connection.format(pixelFormat).config, share,
                            attributes.data());
}

// After a change of what is current that failed: the old one may be gone.
Failure failOf(const RenderingContext& context) {
    if (here.context && !isCurrentNatively(*here.context))
        forgetOwnCurrent();
    return context.api == Api::egl ? failOfEGL() : fail(ERROR_INVALID_HANDLE);
}

// Who has it current decides; for somebody else's it is the driver who says so.
bool isCurrentElsewhere(HGLRC context) {
    return context != here.context && context->currentOn != std::thread::id();
}

HGLRC create(HDC device, std::vector<EGLint> attributes) {
    if (!ZLT::Platform::state().devices.contains(device) || device->isForeign())
        return fail(ERROR_INVALID_HANDLE);
    if (device->pixelFormat == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    const EGLContext native =
        createNative(*device->connection, device->pixelFormat, EGL_NO_CONTEXT, attributes);
    if (native == EGL_NO_CONTEXT)
        return failOfEGL();
    auto context = std::make_unique<RenderingContext>();
    context->connection = device->connection;
    context->pixelFormat = device->pixelFormat;
    context->attributes = std::move(attributes);
    context->native = native;
    context->display = device->connection->display;
    // One of somebody else's that is gone may have had this address.
    std::erase_if(ZLT::Platform::state().contexts, [&](HGLRC other) {
        const bool gone = other->isForeign() && other->native == native && other->display == context->display;
        if (gone)
            delete other;
        return gone;
    });
    ZLT::Platform::state().contexts.insert(context.get());
    return context.release();
}

void destroy(State& state, HGLRC context) {
    destroyNative(*context);
    state.contexts.erase(context);
    delete context;
}

// Of a context that was made here. The caller holds the lock.
BOOL makeOwnCurrent(HDC draw, HDC read, HGLRC context) {
    for (DeviceContext* device : {draw, read}) {
        if (device->connection != context->connection || device->pixelFormat == 0)
            return fail(ERROR_INVALID_PIXEL_FORMAT);
        refresh(*device);
    }
    if (draw->pixelFormat != context->pixelFormat)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (isCurrentElsewhere(context))
        return fail(ERROR_BUSY);
    if (!context->native)
        return fail(ERROR_INVALID_HANDLE);
    const std::uintptr_t drawSurface = surfaceFor(*draw, *context);
    const std::uintptr_t readSurface = surfaceFor(*read, *context);
    if (!drawSurface || !readSurface || !makeNativeCurrent(*context, drawSurface, readSurface))
        return failOf(*context);
    ++draw->current;
    ++read->current;
    forgetOwnCurrent();
    here = {draw, read, context};
    atThreadEnd.armed = true;
    context->currentOn = std::this_thread::get_id();
    context->used = true;
    return TRUE;
}

// Makes the native context of `second` again, so that it shares what `first` has. The caller holds the lock.
BOOL share(HGLRC first, HGLRC second) {
    if (second->used || (!first->isForeign() && first->connection != second->connection))
        return fail(ERROR_INVALID_OPERATION);
    if (first->display == second->display) {
        const EGLContext shared =
            createNative(*second->connection, second->pixelFormat, first->native, second->attributes);
        if (shared == EGL_NO_CONTEXT)
            return failOfEGL();
        destroyNative(*second);
        second->native = shared;
    } else if (!becomeGuest(*second, *first)) {
        return fail(ERROR_INVALID_OPERATION);
    }
    // Made again with another share, either would leave the group.
    first->used = second->used = true;
    return TRUE;
}

} // namespace

namespace ZLT::Platform {

const Current& ownCurrent() { return here; }

void forgetOwnCurrent() {
    if (!here.context)
        return;
    here.context->currentOn = {};
    for (DeviceContext* device : {here.device, here.read})
        if (--device->current == 0 && device->gone)
            delete device;
    here = {};
}

HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC shareWith, const int* attributes) {
    std::vector<EGLint> native;
    const auto add = [&](EGLint name, EGLint value) { native.insert(native.end(), {name, value}); };
    int major = 1;
    int minor = 0;
    for (; attributes && attributes[0] != 0; attributes += 2) {
        const int value = attributes[1];
        switch (attributes[0]) {
        case WGL_CONTEXT_MAJOR_VERSION_ARB:
            major = value;
            break;
        case WGL_CONTEXT_MINOR_VERSION_ARB:
            minor = value;
            break;
        case WGL_CONTEXT_LAYER_PLANE_ARB:
            if (value != 0)
                return fail(ERROR_INVALID_PARAMETER);
            break;
        case WGL_CONTEXT_FLAGS_ARB:
            if (value & ~(WGL_CONTEXT_DEBUG_BIT_ARB | WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB))
                return fail(ERROR_INVALID_PARAMETER);
            if (value & WGL_CONTEXT_DEBUG_BIT_ARB)
                add(EGL_CONTEXT_OPENGL_DEBUG, EGL_TRUE);
            if (value & WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB)
                add(EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, EGL_TRUE);
            break;
        case WGL_CONTEXT_PROFILE_MASK_ARB:
            if (value != WGL_CONTEXT_CORE_PROFILE_BIT_ARB &&
                value != WGL_CONTEXT_COMPATIBILITY_PROFILE_BIT_ARB)
                return fail(static_cast<DWORD>(ERROR_INVALID_PROFILE_ARB));
            add(EGL_CONTEXT_OPENGL_PROFILE_MASK, value); // the bits are the same
            break;
        default:
            return fail(ERROR_INVALID_PARAMETER);
        }
    }
    add(EGL_CONTEXT_MAJOR_VERSION, major);
    add(EGL_CONTEXT_MINOR_VERSION, minor);
    native.push_back(EGL_NONE);
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (shareWith && !state.contexts.contains(shareWith))
        return fail(ERROR_INVALID_HANDLE);
    const HGLRC made = create(device, std::move(native));
    if (!made)
        return GetLastError() == ERROR_INVALID_PIXEL_FORMAT && device->pixelFormat
                   ? HGLRC(fail(static_cast<DWORD>(ERROR_INVALID_VERSION_ARB)))
                   : nullptr;
    if (shareWith && !share(shareWith, made)) {
        destroy(state, made);
        return nullptr;
    }
    return made;
}

BOOL WINAPI makeContextCurrentARB(HDC draw, HDC read, HGLRC context) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!context) {
        if (!releaseCurrent())
            return failOfEGL();
        forgetOwnCurrent();
        return TRUE;
    }
    forgetDestroyedWindows(state);
    if (!state.contexts.contains(context) || !state.devices.contains(draw) || !state.devices.contains(read))
        return fail(ERROR_INVALID_HANDLE);
    if (!context->isForeign())
        return makeOwnCurrent(draw, read, context);
    if (draw != read || !draw->isForeign() || draw->api != context->api || draw->display != context->display)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (!makeNativeCurrent(*context, draw->draw, draw->read))
        return failOf(*context);
    forgetOwnCurrent();
    return TRUE;
}

HDC WINAPI getCurrentReadDCARB() {
    if (here.context && !foreignContextsSeen())
        return here.read;
    return askCurrent().read;
}

} // namespace ZLT::Platform

HGLRC wglCreateContext(HDC device) {
    const std::lock_guard guard(ZLT::Platform::state().lock);
    return create(device, {EGL_NONE});
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
    if (context->isForeign())
        return fail(ERROR_INVALID_OPERATION);
    if (isCurrentElsewhere(context))
        return fail(ERROR_BUSY);
    if (context == here.context) {
        // Somebody else may have made another one current meanwhile.
        if (isCurrentNatively(*context) && !releaseCurrent())
            return failOfEGL();
        forgetOwnCurrent();
    }
    destroy(state, context);
    return TRUE;
}

HGLRC wglGetCurrentContext() {
    if (here.context && !foreignContextsSeen()) [[likely]]
        return here.context;
    return askCurrent().context;
}

HDC wglGetCurrentDC() {
    if (here.context && !foreignContextsSeen()) [[likely]]
        return here.device;
    return askCurrent().device;
}

BOOL wglMakeCurrent(HDC device, HGLRC context) { return makeContextCurrentARB(device, device, context); }

BOOL wglShareLists(HGLRC first, HGLRC second) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.contexts.contains(first) || !state.contexts.contains(second))
        return fail(ERROR_INVALID_HANDLE);
    if (first == second)
        return fail(ERROR_INVALID_PARAMETER);
    if (second->isForeign())
        return fail(ERROR_INVALID_OPERATION);
    return share(first, second);
}

BOOL SwapBuffers(HDC device) {
    const HDC currentDevice = wglGetCurrentDC();
    State& state = ZLT::Platform::state();
    std::unique_lock guard(state.lock);
    forgetDestroyedWindows(state);
    if (!state.devices.contains(device))
        return fail(ERROR_INVALID_HANDLE);
    if (!device->isForeign() && device->pixelFormat == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    Api api = device->api;
    void* display = device->display;
    std::uintptr_t surface = device->draw;
    if (!device->isForeign()) {
        refresh(*device);
        if (device != currentDevice)
            return device->xid ? fail(ERROR_INVALID_OPERATION) : TRUE;
        api = here.context->api;
        display = here.context->display;
        surface = surfaceFor(*device, *here.context);
    }
    // Without the lock where that is safe: it may wait for the driver.
    if (api == Api::egl)
        guard.unlock();
    if (!surface || !swapNative(api, display, surface))
        return api == Api::egl ? failOfEGL() : fail(ERROR_INVALID_HANDLE);
    // A driver that draws by requests to the server may leave them in the connection's buffer.
    if (state.server)
        XFlush(state.server);
    return TRUE;
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
