#pragma once

#include "extensionator/win/wglInterceptor.h"

namespace ZLT::OGL {

/// The last layer of the WGL chain. In spite of its name it checks nothing: each entry calls the platform's
/// function and returns its result, and a failure comes back as that function tells it.
class ZLT_OGL_API wglErrorChecker : public wglInterceptor {
public:
    wglErrorChecker();
    ~wglErrorChecker() override;

#include "extensionator/win/wglLayerEntries.inl"
};

} // namespace ZLT::OGL
