#pragma once

#include "platform/Platform.h"

#include <initializer_list>

namespace ZLT::Capture {

/// Finds the function of the current context's driver by the first of these names that it has. What is found
/// already stays.
template <class Function, class... Names>
void findFunction(Function& function, Names... names) {
    for (const char* name : {static_cast<const char*>(names)...})
        if (!function)
            function = reinterpret_cast<Function>(reinterpret_cast<void*>(wglGetProcAddress(name)));
}

} // namespace ZLT::Capture
