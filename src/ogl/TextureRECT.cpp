#include "ogl/TextureRECT.h"

#include "platform/GL.h"

namespace ZLT::OGL {

TextureRECT::TextureRECT(InternalFormat format, std::uint64_t width, std::uint64_t height,
                         void* clientStorage)
    : Texture2(Target::TEXTURE_RECTANGLE_ARB, TargetBinding::TEXTURE_BINDING_RECTANGLE_ARB, format, width,
               height, false, clientStorage) {}

TextureRECT::~TextureRECT() noexcept = default;

bool TextureRECT::isSupported() { return IsTargetSupported(GL_TEXTURE_RECTANGLE_ARB); }

} // namespace ZLT::OGL
