#include "extensionator/OpenGLForwarder.h"

namespace ZLT::OGL {

OpenGLForwarder::OpenGLForwarder(OpenGLInterceptor* next) : OpenGLInterceptorDecorator(next) {}
OpenGLForwarder::~OpenGLForwarder() = default;

} // namespace ZLT::OGL
