// A context of ours that shares with one on another display has to live where that one lives: on the other
// EGL display, or in GLX. It draws to the same windows and pbuffers, by surfaces made there.

#include "platform/linux/adoption/Adoption.h"
#include "platform/linux/records/Errors.h"

namespace ZLT::Platform {

namespace {

// GLX's functions crash on a display that its owner closed.
bool isOpen(const Api* api, void* display) {
    if (api == &egl())
        return true; // EGL tells by an error
    Records& all = records();
    const std::lock_guard guard(all.lock);
    return all.watchedDisplays.contains(display);
}

} // namespace

bool becomeGuest(ContextRecord& context, const ContextRecord& host) {
    if (!host.native || !isOpen(host.api, host.display))
        return fail(ERROR_INVALID_HANDLE, "The display of the context to share with is closed.");
    Records& all = records();
    std::unique_lock guard(all.lock);
    const Format format = context.connection->format(context.pixelFormat);
    guard.unlock();
    void* config = host.api->configFor(host.display, host.native, format);
    void* native =
        config ? host.api->createContext(host.display, config, host.native, context.attributes) : nullptr;
    if (!native)
        return false;
    forgetContextsAt(host.display, native);
    destroyNative(context);
    guard.lock();
    context.api = host.api;
    context.display = host.display;
    context.config = config;
    context.native = native;
    return true;
}

void destroyNative(const ContextRecord& context) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    const ContextRecord now = context;
    const bool lost = now.isLost();
    guard.unlock();
    if (!lost && isOpen(now.api, now.display))
        now.api->destroyContext(now.display, now.native);
}

} // namespace ZLT::Platform
