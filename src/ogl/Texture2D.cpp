#include "ogl/Texture2D.h"

#include "platform/GL.h"

namespace ZLT::OGL {

Texture2D::Texture2D(InternalFormat format, std::uint64_t width, std::uint64_t height, bool mipmaps,
                     void* clientStorage)
    : Texture2(Target::TEXTURE_2D, TargetBinding::TEXTURE_BINDING_2D, format, width, height, mipmaps,
               clientStorage) {}

Texture2D::~Texture2D() noexcept = default;

bool Texture2D::isSupported() { return IsTargetSupported(GL_TEXTURE_2D); }

} // namespace ZLT::OGL
