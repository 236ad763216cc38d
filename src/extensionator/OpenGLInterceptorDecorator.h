#pragma once

#include "extensionator/OpenGLInterceptor.h"

namespace ZLT::OGL {

/// Base of the layers in front of the checker. A layer overrides all 1,833 entries: each does the
/// layer's own work, calls the same entry of `interceptor()` with the same file, line and arguments, and
/// returns what that returned. `#include "extensionator/LayerEntries.inl"` declares the overrides in a class
/// body. OpenGLForwarder and OpenGLWatcher are bases for layers that override less.
class ZLT_OGL_API OpenGLInterceptorDecorator : public OpenGLInterceptor {
public:
    /// @param next  the next layer towards the checker, not owned; addInterceptor() replaces it
    OpenGLInterceptorDecorator(OpenGLInterceptor* next = nullptr);
    ~OpenGLInterceptorDecorator() override;

    /// The next layer; null until one was set, and then no call may pass.
    OpenGLInterceptor* interceptor();
    const OpenGLInterceptor* interceptor() const;
    /// Replaces the next layer, which is not owned.
    void setInterceptor(OpenGLInterceptor* next);

private:
    friend struct NextLayer;

    OpenGLInterceptor* interceptor_;
};

} // namespace ZLT::OGL
