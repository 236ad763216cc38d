#pragma once

#include "ogl/Context.h"

namespace ZLT::OGL {

class InternalWindow;

/// A context on a hidden window of its own, for off-screen work: RGB8, single buffered. Draw to a
/// framebuffer object; the window has 8 x 8 pixels.
class ZLT_OGL_API ContextOffscreen : public Context {
public:
    /// On the display of `pContext`, sharing objects with it.
    /// @throws InternalException "pContext != NULL", or as below
    explicit ContextOffscreen(const Context* pContext);
    /// On this display device, sharing with nothing.
    /// @throws InternalException "error != 0" for a display that has no settings, or as InternalWindow, the
    ///         extension manager and the sharing groups do
    /// @throws LogicalException with the message of the step that failed
    explicit ContextOffscreen(const DISPLAY_DEVICEA& display = primaryDisplayDevice());
    /// @throws InternalException when the context or the window can't be destroyed
    ~ContextOffscreen() noexcept(false) override;

private:
    void create(const DISPLAY_DEVICEA& display, const Context* share);

    InternalWindow* window_;
};

} // namespace ZLT::OGL
