#pragma once

#include "Export.h"
#include "ogl/Texture2.h"

#include <cstdint>

namespace ZLT::OGL {

/// Layers of one-dimensional images, stacked as the rows of a two-dimensional one: height() is the layer
/// count.
class ZLT_OGL_API Texture1DArray : public Texture2 {
public:
    /// @param width    of level 0, in texels
    /// @param mipmaps levels down to one texel, with half the layers at each, which GL counts as incomplete
    /// @throws InternalException as Texture2
    Texture1DArray(InternalFormat format, std::uint64_t width, std::uint64_t layers, bool mipmaps);
    ~Texture1DArray() noexcept override;

    /// 1: the layers are the height.
    std::uint64_t depth(unsigned int level) const override;
};

} // namespace ZLT::OGL
