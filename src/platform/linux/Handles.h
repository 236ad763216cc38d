#pragma once

#include "platform/Platform.h"

#include <EGL/egl.h>

#include <cstdint>
#include <deque>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

/// @file
/// What the handles stand for, and which of them are live. Everything here is guarded by State::lock.

// NOLINTBEGIN(bugprone-reserved-identifier)
struct _XDisplay;        // Xlib's Display
struct __GLXFBConfigRec; // what a GLXFBConfig points at
// NOLINTEND(bugprone-reserved-identifier)

namespace ZLT::Platform {

struct Connection;

/// An EGL configuration in one of its two forms of buffering.
struct Format {
    const Connection* connection; // null: of somebody else's display
    EGLConfig config;
    bool doubleBuffered;
    int red, green, blue, alpha, depth, stencil, samples;
    bool floatingPoint;
    bool slow;
    bool pbuffer; // can be a pbuffer
    bool window;  // can be an X11 window of this visual
    std::uintptr_t visual;

    int colorBits() const { return red + green + blue + alpha; }
};

/// An EGL display and its formats. On X11 there is one, without X there is one for each EGL device. The pixel
/// formats of all are numbered in one row, so that a number means one format.
struct Connection {
    EGLDisplay display;
    bool x11;
    int offset;                  // how many formats the connections before it have
    std::vector<Format> formats; // pixel format i is formats[i - offset - 1]
    std::string extensions;      // the names of the WGL extensions
    std::string adapter;         // for people
    std::string key;             // what is different for each adapter

    int first() const { return offset + 1; }
    int last() const { return offset + static_cast<int>(formats.size()); }
    bool has(int number) const { return number >= first() && number <= last(); }
    const Format& format(int number) const { return formats[static_cast<std::size_t>(number - first())]; }
};

/// A display device: a monitor, or an EGL device with a place of its own beside the others.
struct Device {
    std::string name;
    RECT area;
    bool primary;
    Connection* connection;
};

enum class Api { egl, glx };

/// A surface for a context of ours on somebody else's display (Guests.cpp).
struct GuestSurface {
    Api api;
    void* display;
    void* config;
    std::uintptr_t surface;
};

/// What can be drawn to: a window, a pbuffer, or the drawable of somebody else's context.
struct DeviceContext {
    Connection* connection = nullptr; // null: somebody else's
    HWND window = nullptr;            // null: not a window
    std::uintptr_t xid = 0;           // the X11 window
    std::uintptr_t visual = 0;        // and its visual
    int width = 0;
    int height = 0;
    int pixelFormat = 0; // 0: none set
    EGLSurface surface = EGL_NO_SURFACE;
    bool stale = false; // the surface has another size than the window
    int current = 0;    // on how many threads it is the current drawable
    bool gone = false;  // destroyed meanwhile: deleted when it is no longer current

    int swapInterval = 1;
    std::vector<GuestSurface> guests;

    // Somebody else's: EGL surfaces or GLX drawables.
    Api api = Api::egl;
    void* display = nullptr;
    std::uintptr_t draw = 0;
    std::uintptr_t read = 0;
    HGLRC owner = nullptr; // the context that it was seen with

    bool isForeign() const { return connection == nullptr; }
    bool isPbuffer() const { return connection && !window; }
};

struct WindowRecord {
    std::unique_ptr<DeviceContext> device;
    std::string className;
    int x = 0;
    int y = 0;
    bool visible = false;
    bool foreign = false; // an X11 window that somebody else made
};

struct RenderingContext {
    Connection* connection = nullptr; // null: somebody else's
    int pixelFormat = 0;
    std::vector<EGLint> attributes; // it was created with, EGL_NONE at the end
    void* native = nullptr;         // EGLContext or GLXContext; null: its display was closed
    bool used = false;              // was current or shares with another: can't be given a share any more
    std::thread::id currentOn{};    // the thread on which it is current

    Api api = Api::egl;
    void* display = nullptr; // EGLDisplay or Display, of the native one
    void* config = nullptr;  // of a context of ours on somebody else's display: EGLConfig or GLXFBConfig

    bool isForeign() const { return connection == nullptr; }
};

struct State {
    std::mutex lock;
    _XDisplay* server = nullptr; // null: no X11
    std::deque<Connection> connections;
    std::map<std::string, int, std::less<>> classes; // window classes, and how many windows each has
    std::map<HWND, std::unique_ptr<WindowRecord>> windows;
    int foreignWindows = 0; // how many of the windows somebody else made
    std::set<HDC> devices;  // of windows, pbuffers and foreign drawables
    std::set<HGLRC> contexts;
};

/// The state of the process; opens the displays on first use. Never destroyed: handles outlive static
/// objects.
State& state();

/// What a failing function returns: 0 in whatever type it has.
struct Failure {
    template <class T>
    operator T() const {
        return T();
    }
};
/// Leaves `error` for GetLastError().
Failure fail(DWORD error);
/// Leaves the number that fits EGL's last error.
Failure failOfEGL();

// Displays.cpp

/// Opens the EGL displays, and the X server when there is one.
void openDisplays(State& state);
/// The display devices as they are now.
std::vector<Device> displayDevices(State& state);
/// The device at (x, y) or the one nearest to it; null when there is none.
const Device* deviceAt(const std::vector<Device>& devices, int x, int y);

// Windows.cpp

/// The window of a handle; an X11 window of somebody else's is entered with the first call. Null, with the
/// error number, when there is none.
WindowRecord* windowOf(State& state, HWND handle);
/// Hears of the windows that somebody else destroyed meanwhile: they are no longer known then, and their
/// numbers may be given out again. Doesn't wait for the server.
void forgetDestroyedWindows(State& state);
/// Gives the drawable a surface of the window's size, unless it is current on another thread.
void refresh(DeviceContext& device);
/// Deletes a drawable of a window or pbuffer, or leaves it to the thread on which it is current.
void destroyDrawable(State& state, std::unique_ptr<DeviceContext> device);

// PixelFormats.cpp

Format readFormat(EGLDisplay display, EGLConfig config, bool doubleBuffered);
/// The same of a GLXFBConfig.
Format readFormat(_XDisplay* display, __GLXFBConfigRec* config);
/// The formats of an EGL display, each in both forms of buffering.
std::vector<Format> formatsOf(EGLDisplay display);
/// How many bits the format has beyond the wanted one; -1 when it can't stand for it. Samples show, so they
/// are the same, and other bits don't.
int excess(const Format& format, const Format& wanted);
/// Whether the drawable can be a window of this format.
bool drawsToWindow(const DeviceContext& device, const Format& format);
BOOL WINAPI choosePixelFormatARB(HDC device, const int* integers, const FLOAT* reals, UINT capacity,
                                 int* formats, UINT* count);
BOOL WINAPI getPixelFormatAttribivARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      int* values);
BOOL WINAPI getPixelFormatAttribfvARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      FLOAT* values);

// Contexts.cpp

/// A pair that is current on a thread.
struct Current {
    HDC device = nullptr;
    HDC read = nullptr;
    HGLRC context = nullptr;
};
/// What is current on the calling thread of the contexts that were made here, as far as it is known here.
const Current& ownCurrent();
/// It is no longer current. The caller holds the lock.
void forgetOwnCurrent();
HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC share, const int* attributes);
BOOL WINAPI makeContextCurrentARB(HDC draw, HDC read, HGLRC context);
HDC WINAPI getCurrentReadDCARB();

// Foreign.cpp

/// Whether a context of somebody else was ever seen: from then on nothing is known without asking.
bool foreignContextsSeen();
/// Asks EGL and GLX what is current on this thread, and makes handles for what somebody else made. Without
/// the lock.
Current askCurrent();
/// Makes the native context of either API current. The caller holds the lock.
bool makeNativeCurrent(const RenderingContext& context, std::uintptr_t draw, std::uintptr_t read);
/// Desktop GL is what the calling thread creates contexts of, for as long as this lives.
class DesktopGl {
public:
    DesktopGl() : before_(eglQueryAPI()) { eglBindAPI(EGL_OPENGL_API); }
    DesktopGl(const DesktopGl&) = delete;
    DesktopGl& operator=(const DesktopGl&) = delete;
    ~DesktopGl() { eglBindAPI(before_); }

private:
    EGLenum before_;
};

/// Whether the system says that this context is current on the calling thread.
bool isCurrentNatively(const RenderingContext& context);
/// Leaves the thread with no context of EGL or GLX, whoever made it.
bool releaseCurrent();
/// Leaves the thread with no context of GLX, which and EGL exclude each other.
void releaseGlx();
/// The one format of somebody else's drawable.
Format foreignFormat(const DeviceContext& device);
/// Of the drawable that is current on the thread.
bool setSwapInterval(int interval);
/// Swaps an EGL surface or a GLX drawable.
bool swapNative(Api api, void* display, std::uintptr_t surface);

// Guests.cpp

/// Makes the native context of `context` again, on the display of `host` and sharing with it. False, and
/// nothing is changed, when that display has no such format or refuses.
bool becomeGuest(RenderingContext& context, const RenderingContext& host);
/// The EGL surface or GLX drawable by which the context draws there; 0 when there is none.
std::uintptr_t surfaceFor(DeviceContext& device, const RenderingContext& context);
void destroyGuests(DeviceContext& device);
void destroyNative(const RenderingContext& context);

// Extensions.cpp

/// The names of the WGL extensions that work on this display.
std::string extensionNames(const Connection& connection);

} // namespace ZLT::Platform
