#pragma once

#include <X11/X.h>

namespace ZLT::Interception {

/// What glXUseXFont does, by calls of GL that everybody sees: the driver's own makes its lists past us, and a
/// capture would lack them.
/// @return false where that can't be done, and nothing was
bool makeFontLists(Font font, int first, int count, int list);

} // namespace ZLT::Interception
