#pragma once

#include "capture/Picture.h"

#include <string>

namespace ZLT::Interception {

/// Writes the picture as a PNG file.
/// @throws Refusal when that fails
void writePng(const std::string& path, const Capture::Picture& picture);

} // namespace ZLT::Interception
