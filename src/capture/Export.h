#pragma once

/// @file
/// Marks what `zlt_capture` exports.

#if defined(_WIN32)
#if defined(ZLT_CAPTURE_BUILD)
#define ZLT_CAPTURE_API __declspec(dllexport)
#elif defined(ZLT_OGL_OBJECTS)
// A program that links the library's objects instead of the library.
#define ZLT_CAPTURE_API
#else
#define ZLT_CAPTURE_API __declspec(dllimport)
#endif
#else
#define ZLT_CAPTURE_API __attribute__((visibility("default")))
#endif
