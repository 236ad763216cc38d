#include "ogl/Texture1D.h"

namespace ZLT::OGL {

Texture1D::Texture1D(InternalFormat format, std::uint64_t width, bool mipmaps)
    : Texture1(Target::TEXTURE_1D, TargetBinding::TEXTURE_BINDING_1D, format, width, mipmaps) {}

Texture1D::~Texture1D() noexcept = default;

} // namespace ZLT::OGL
