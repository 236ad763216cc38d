#include "ogl/FragmentShader.h"

namespace ZLT::OGL {

FragmentShader::FragmentShader() : Shader(FRAGMENT_SHADER) {}

FragmentShader::~FragmentShader() noexcept(false) = default;

} // namespace ZLT::OGL
