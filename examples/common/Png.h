#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// Writes 8-bit RGB pixels as a PNG file.
/// @param pixels  width * height * 3 bytes, from the lowest row up, as `glReadPixels` gives them
/// @throws std::runtime_error that names the file
void writePng(const std::string& path, int width, int height, const std::vector<std::uint8_t>& pixels);
