#include "ogl/GLSLObject.h"

namespace ZLT::OGL {

GLSLObject::~GLSLObject() noexcept(false) = default;

} // namespace ZLT::OGL
