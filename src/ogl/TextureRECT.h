#pragma once

#include "Export.h"
#include "ogl/Texture2.h"

#include <cstdint>

namespace ZLT::OGL {

/// A rectangle texture: any size, one level, coordinates in texels.
class ZLT_OGL_API TextureRECT : public Texture2 {
public:
    /// @param width,height   in texels
    /// @param clientStorage  null, or the pixels, as BGRA bytes; see Texture2
    /// @throws InternalException as Texture2
    TextureRECT(InternalFormat format, std::uint64_t width, std::uint64_t height, void* clientStorage);
    ~TextureRECT() noexcept override;

    /// Whether the current context has such textures.
    static bool isSupported();
};

} // namespace ZLT::OGL
