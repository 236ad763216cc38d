#pragma once

#include "extensionator/ExtensionManager.h"
#include "extensionator/FunctionTable.h"

/// @file
/// How the library reaches GL without the chain. A function of GL 1.1 is called by its plain name; every
/// later one through the table of the current context, so that each display device is driven by its own
/// entry points:
///
///     ZLT_GL(glBindBuffer)(target, name);

namespace ZLT::OGL {

/// @throws InternalException "The current context has no <function>"
[[noreturn]] void raiseMissing(const char* function);

template <class Function>
Function entryPoint(Function FunctionTable::*slot, const char* name) {
    const Function function = ExtensionManager::Instance()->table().*slot;
    if (!function) [[unlikely]]
        raiseMissing(name);
    return function;
}

} // namespace ZLT::OGL

/// The entry point of a function past GL 1.1. It throws as ExtensionManager::Instance() does, and where
/// the driver lacks the function or no context is current.
#define ZLT_GL(function) (ZLT::OGL::entryPoint(&ZLT::OGL::FunctionTable::function, #function))
