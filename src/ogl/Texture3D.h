#pragma once

#include "Export.h"
#include "ogl/Texture3.h"

#include <cstdint>

namespace ZLT::OGL {

/// A three-dimensional texture.
class ZLT_OGL_API Texture3D : public Texture3 {
public:
    /// @param width,height,depth  of level 0, in texels
    /// @throws InternalException as Texture3
    Texture3D(InternalFormat format, std::uint64_t width, std::uint64_t height, std::uint64_t depth,
              bool mipmaps);
    /// Only one level, with its pixels.
    /// @param level               the level to allocate
    /// @param width,height,depth  of that level, in texels
    /// @param data                the pixels, read by the current pixel store state
    /// @param parameters          not applied: apply them before
    /// @throws InternalException as Texture3, and as Format2GL() and Type2GL()
    Texture3D(InternalFormat format, int level, std::uint64_t width, std::uint64_t height,
              std::uint64_t depth, Format pixelFormat, Type type, const void* data,
              const PixelUnpackParameters& parameters);
    ~Texture3D() noexcept override;

    /// Whether the current context has such textures.
    static bool isSupported();
};

} // namespace ZLT::OGL
