#pragma once

#include "zlt/core/Export.h"

/// @file
/// The four forms of enforcement, active in every build. Each throws `ZLT::InternalException` whose message
/// is the source text of the rule, with the file and line of the check itself.
///
///     ZLT_ASSERT(!isInitialized_)          "!isInitialized_"
///     ZLT_ENFORCE(poTex != NULL)           "Enforce poTex != NULL"
///     ZLT_UNREACHABLE("No such filter.")   "!\"No such filter.\""
///     ZLT_RANGE(nSize > 0)                 "Range error: nSize > 0"
///
/// ZLT_RAISE throws the same exception with a message of its own.

// The build gives each source a fixed name, so that no path of a build machine ends up in a message.
#ifndef ZLT_SOURCE_FILE
#define ZLT_SOURCE_FILE __FILE__
#endif

namespace ZLT::Detail {
/// Throws InternalException. Out of line and in one place, to keep the code of each check small.
[[noreturn]] ZLT_CORE_API void raiseInternal(const char* file, int line, const char* text);
} // namespace ZLT::Detail

/// A condition that must hold.
#define ZLT_ASSERT(...)                                                                                      \
    ((__VA_ARGS__) ? void() : ZLT::Detail::raiseInternal(ZLT_SOURCE_FILE, __LINE__, #__VA_ARGS__))

/// A pointer or cast that must not be null; write the comparison out.
#define ZLT_ENFORCE(...)                                                                                     \
    ((__VA_ARGS__) ? void() : ZLT::Detail::raiseInternal(ZLT_SOURCE_FILE, __LINE__, "Enforce " #__VA_ARGS__))

/// A branch that must not be reached; `text` is a string literal.
#define ZLT_UNREACHABLE(text) ZLT::Detail::raiseInternal(ZLT_SOURCE_FILE, __LINE__, "!" #text)

/// A failure with a message of its own.
#define ZLT_RAISE(text) ZLT::Detail::raiseInternal(ZLT_SOURCE_FILE, __LINE__, text)

/// An argument that must be in range.
#define ZLT_RANGE(...)                                                                                       \
    ((__VA_ARGS__) ? void()                                                                                  \
                   : ZLT::Detail::raiseInternal(ZLT_SOURCE_FILE, __LINE__, "Range error: " #__VA_ARGS__))
