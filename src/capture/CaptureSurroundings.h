#pragma once

#include "capture/Export.h"

#include <cstdint>

namespace ZLT::Capture {

/// How a capture is made.
struct CaptureOptions {
    bool hashPictures = false; ///< the hash of what a surface shows, before each swap
};

/// Where the calls come from, beside GL: the window system, as far as a capture has to know it.
class ZLT_CAPTURE_API CaptureSurroundings {
public:
    /// In pixels; 0 where it is not known.
    struct Size {
        int width = 0, height = 0;
    };

    virtual ~CaptureSurroundings();
    /// The windows, pbuffers or pixmaps of the calling thread's current context: any number that is the
    /// surface's own, 0 for none.
    virtual std::uint64_t drawSurface() = 0;
    virtual std::uint64_t readSurface() = 0;
    /// Of one of these.
    virtual Size sizeOf(std::uint64_t surface) = 0;
    /// Contexts of the same number share their objects. `context` is what wglGetCurrentContext() gives.
    virtual std::uint64_t shareGroupOf(void* context) = 0;
};

} // namespace ZLT::Capture
