#pragma once

#include "ogl/Context.h"

namespace ZLT::OGL {

class InternalWindow;

namespace internal {

/// A bare off-screen context with which the library talks to a driver before it has a manager for it. The
/// extension manager and the sharing registry don't know it.
class ContextBootstrap : public Context {
public:
    /// On a hidden window at the display's origin: RGB8, single buffered.
    /// @throws LogicalException as Context::initialize does, InternalException "error != 0" for a display
    ///         that has no settings, or as InternalWindow does
    explicit ContextBootstrap(const DISPLAY_DEVICEA& display = primaryDisplayDevice());
    /// @throws InternalException when the context or the window can't be destroyed
    ~ContextBootstrap() noexcept(false) override;

private:
    InternalWindow* window_;
};

} // namespace internal
} // namespace ZLT::OGL
