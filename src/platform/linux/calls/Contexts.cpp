// Rendering contexts. EGL shares at creation alone, so the native context of a handle that was never current
// is made again when it gets a share.

#include "platform/linux/adoption/Adoption.h"
#include "platform/linux/apis/Egl.h"
#include "platform/linux/calls/Calls.h"
#include "platform/linux/windows/Surfaces.h"

#include "platform/WglTokens.h"

#include <EGL/egl.h>

namespace ZLT::Platform {

namespace {

// Who has it current, or is at work on it, decides; for somebody else's it is the driver who says so.
bool isBusyElsewhere(const ContextRecord& context) {
    return context.currentOn != std::thread::id() && context.currentOn != std::this_thread::get_id();
}

// The rendering context is this thread's alone as long as this lives: no other one makes it current, deletes
// it or makes its native context again.
class Claim {
public:
    /// The caller holds the lock.
    explicit Claim(std::shared_ptr<ContextRecord> context)
        : context_(std::move(context)), before_(context_->currentOn) {
        context_->currentOn = std::this_thread::get_id();
    }
    Claim(const Claim&) = delete;
    Claim& operator=(const Claim&) = delete;
    ~Claim() {
        const std::lock_guard guard(records().lock);
        if (!kept_)
            context_->currentOn = before_;
    }
    /// It became current. The caller holds the lock.
    void keep() { kept_ = true; }

private:
    std::shared_ptr<ContextRecord> context_;
    std::thread::id before_;
    bool kept_ = false;
};

struct NativeContext {
    void* native = nullptr;
    void* config = nullptr;
    unsigned generation = 0;
};

// On the connection's own display.
NativeContext createNative(Connection& connection, int pixelFormat, void* share,
                           const std::vector<int>& attributes) {
    if (!keepOpen(connection))
        return {};
    Records& all = records();
    NativeContext made;
    {
        const std::lock_guard guard(all.lock);
        made.config = connection.format(pixelFormat).config;
        made.generation = connection.generation;
    }
    // Without a configuration EGL would make a context that fits no drawable in particular.
    if (!made.config)
        return fail(ERROR_INVALID_PIXEL_FORMAT), NativeContext();
    made.native = egl().createContext(connection.display, made.config, share, attributes);
    if (made.native)
        forgetContextsAt(connection.display, made.native);
    return made;
}

std::shared_ptr<ContextRecord> create(HDC device, std::vector<int> attributes) {
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    if (!drawable || drawable->isForeign())
        return fail(ERROR_INVALID_HANDLE);
    if (drawable->pixelFormat == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT, "The drawable has no pixel format yet.");
    auto context = std::make_shared<ContextRecord>();
    context->connection = drawable->connection;
    context->pixelFormat = drawable->pixelFormat;
    guard.unlock();
    const NativeContext made = createNative(*context->connection, context->pixelFormat, nullptr, attributes);
    if (!made.native)
        return nullptr;
    context->attributes = std::move(attributes);
    context->api = &egl();
    context->display = context->connection->display;
    context->native = made.native;
    context->config = made.config;
    context->generation = made.generation;
    guard.lock();
    context->handle = all.newHandle<HGLRC>();
    all.contexts[context->handle] = context;
    return context;
}

void destroy(const ContextRecord& context) {
    destroyNative(context);
    Records& all = records();
    const std::lock_guard guard(all.lock);
    all.contexts.erase(context.handle);
}

// After a change of what is current that failed: the old one may be gone.
void checkOld() {
    const Pins* old = pinned();
    if (!old || isCurrentNatively(*old->context))
        return;
    Pins gone;
    const std::lock_guard guard(records().lock);
    gone = takeHere();
}

BOOL makeOwnCurrent(const Pins& pair) {
    if (windowSystem().isLost())
        return 0;
    const auto& [draw, read, context] = pair;
    for (const auto& drawable : {draw, read})
        refresh(*drawable);
    Records& all = records();
    std::unique_lock guard(all.lock);
    for (const auto& drawable : {draw, read})
        if (drawable->connection != context->connection || drawable->pixelFormat == 0)
            return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (draw->pixelFormat != context->pixelFormat)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (isBusyElsewhere(*context))
        return fail(ERROR_BUSY);
    if (context->isLost())
        return fail(ERROR_INVALID_HANDLE,
                    "The display of the context was closed or terminated by another part of the program, and "
                    "the context is lost.");
    Claim claim(context);
    const ContextRecord now = *context;
    guard.unlock();

    const auto drawSurface = surfaceFor(*draw, *now.api, now.display, now.config);
    const auto readSurface = surfaceFor(*read, *now.api, now.display, now.config);
    if (!drawSurface || !readSurface ||
        !makeNativeCurrent({now.api, now.display, now.native, *drawSurface, *readSurface})) {
        checkOld();
        return 0;
    }
    releaseAtThreadEnd();
    Pins old;
    guard.lock();
    ++draw->current;
    ++read->current;
    old = takeHere();
    setHere(pair);
    context->used = true;
    claim.keep();
    guard.unlock();
    return 1;
}

// Makes the native context of `second` again, so that it shares what `first` has.
BOOL share(const std::shared_ptr<ContextRecord>& first, const std::shared_ptr<ContextRecord>& second) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    if (second->used || isBusyElsewhere(*second) ||
        (!first->isForeign() && first->connection->key != second->connection->key))
        return fail(ERROR_INVALID_OPERATION);
    Claim claim(second);
    const ContextRecord host = *first;
    guard.unlock();
    if (host.display == second->display) {
        const NativeContext made =
            createNative(*second->connection, second->pixelFormat, host.native, second->attributes);
        if (!made.native)
            return 0;
        destroyNative(*second);
        guard.lock();
        second->native = made.native;
        second->config = made.config;
        second->generation = made.generation;
        guard.unlock();
    } else if (!becomeGuest(*second, host)) {
        return fail(ERROR_INVALID_OPERATION, lastErrorText());
    }
    // Made again with another share, either would leave the group.
    guard.lock();
    first->used = second->used = true;
    guard.unlock();
    return 1;
}

} // namespace

HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC shareWith, const int* attributes) {
    std::vector<int> native;
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
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<ContextRecord> host = shareWith ? find(all.contexts, shareWith) : nullptr;
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    const bool hasFormat = drawable && drawable->pixelFormat != 0;
    guard.unlock();
    if (shareWith && !host)
        return fail(ERROR_INVALID_HANDLE);
    const std::shared_ptr<ContextRecord> made = create(device, std::move(native));
    // EGL says of a version that it doesn't match.
    if (!made)
        return GetLastError() == ERROR_INVALID_PIXEL_FORMAT && hasFormat
                   ? HGLRC(fail(static_cast<DWORD>(ERROR_INVALID_VERSION_ARB)))
                   : nullptr;
    if (host && !share(host, made)) {
        destroy(*made);
        return nullptr;
    }
    return made->handle;
}

BOOL WINAPI makeContextCurrentARB(HDC draw, HDC read, HGLRC context) {
    if (!context) {
        if (!releaseNative())
            return 0;
        Pins old;
        const std::lock_guard guard(records().lock);
        old = takeHere();
        return 1;
    }
    Records& all = opened();
    forgetDestroyedWindows();
    std::unique_lock guard(all.lock);
    const Pins pair = {find(all.drawables, draw), find(all.drawables, read), find(all.contexts, context)};
    if (!pair.context || !pair.draw || !pair.read)
        return fail(ERROR_INVALID_HANDLE);
    const Drawable& drawable = *pair.draw;
    const Native native = {pair.context->api, pair.context->display, pair.context->native, drawable.draw,
                           drawable.read};
    guard.unlock();
    if (!pair.context->isForeign())
        return makeOwnCurrent(pair);
    if (draw != read || !drawable.isForeign() || drawable.api != native.api ||
        drawable.display != native.display)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (!makeNativeCurrent(native)) {
        checkOld();
        return 0;
    }
    Pins old;
    guard.lock();
    old = takeHere();
    guard.unlock();
    return 1;
}

HDC WINAPI getCurrentReadDCARB() {
    if (here.context && !foreignContextsSeen.load(std::memory_order_relaxed))
        return here.read;
    return askCurrent().read;
}

HGLRC wglCreateContext(HDC device) {
    const std::shared_ptr<ContextRecord> made = create(device, {EGL_NONE});
    return made ? made->handle : nullptr;
}

// Only the main plane exists.
HGLRC wglCreateLayerContext(HDC device, int layer) {
    return layer == 0 ? wglCreateContext(device) : fail(ERROR_INVALID_PARAMETER);
}

BOOL wglDeleteContext(HGLRC handle) {
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<ContextRecord> context = find(all.contexts, handle);
    if (!context)
        return fail(ERROR_INVALID_HANDLE);
    if (context->isForeign())
        return fail(ERROR_INVALID_OPERATION, "The context is somebody else's.");
    if (isBusyElsewhere(*context))
        return fail(ERROR_BUSY);
    const Claim claim(context);
    guard.unlock();
    if (handle == here.context) {
        // Somebody else may have made another one current meanwhile.
        if (isCurrentNatively(*context) && !releaseNative())
            return 0;
        Pins old;
        const std::lock_guard again(all.lock);
        all.contexts.erase(handle); // before it is free for other threads
        old = takeHere();
    }
    destroy(*context);
    return 1;
}

HGLRC wglGetCurrentContext() {
    if (here.context && !foreignContextsSeen.load(std::memory_order_relaxed)) [[likely]]
        return here.context;
    return askCurrent().context;
}

HDC wglGetCurrentDC() {
    if (here.context && !foreignContextsSeen.load(std::memory_order_relaxed)) [[likely]]
        return here.device;
    return askCurrent().device;
}

BOOL wglMakeCurrent(HDC device, HGLRC context) { return makeContextCurrentARB(device, device, context); }

BOOL wglShareLists(HGLRC first, HGLRC second) {
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<ContextRecord> host = find(all.contexts, first);
    const std::shared_ptr<ContextRecord> guest = find(all.contexts, second);
    guard.unlock();
    if (!host || !guest)
        return fail(ERROR_INVALID_HANDLE);
    if (host == guest)
        return fail(ERROR_INVALID_PARAMETER);
    if (guest->isForeign())
        return fail(ERROR_INVALID_OPERATION, "The context is somebody else's.");
    return share(host, guest);
}

} // namespace ZLT::Platform
