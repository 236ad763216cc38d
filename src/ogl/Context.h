#pragma once

#include "Export.h"
#include "platform/Platform.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <cstddef>

namespace ZLT::OGL {

class BufferFormat;
class ExtensionManager;
class Library;

/// Base of all rendering contexts: a device context, a rendering context, and the display device on which it
/// lives. The kinds are ContextWindowed, ContextOffscreen and ContextWrapped.
///
/// Each thread has its own current context; a context is current on one thread at a time. Constructors and
/// destructors leave the calling thread's current context as they found it (a context that was current when
/// it was destroyed leaves none), so make a new context current before the first GL call. Contexts are made
/// and destroyed by one thread at a time; makeCurrent() on different contexts may run at once. Failures are
/// exceptions, from destructors too.
class ZLT_OGL_API Context {
public:
    /// Test for equality with eDoubleBuffered: every other value is single buffered.
    enum teBuffering : int {
        eSingleBuffered = 0,
        eDoubleBuffered = 1,
    };
    /// A value above 1 is the number of samples: `Context::teMultisample(4)`.
    enum teMultisample : unsigned int {
        eNoMultisample = 1,
    };
    /// What the pixel format is to draw to.
    enum teWindowed : int {
        eOffscreenTarget = 0,
        eWindowedTarget = 1,
    };

    Context& operator=(const Context&) = delete;
    Context(const Context&) = delete;
    /// The derived classes have released what they hold by then.
    virtual ~Context() noexcept(false);

    /// Makes this the calling thread's current context.
    /// @throws InternalException "Context::can't make this context current" and the platform's error number
    virtual void makeCurrent() const;

    /// The calling thread's current context, whoever made it, or null.
    static HGLRC currentContext();

    /// The device context; it lives as long as its window.
    HDC deviceContext() const;
    /// The rendering context, by which the extension manager and the sharing groups identify this context.
    HGLRC renderContext() const;

    /// Bits per pixel of the format in use; no argument may be null. For a device context without a format
    /// they are whatever the platform says.
    void getBitDepths(int* red, int* green, int* blue, int* alpha, int* stencil, int* depth) const;

    /// The record of the display device on which this context lives.
    const DISPLAY_DEVICEA& displayDevice();
    /// Its name, which decides on the extension manager.
    String deviceName() const;

    /// Whether this context and the calling thread's current one were created to share: false when none is
    /// current. It is a record of what was asked for at creation, not the driver's view.
    /// @throws InternalException "indexSource < LARGE_INDEX-1" when this context is in no sharing group, and
    ///         "indexQuery < LARGE_INDEX-1" when the current one is not
    bool isSharingWithCurrentContext() const;

    /// Whether swapping can be bound to the vertical retrace (`WGL_EXT_swap_control`) on the current
    /// context's display.
    static bool supportsVerticalRetraceControl();

    /// @name Display devices
    /// The machine's display devices, numbered among those attached to the desktop.
    /// @{

    /// How many there are, without mirroring drivers. displayDevice() counts those, so after one the numbers
    /// are off by one.
    static std::size_t numDisplayDevice();
    /// The number of the primary one; 0 when none is marked as primary.
    static std::size_t primaryDisplayIndex();
    /// Fills `record` with the device of this number. With a number past the end it is left with the last
    /// device that the platform named, and nothing is reported.
    static void displayDevice(std::size_t index, DISPLAY_DEVICEA& record);
    /// The primary one, in a record that each call overwrites, for all threads.
    static const DISPLAY_DEVICEA& primaryDisplayDevice();
    /// The device that shows the window, or the nearest one.
    /// @throws InternalException "Context::can't get monitor info" and the platform's error number
    static DISPLAY_DEVICEA displayDeviceFromWindow(HWND const& window);
    /// Whether both belong to one adapter: their keys are equal except for the last four characters.
    static bool shareDevice(const DISPLAY_DEVICEA& a, const DISPLAY_DEVICEA& b);
    /// @}

protected:
    Context();

    /// Chooses a pixel format for `hdc`, sets it, creates the rendering context, and makes it current once.
    /// Then the calling thread's current context is again what it was.
    /// @param share  the context to share with, or null
    /// @throws InternalException "ContextWindowed::ctor invalid DC on window" for a null `hdc`
    /// @throws LogicalException with the message of the step that failed; docs/contexts.md: what is left then
    void initialize(HDC hdc, const BufferFormat& format, teBuffering buffering, teMultisample multisample,
                    const Context* share);
    /// Releases what is current, deletes the rendering context, and makes the other one current again.
    void destroyContext();
    /// @throws InternalException always: the extension manager does this
    [[noreturn]] void initializeExtensions();

    /// The position of the display device of this name on the desktop.
    /// @throws InternalException "error != 0" when the platform doesn't know it
    static POINTL displayOrigin(const String& deviceName);

    static int choosePixelFormat(HDC hdc, const BufferFormat& format, bool doubleBuffered);
    static int choosePixelFormat(HDC hdc, const BufferFormat& format, teBuffering buffering,
                                 teMultisample multisample, teWindowed windowed);
    void setPixelFormat(HDC hdc, int format);
    HGLRC createRenderingContext(HDC hdc, const Context* share);
    HGLRC setupRenderingContext(HDC hdc, const BufferFormat& format, bool doubleBuffered,
                                const Context* share);
    /// Shares what `other` has, by the platform's function. The sharing groups are not changed.
    /// @throws InternalException "Context::shareLists cannot share lists."
    void shareLists(HGLRC other);

    /// @name Sharing groups
    /// Which contexts were created to share with which. A context is in one group at most, and groups
    /// never merge; no lock guards them.
    /// @{
    void _addShareContext(const Context* sibling) const;
    static void _registerContextWrapped(const Context* context);
    static void _unregisterShareContext(const Context* context);
    void registerSharedContext(const Context* share);
    void unregisterSharedContext();
    /// @}

    void unregisterWithExtensionMgr();

    /// Only stored; nothing in the library reads it.
    static bool throwTestException_;

    HDC deviceContext_;
    HGLRC renderContext_;
    int pixelFormat_; // 0: none was set
    DISPLAY_DEVICEA displayDevice_;

private:
    friend class Library;

    using CreateContextAttribs = HGLRC(WINAPI*)(HDC, HGLRC, const int*);

    static void setThrowTestException(bool on);

    // wglCreateContextAttribsARB, or null where the driver has none. Probes for it on a hidden window until
    // the library has stored the answer.
    static CreateContextAttribs getWglCreateContextAttribsPtr();
    static void initializeWglCreateContextAttribsPtr();
    static void unInitializeWglCreateContextAttribsPtr();

    struct Temporaries;
    void createByShortOrLongRoute(const BufferFormat& format, teBuffering buffering,
                                  teMultisample multisample, const Context* share, Temporaries& made);

    static bool isWglCreateContextAttribsSupportKnown_;
    static CreateContextAttribs wglCreateContextAttribsARB_;
};

/// Leaves the calling thread with no current context; does nothing when there is none.
ZLT_OGL_API void releaseOGLContext();

} // namespace ZLT::OGL
