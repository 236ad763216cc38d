#pragma once

#include "Export.h"
#include "ogl/Texture3.h"

#include <cstdint>

namespace ZLT::OGL {

/// Layers of two-dimensional images: depth() is the layer count, at each level.
class ZLT_OGL_API Texture2DArray : public Texture3 {
public:
    /// @param width,height  of level 0, in texels
    /// @param mipmaps levels down to one texel, with half the layers at each, which GL counts as incomplete
    /// @throws InternalException as Texture3
    Texture2DArray(InternalFormat format, std::uint64_t width, std::uint64_t height, std::uint64_t layers,
                   bool mipmaps);
    ~Texture2DArray() noexcept override;

    /// The layers, at each level.
    std::uint64_t depth(unsigned int level) const override;
};

} // namespace ZLT::OGL
