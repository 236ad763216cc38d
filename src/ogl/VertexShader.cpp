#include "ogl/VertexShader.h"

namespace ZLT::OGL {

VertexShader::VertexShader() : Shader(VERTEX_SHADER) {}

VertexShader::~VertexShader() noexcept(false) = default;

} // namespace ZLT::OGL
