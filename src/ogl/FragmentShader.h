#pragma once

#include "Export.h"
#include "ogl/Shader.h"

namespace ZLT::OGL {

/// A fragment shader.
class ZLT_OGL_API FragmentShader : public Shader {
public:
    /// @throws InternalException as Shader
    FragmentShader();
    FragmentShader(const FragmentShader& other) = default;
    FragmentShader& operator=(const FragmentShader& other) = default;
    ~FragmentShader() noexcept(false) override;
};

} // namespace ZLT::OGL
