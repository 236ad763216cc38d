#pragma once

#include "capture/Export.h"

#include <cstdint>
#include <vector>

namespace ZLT::Capture {

/// What a surface shows, or is about to show: rows of RGBA from the bottom up, opaque.
struct ZLT_CAPTURE_API Picture {
    int width = 0, height = 0;
    std::vector<unsigned char> pixels;

    /// Of the pixels.
    std::uint64_t hash() const;
};

} // namespace ZLT::Capture
