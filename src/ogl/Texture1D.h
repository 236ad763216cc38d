#pragma once

#include "Export.h"
#include "ogl/Texture1.h"

#include <cstdint>

namespace ZLT::OGL {

/// A one-dimensional texture.
class ZLT_OGL_API Texture1D : public Texture1 {
public:
    /// @param width  of level 0, in texels
    /// @throws InternalException as Texture1
    Texture1D(InternalFormat format, std::uint64_t width, bool mipmaps);
    ~Texture1D() noexcept override;
};

} // namespace ZLT::OGL
