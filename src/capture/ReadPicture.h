#pragma once

#include "capture/CapturedContext.h"
#include "capture/Picture.h"

namespace ZLT::Capture {

/// Reads what the current context has drawn to its surface. All state of the context is as before.
/// @return false where it can't be read at this time: between glBegin and glEnd, while a list is compiled
bool readPicture(const CapturedContext& context, int width, int height, Picture& picture);

} // namespace ZLT::Capture
