#pragma once

#include "ogl/ContextWindowed.h"

#include <memory>

/// A double buffered context on the window, with depth, and four samples for each pixel where the driver
/// has such a format.
std::unique_ptr<ZLT::OGL::ContextWindowed> makeContext(HWND window);
