#include "extensionator/OpenGLWatcher.h"

#include "extensionator/OpenGLWatcher.inl"

namespace ZLT::OGL {

OpenGLWatcher::OpenGLWatcher() : layer_(std::make_unique<OpenGLWatchLayer>(*this)) {}
OpenGLWatcher::~OpenGLWatcher() = default;

OpenGLInterceptorDecorator& OpenGLWatcher::layer() { return *layer_; }

bool OpenGLWatcher::before(const OpenGLCall&) { return true; }
void OpenGLWatcher::after(const OpenGLCall&) {}
void OpenGLWatcher::failed(const OpenGLCall&) {}

} // namespace ZLT::OGL
