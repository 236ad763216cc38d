#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// 8-bit RGB pixels, from the lowest row up, as `glReadPixels` gives them.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint8_t> pixels;

    bool operator==(const Picture&) const = default;
};

/// What the current context shows, by `glReadPixels` past any chain.
Picture readFrame(int width, int height);

/// @throws std::runtime_error that names the file
void writePng(const std::string& path, const Picture& picture);
Picture readPng(const std::string& path);
