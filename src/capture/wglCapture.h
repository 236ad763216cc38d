#pragma once

#include "capture/Export.h"
#include "extensionator/win/wglInterceptorDecorator.h"

namespace ZLT::Capture {

class OpenGLCapture;

/// The twin of OpenGLCapture in the WGL chain: tells it which contexts share, which one is current, when one
/// is gone and when a frame ends.
///
///     OpenGLCapture capture(file);
///     wglCapture windows(capture);
///     const ScopedInterceptor installed(capture);
///     const wglScopedInterceptor twinInstalled(windows);
///
/// A client that makes its contexts by other means calls the functions of OpenGLCapture itself. Fonts that
/// WGL turns into display lists are told as missing.
class ZLT_CAPTURE_API wglCapture : public OGL::wglInterceptorDecorator {
public:
    /// @param capture  not owned; lives longer than the layer
    explicit wglCapture(OpenGLCapture& capture);
    ~wglCapture() override;

#include "extensionator/win/wglLayerEntries.inl"

private:
    OpenGLCapture* capture_;
};

} // namespace ZLT::Capture
