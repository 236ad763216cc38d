#include "ogl/Texture1DArray.h"

namespace ZLT::OGL {

Texture1DArray::Texture1DArray(InternalFormat format, std::uint64_t width, std::uint64_t layers, bool mipmaps)
    : Texture2(Target::TEXTURE_1D_ARRAY, TargetBinding::TEXTURE_BINDING_1D_ARRAY, format, width, layers,
               mipmaps, nullptr) {}

Texture1DArray::~Texture1DArray() noexcept = default;

std::uint64_t Texture1DArray::depth(unsigned int) const { return baseDepth(); }

} // namespace ZLT::OGL
