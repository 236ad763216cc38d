#pragma once

#include "intercept/RealFunctions.h"

#include <string_view>

/// @file
/// The program's GL libraries: how their functions are found, and which of ours stands for one of theirs.

namespace ZLT::Interception {

/// The next function of this name behind ours in the order in which the loader looks, or null.
RealFunction nextFunction(const char* name);

/// The function of this name in the program's GL libraries, or null.
RealFunction findFunction(const char* name);
/// The same, and asks the driver for what no library has by name.
RealFunction findFunctionOfDriver(const char* name);

/// A function that we stand in front of.
struct Replacement {
    RealFunction ours = nullptr;  ///< null: none of this name
    RealFunction* real = nullptr; ///< where the driver's is kept
};
/// By name: of GL, GLX, EGL. The loader's own (dlsym) are not among them.
Replacement replacementOf(const char* name);

/// The program asked a library for `name` and got `real`: what it is given. Ours, if we stand in front of it.
RealFunction handOut(const char* name, RealFunction real);

/// The kept function of GLX or EGL, which is looked for at the first use; null where the program has none.
RealFunction realOf(const char* name);
template <class Function>
Function* realOf(Function*, const char* name) {
    return reinterpret_cast<Function*>(realOf(name));
}

/// Whether the address lies in this object.
bool isOurs(const void* address);

} // namespace ZLT::Interception
