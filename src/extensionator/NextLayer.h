#pragma once

#include "extensionator/OpenGLInterceptorDecorator.h"

namespace ZLT::OGL {

/// Reads the next layer in place: where an entry does nothing but hand on, a call to ask for it would be half
/// of the cost.
struct NextLayer {
    static OpenGLInterceptor* of(const OpenGLInterceptorDecorator& layer) { return layer.interceptor_; }
};

} // namespace ZLT::OGL
