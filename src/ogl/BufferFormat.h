#pragma once

#include "Export.h"

namespace ZLT::OGL {

/// How many bits the colour, depth and stencil buffers of a context are to have.
class ZLT_OGL_API BufferFormat {
public:
    /// Formats by name: the bits of each colour channel, F for floating point, then depth and stencil. The
    /// three at the end are the same as the ones without ALT.
    enum tePredefined : int {
        R16F = 0,
        R16F_D24 = 1,
        R16F_D24S8 = 2,
        R32F = 3,
        R32F_D24 = 4,
        R32F_D24S8 = 5,
        RG16F = 6,
        RG16F_D24 = 7,
        RG16F_D24S8 = 8,
        RG32F = 9,
        RG32F_D24 = 10,
        RG32F_D24S8 = 11,
        RGB8 = 12,
        RGB8_D24 = 13,
        RGB8_D24S8 = 14,
        RGBA8 = 15,
        RGBA8_D24 = 16,
        RGBA8_D24S8 = 17,
        RGBA16F = 18,
        RGBA16F_D24 = 19,
        RGBA16F_D24S8 = 20,
        RGBA16F_ALT = 21,
        RGBA16F_D24_ALT = 22,
        RGBA16F_D24S8_ALT = 23,
    };

    /// All counts are bits per pixel; note that stencil comes before depth.
    BufferFormat(unsigned int red, unsigned int green, unsigned int blue, unsigned int alpha,
                 unsigned int stencil, unsigned int depth, bool floatingPointColor);
    /// @throws InternalException "Trying to construct an buffer-format not recognized by this method" for a
    ///         value outside the enumeration
    explicit BufferFormat(tePredefined format);

    unsigned int redBits() const { return redBits_; }
    unsigned int greenBits() const { return greenBits_; }
    unsigned int blueBits() const { return blueBits_; }
    unsigned int alphaBits() const { return alphaBits_; }
    unsigned int stencilBits() const { return stencilBits_; }
    unsigned int depthBits() const { return depthBits_; }
    bool floatingPointColor() const { return floatingPointColor_; }

private:
    unsigned int redBits_;
    unsigned int greenBits_;
    unsigned int blueBits_;
    unsigned int alphaBits_;
    unsigned int stencilBits_;
    unsigned int depthBits_;
    bool floatingPointColor_;
};

} // namespace ZLT::OGL
