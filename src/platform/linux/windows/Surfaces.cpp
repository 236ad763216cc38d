// A drawable has a surface for each display on which contexts draw to it: its own, and those of the contexts
// that somebody else made and ours share with.

#include "platform/linux/windows/Surfaces.h"

#include "platform/linux/records/Errors.h"
#include "platform/linux/windows/WindowSystem.h"

#include <algorithm>

namespace ZLT::Platform {

namespace {

// The display was terminated meanwhile, and its surfaces with it.
bool isLost(const Drawable& drawable, const Surface& surface) {
    return drawable.connection && surface.display == drawable.connection->display &&
           surface.generation != drawable.connection->generation;
}

void* nativeDisplayOf(const Records& all, const void* display) {
    for (const Connection& connection : all.connections)
        if (connection.display == display && connection.nativeDisplay)
            return connection.nativeDisplay;
    return nullptr;
}

// The one that is there for the configuration, or null. The caller holds the lock.
const Surface* known(const Drawable& drawable, const void* display, const void* config) {
    const auto found = std::ranges::find_if(drawable.surfaces, [&](const Surface& surface) {
        return surface.display == display && surface.config == config && !isLost(drawable, surface);
    });
    return found == drawable.surfaces.end() ? nullptr : &*found;
}

// Takes out surfaces that EGL destroyed with their display. The caller holds the lock.
void forget(Drawable& drawable, const Surface& gone) {
    std::erase_if(drawable.surfaces, [&](const Surface& surface) {
        const bool same = surface.display == gone.display && surface.handle == gone.handle;
        if (same && surface.beneath)
            drawable.beneathOld.push_back(surface.beneath);
        return same;
    });
}

} // namespace

std::optional<std::uintptr_t> surfaceFor(Drawable& drawable, const Api& api, void* display, void* config) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    if (const Surface* there = known(drawable, display, config)) {
        const Surface surface = *there;
        guard.unlock();
        if (api.knows(surface))
            return surface.handle;
        guard.lock();
        forget(drawable, surface);
    }
    const SurfacePlace place = {&api,           display,        config, nativeDisplayOf(all, display),
                                drawable.width, drawable.height};
    const std::shared_ptr<NativeWindow> native = drawable.native;
    const unsigned generation = drawable.connection->generation;
    guard.unlock();

    Surface made = {.api = &api, .display = display, .config = config};
    if (native)
        made = windowSystem().surfaceFor(*native, place);
    else
        made.handle = api.pbuffer(display, config, place.width, place.height, false);
    made.generation = generation;
    if (!made.handle)
        return made.none ? std::optional<std::uintptr_t>(0) : std::nullopt;

    guard.lock();
    // What had this handle before is gone.
    for (const auto& [handle, other] : all.drawables)
        forget(*other, made);
    // Another thread may have been faster, with this or with destroying the drawable.
    const Surface* there = known(drawable, display, config);
    const auto faster = there ? std::optional(there->handle) : std::nullopt;
    const bool gone = !all.drawables.contains(drawable.handle);
    if (!faster && !gone) {
        drawable.surfaces.push_back(made);
        return made.handle;
    }
    guard.unlock();
    destroySurfaces({made});
    if (gone)
        fail(ERROR_INVALID_HANDLE);
    return gone ? std::nullopt : faster;
}

std::vector<Surface> takeSurfaces(Drawable& drawable) {
    std::vector<Surface> taken;
    for (Surface& surface : drawable.surfaces) {
        if (surface.beneath)
            drawable.beneathOld.push_back(surface.beneath);
        if (!isLost(drawable, surface))
            taken.push_back(surface);
    }
    drawable.surfaces.clear();
    return taken;
}

void destroySurfaces(const std::vector<Surface>& surfaces) {
    Records& all = records();
    for (const Surface& surface : surfaces) {
        std::unique_lock guard(all.lock);
        const bool open = surface.api == &egl() || all.watchedDisplays.contains(surface.display);
        guard.unlock();
        if (open)
            surface.api->destroySurface(surface);
    }
}

} // namespace ZLT::Platform
