#include "extensionator/OpenGLInterceptorDecorator.h"

namespace ZLT::OGL {

OpenGLInterceptorDecorator::OpenGLInterceptorDecorator(OpenGLInterceptor* next) : interceptor_(next) {}
OpenGLInterceptorDecorator::~OpenGLInterceptorDecorator() = default;

OpenGLInterceptor* OpenGLInterceptorDecorator::interceptor() { return interceptor_; }
const OpenGLInterceptor* OpenGLInterceptorDecorator::interceptor() const { return interceptor_; }
void OpenGLInterceptorDecorator::setInterceptor(OpenGLInterceptor* next) { interceptor_ = next; }

} // namespace ZLT::OGL
