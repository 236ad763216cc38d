#pragma once

/// @file
/// Marks what `zlt_core` exports.

#if defined(_WIN32)
#if defined(ZLT_CORE_BUILD)
#define ZLT_CORE_API __declspec(dllexport)
#else
#define ZLT_CORE_API __declspec(dllimport)
#endif
#else
#define ZLT_CORE_API __attribute__((visibility("default")))
#endif
