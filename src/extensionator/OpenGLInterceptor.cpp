#include "extensionator/OpenGLInterceptor.h"

namespace ZLT::OGL {

OpenGLInterceptor::OpenGLInterceptor() = default;
OpenGLInterceptor::~OpenGLInterceptor() = default;

} // namespace ZLT::OGL
