#pragma once

/// @file
/// Marks what `zlt_core` exports.

#if defined(_WIN32)
#if defined(ZLT_CORE_BUILD)
#define ZLT_CORE_API __declspec(dllexport)
#elif defined(ZLT_CORE_OBJECTS)
// Objects that are linked to the library in one place and to its objects in another.
#define ZLT_CORE_API
#else
#define ZLT_CORE_API __declspec(dllimport)
#endif
#else
#define ZLT_CORE_API __attribute__((visibility("default")))
#endif
