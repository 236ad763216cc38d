#pragma once

#include "platform/Platform.h"

#include <cstdint>

/// @file
/// How functions of the driver are fetched by name; a context must be current.

namespace ZLT::OGL {

/// The function of this name, or null.
template <class Function>
Function functionAddress(const char* name) {
    const PROC address = wglGetProcAddress(name);
    // Some Windows drivers answer 1, 2, 3 or -1 for a name that they don't know.
    const auto value = reinterpret_cast<std::intptr_t>(address);
    if (value >= -1 && value <= 3)
        return nullptr;
    return reinterpret_cast<Function>(reinterpret_cast<void (*)()>(address));
}

/// Stores the function of this name, or null; whether there is one.
template <class Function>
bool load(Function& slot, const char* name) {
    slot = functionAddress<Function>(name);
    return slot != nullptr;
}

} // namespace ZLT::OGL
