#pragma once

#include "Export.h"

/// @file
/// Names of GL values. Both functions are pure: they need no context and no initialised library, and may be
/// called from any thread at any time. They are exported under their plain names, for `dlsym` and
/// `GetProcAddress`.

namespace ZLT::OGL {

extern "C" {

/// The name of a GL value: "GL_TEXTURE_2D" for 0x0DE1. Each value has one name, whatever its role in a call,
/// so small values read oddly: 0 is "GL_POINTS", 4 is "GL_LINE_BIT". Masks are not split.
/// @return a constant string that lives as long as the process; "Unknown Token" for a value that has no name
ZLT_OGL_API const char* TokenName(unsigned int value);

/// "GL_FALSE" for 0, "GL_TRUE" for every other value.
ZLT_OGL_API const char* boolToString(unsigned char value);

} // extern "C"

} // namespace ZLT::OGL
