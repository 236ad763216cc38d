#pragma once

#include "Export.h"
#include "ogl/Texture2.h"

#include <cstdint>

namespace ZLT::OGL {

/// A two-dimensional texture.
class ZLT_OGL_API Texture2D : public Texture2 {
public:
    /// @param width,height   of level 0, in texels
    /// @param clientStorage  null, or pixels for each level, as BGRA bytes; see Texture2
    /// @throws InternalException as Texture2
    Texture2D(InternalFormat format, std::uint64_t width, std::uint64_t height, bool mipmaps,
              void* clientStorage);
    ~Texture2D() noexcept override;

    /// Whether the current context has such textures.
    static bool isSupported();
};

} // namespace ZLT::OGL
