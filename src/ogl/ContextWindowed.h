#pragma once

#include "ogl/Context.h"

namespace ZLT::OGL {

/// A context that draws to a window of the client's. The window must live longer than the context; on X11 a
/// window of any toolkit will do, by its XID.
class ZLT_OGL_API ContextWindowed : public Context {
public:
    /// @param window       its pixel format is set, which can be done once for each window
    /// @param format       at least these bits
    /// @param multisample  with samples, `buffering` must be eDoubleBuffered
    /// @param share        the context to share objects with, or null
    /// @throws InternalException when the window is on no monitor, or the extension manager or the sharing
    ///         groups refuse the context
    /// @throws LogicalException with the message of the step that failed
    ContextWindowed(HWND window, const BufferFormat& format, teBuffering buffering, teMultisample multisample,
                    const Context* share);
    /// @throws InternalException when the context can't be destroyed
    ~ContextWindowed() noexcept(false) override;

    /// Shows what was drawn; failures are ignored. Make this context current first.
    void swapBuffers();

    /// Whether swapBuffers() waits for the vertical retrace. Acts on the calling thread's current context.
    /// @throws InternalException "ContextWindowed::enableSyncToVerticalRetrace unsupported feature" where
    ///         supportsVerticalRetraceControl() is false
    void enableSyncToVerticalRetrace(bool on);
};

} // namespace ZLT::OGL
