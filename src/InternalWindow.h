#pragma once

#include "Export.h"
#include "platform/Platform.h"

namespace ZLT::OGL {

/// A hidden window of 8 x 8 pixels, with a window class of its own, for a context that draws off screen. It
/// belongs to the thread that makes it.
class ZLT_OGL_API InternalWindow {
public:
    /// A window with its top left corner at (x, y) of the desktop, which decides on which display it is.
    /// @throws InternalException "Unable to register window class", "Unable to create window"; nothing is
    ///         left behind then
    InternalWindow(short x, short y);
    InternalWindow(const InternalWindow&) = delete;
    InternalWindow& operator=(const InternalWindow&) = delete;
    /// @throws InternalException "hDC != 0" when the window no longer exists, "Unable to release the device
    ///         context", "Unable to unregister window class"
    ~InternalWindow() noexcept(false);

    /// The window's handle; this object still owns the window.
    HWND window() const { return window_; }

private:
    HWND window_;
};

} // namespace ZLT::OGL
