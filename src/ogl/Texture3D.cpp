#include "ogl/Texture3D.h"

#include "platform/GL.h"

namespace ZLT::OGL {

Texture3D::Texture3D(InternalFormat format, std::uint64_t width, std::uint64_t height, std::uint64_t depth,
                     bool mipmaps)
    : Texture3(Target::TEXTURE_3D, TargetBinding::TEXTURE_BINDING_3D, format, width, height, depth, mipmaps) {
}

Texture3D::Texture3D(InternalFormat format, int level, std::uint64_t width, std::uint64_t height,
                     std::uint64_t depth, Format pixelFormat, Type type, const void* data,
                     const PixelUnpackParameters& parameters)
    : Texture3(Target::TEXTURE_3D, TargetBinding::TEXTURE_BINDING_3D, format, level, width, height, depth,
               pixelFormat, type, data, parameters) {}

Texture3D::~Texture3D() noexcept = default;

bool Texture3D::isSupported() { return IsTargetSupported(GL_TEXTURE_3D); }

} // namespace ZLT::OGL
