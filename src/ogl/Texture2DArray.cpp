#include "ogl/Texture2DArray.h"

namespace ZLT::OGL {

Texture2DArray::Texture2DArray(InternalFormat format, std::uint64_t width, std::uint64_t height,
                               std::uint64_t layers, bool mipmaps)
    : Texture3(Target::TEXTURE_2D_ARRAY, TargetBinding::TEXTURE_BINDING_2D_ARRAY, format, width, height,
               layers, mipmaps) {}

Texture2DArray::~Texture2DArray() noexcept = default;

std::uint64_t Texture2DArray::depth(unsigned int) const { return baseDepth(); }

} // namespace ZLT::OGL
