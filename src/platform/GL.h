#pragma once

/// @file
/// The OpenGL headers, in the one way that compiles on each system: those of Windows need `<windows.h>` in
/// front.

#if defined(_WIN32)
#include <windows.h>
#endif

#include <GL/gl.h>
#include <GL/glext.h>
