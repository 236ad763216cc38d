#pragma once

#include "extensionator/win/wglInterceptor.h"

namespace ZLT::OGL {

/// The last layer of the WGL chain. In spite of its name it checks nothing: each entry calls the platform's
/// function and returns its result, which shows a failure as that function does.
class ZLT_OGL_API wglErrorChecker : public wglInterceptor {
public:
    wglErrorChecker();
    ~wglErrorChecker() override;

#include "extensionator/win/wglLayerEntries.inl"
};

} // namespace ZLT::OGL
