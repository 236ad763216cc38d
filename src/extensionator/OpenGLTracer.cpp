#include "extensionator/OpenGLTracer.h"

namespace ZLT::OGL {

OpenGLTracer::OpenGLTracer(std::ostream& out, OpenGLInterceptor* next)
    : OpenGLInterceptorDecorator(next), outputStream_(&out) {}
OpenGLTracer::~OpenGLTracer() = default;

std::ostream* OpenGLTracer::outputStream() { return outputStream_; }
const std::ostream* OpenGLTracer::outputStream() const { return outputStream_; }
void OpenGLTracer::setOutputStream(std::ostream& out) { outputStream_ = &out; }

} // namespace ZLT::OGL
