#pragma once

#include "platform/linux/apis/Api.h"
#include "platform/linux/records/Records.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ZLT::Platform {

/// A window's place on the desktop and its size, in pixels.
struct WindowShape {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

/// The display and the configuration for which a window is to get a surface.
struct SurfacePlace {
    const Api* api;
    void* display;
    void* config;
    void* nativeDisplay; // Connection::nativeDisplay of that display, where it is known
    int width;
    int height;
};

/// What windows and display devices are. One is chosen, once, when the process needs it first:
/// windowSystem(). Called without the lock of the records unless it says otherwise, from any thread. What
/// fails has left its error for GetLastError().
class WindowSystem {
public:
    WindowSystem() = default;
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;
    virtual ~WindowSystem() = default;

    /// The display devices as they are now; none, with the error, when there is none any more.
    virtual std::vector<Device> devices() = 0;

    /// A window of our own, hidden or not; null when it can't be made.
    /// @param connection  gets the connection on which it lives
    /// @param handle      gets its handle where the window system has one; stays null otherwise
    virtual std::shared_ptr<NativeWindow> create(const WindowShape& shape, const char* title, bool visible,
                                                 Connection*& connection, HWND& handle) = 0;
    /// A window that somebody else made, by its handle; null when there is none.
    virtual std::shared_ptr<NativeWindow> adopt(HWND handle, Connection*& connection);
    /// The same of a toolkit's surface, on the toolkit's display.
    virtual std::shared_ptr<NativeWindow> adoptSurface(void* display, void* surface, int width, int height,
                                                       Connection*& connection);

    /// Asks where the window is now, and of which size; nothing when it is gone.
    /// @param known  where it was put last
    virtual std::optional<WindowShape> geometry(const NativeWindow& window, const WindowShape& known) = 0;
    virtual bool move(NativeWindow& window, const WindowShape& shape) = 0;
    virtual void show(NativeWindow& window, bool visible) = 0;
    virtual void destroy(NativeWindow& window) = 0;
    /// Whether its surfaces have to be made again when its size changes.
    virtual bool resizesBySurface(const NativeWindow& window) const = 0;
    /// Whether somebody sees what is swapped.
    virtual bool isSeen(const NativeWindow& window) const = 0;

    /// Whether a window can be of this format of its connection. No call: may hold the lock.
    /// @param window  null: any window of our own
    virtual bool drawsTo(const NativeWindow* window, const Format& format) const = 0;
    /// A surface for the window; its handle is 0 when there can't be one.
    virtual Surface surfaceFor(const NativeWindow& window, const SurfacePlace& place) = 0;

    /// The windows of others that are known to be gone since the last time, without waiting for the server.
    virtual std::vector<HWND> takeDestroyed() { return {}; }
    /// Whether the connection to the server is known to be lost, without waiting for the server; leaves the
    /// error then. Mesa's software renderer loops for ever when it shows a picture on a connection that is.
    virtual bool isLost() { return false; }
    /// Sends what was drawn by requests.
    virtual void flush() {}
};

/// How a window system is tried: null, with a sentence in `note`, when it can't be used.
using OpenWindowSystem = std::unique_ptr<WindowSystem> (*)(std::string& note);
std::unique_ptr<WindowSystem> openX11(std::string& note);
std::unique_ptr<WindowSystem> openWayland(std::string& note);
std::unique_ptr<WindowSystem> openHeadless(std::string& note);

/// The one that was chosen; opens the displays with the first call.
WindowSystem& windowSystem();

} // namespace ZLT::Platform
