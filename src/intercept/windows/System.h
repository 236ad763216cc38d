#pragma once

#include "intercept/RealFunctions.h"

/// @file
/// The system's opengl32.dll behind ours.

namespace ZLT::Interception {

/// A function that the system's library exports, or null.
RealFunction systemFunction(const char* name);
template <class Function>
Function* systemFunction(Function*, const char* name) {
    return reinterpret_cast<Function*>(systemFunction(name));
}

/// `wglGetProcAddress` of the driver of the current context, or null; some drivers answer 1, 2, 3 or -1 for a
/// name that they don't know.
RealFunction driverFunction(const char* name);

/// What the program gets for a function of the driver.
RealFunction handOut(const char* name, RealFunction real);

} // namespace ZLT::Interception
