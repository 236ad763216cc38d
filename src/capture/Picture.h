#pragma once

#include <cstdint>
#include <vector>

namespace ZLT::Capture {

class CapturedContext;

/// What a surface shows, or is about to show: rows of RGBA from the bottom up, opaque.
struct Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;

    std::uint64_t hash() const;
};

/// Reads what the current context has drawn to its surface. All state of the context is as before.
/// @return false where it can't be read at this time: between glBegin and glEnd, while a list is compiled
bool readPicture(const CapturedContext& context, int width, int height, Picture& picture);

} // namespace ZLT::Capture
