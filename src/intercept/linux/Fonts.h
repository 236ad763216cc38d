#pragma once

#include <X11/X.h>
#include <cstdint>

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// What glXUseXFont does, by calls of GL: the driver's own makes its lists past us, and a capture would lack
/// them.
/// @param gl    to which the calls go
/// @param site  of the program, where they are said to come from
/// @return false where that can't be done, and nothing was
bool makeFontLists(OGL::OpenGLInterceptor& gl, std::uint32_t site, Font font, int first, int count, int list);

} // namespace ZLT::Interception
