#pragma once

#include "capture/Picture.h"

#include <string>

namespace ZLT::Interception {

/// Writes the picture as a PNG file.
/// @throws Refusal when that fails
void writePng(const std::string& path, const Capture::Picture& picture);

/// The bytes of such a file.
std::string pngOf(const Capture::Picture& picture);
/// The same without the alpha, and smaller.
std::string jpegOf(const Capture::Picture& picture);

} // namespace ZLT::Interception
