#pragma once

#include "ogl/Context.h"

namespace ZLT::OGL {

/// A context that somebody else made (a toolkit, another library), so that the object layer and the chain
/// work on it. Its maker still owns it: destroying this object leaves it alive and current. On Linux
/// contexts of EGL and GLX can be wrapped while they are current.
class ZLT_OGL_API ContextWrapped : public Context {
public:
    /// Wraps the calling thread's current context, and files it under the primary display device.
    /// @throws InternalException "ContextWrapped::ctor invalid device" when none is current
    ContextWrapped();
    /// Wraps this pair, which need not be current.
    /// @param window  a window on the context's display device; null: the primary display device
    /// @throws InternalException "ContextWrapped::ctor invalid device", "ContextWrapped::ctor invalid
    ///         rendering context" for null handles
    ContextWrapped(HDC hdc, HGLRC hrc, HWND window);
    /// @throws InternalException "found" when another wrapper of the same handle was destroyed before
    ~ContextWrapped() noexcept(false) override;

    /// As Context::makeCurrent().
    /// @throws InternalException "ContextWrapped Object leaked" when the platform refuses: its maker has
    ///         destroyed the context in the meantime
    void makeCurrent() const override;

private:
    void adopt(HWND window);
};

} // namespace ZLT::OGL
