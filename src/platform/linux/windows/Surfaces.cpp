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

} // namespace

std::optional<std::uintptr_t> surfaceFor(Drawable& drawable, const Api& api, void* display, void* config) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    const auto known = [&]() -> std::optional<std::uintptr_t> {
        for (const Surface& surface : drawable.surfaces)
            if (surface.display == display && surface.config == config && !isLost(drawable, surface))
                return surface.handle;
        return std::nullopt;
    };
    if (const auto surface = known())
        return surface;
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
        return api.drawsWithoutSurface(display) ? std::optional<std::uintptr_t>(0) : std::nullopt;

    guard.lock();
    // Another thread may have been faster, with this or with destroying the drawable.
    const auto other = known();
    const bool gone = !all.drawables.contains(drawable.handle);
    if (!other && !gone) {
        drawable.surfaces.push_back(made);
        return made.handle;
    }
    guard.unlock();
    destroySurfaces({made});
    if (gone)
        fail(ERROR_INVALID_HANDLE);
    return gone ? std::nullopt : other;
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
