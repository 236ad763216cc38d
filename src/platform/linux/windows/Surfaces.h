#pragma once

#include "platform/linux/records/Records.h"

#include <optional>

namespace ZLT::Platform {

/// By what a context draws to the drawable, made now when there is none yet: 0 for a context that can draw
/// without a surface. Nothing, with the error, when there can't be one. Without the lock of the records.
/// @param config  the context's, on `display`
std::optional<std::uintptr_t> surfaceFor(Drawable& drawable, const Api& api, void* display, void* config);

/// Takes the surfaces of a drawable, for destroySurfaces(). What is beneath them stays as long as the
/// drawable, which may still be current. The caller holds the lock.
std::vector<Surface> takeSurfaces(Drawable& drawable);
/// EGL and GLX keep one that is current until it no longer is. Without the lock.
void destroySurfaces(const std::vector<Surface>& surfaces);

} // namespace ZLT::Platform
