#pragma once

#include "extensionator/win/wglInterceptor.h"

namespace ZLT::OGL {

/// Base of the layers in front of the checker. A layer overrides all 20 entries: each does the
/// layer's own work, calls the same entry of `interceptor()` with the same file, line and arguments, and
/// returns what that returned. `#include "extensionator/win/wglLayerEntries.inl"` declares the overrides in a
/// class body.
class ZLT_OGL_API wglInterceptorDecorator : public wglInterceptor {
public:
    /// @param next  the next layer towards the checker, not owned; addInterceptor() replaces it
    wglInterceptorDecorator(wglInterceptor* next = nullptr);
    ~wglInterceptorDecorator() override;

    /// The next layer; null until one was set, and then no call may pass.
    wglInterceptor* interceptor();
    const wglInterceptor* interceptor() const;
    /// Replaces the next layer, which is not owned.
    void setInterceptor(wglInterceptor* next);

private:
    wglInterceptor* interceptor_;
};

} // namespace ZLT::OGL
