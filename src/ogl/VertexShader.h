#pragma once

#include "Export.h"
#include "ogl/Shader.h"

namespace ZLT::OGL {

/// A vertex shader.
class ZLT_OGL_API VertexShader : public Shader {
public:
    /// @throws InternalException as Shader
    VertexShader();
    VertexShader(const VertexShader& other) = default;
    VertexShader& operator=(const VertexShader& other) = default;
    ~VertexShader() noexcept(false) override;
};

} // namespace ZLT::OGL
