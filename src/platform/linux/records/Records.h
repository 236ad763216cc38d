#pragma once

#include "platform/Platform.h"

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
/// Which handles are live and what they stand for. Data alone: no call of EGL, GLX or a window system.
///
/// One lock guards all of it, for the time of a look-up or a change: never across a call of a driver or a
/// window system, which may wait, call back or end the process. Who works with a record beyond that keeps a
/// shared pointer to it. Handles are numbers and are not used again.

namespace ZLT::Platform {

class Api;
struct Connection;

/// An EGL configuration in one of its two forms of buffering; or a format of somebody else's display.
struct Format {
    const Connection* connection = nullptr; // null: of somebody else's display
    void* config = nullptr;                 // EGLConfig; null: gone when the display was opened again
    int id = 0;                             // EGL's number, which stays when the display is opened again
    bool doubleBuffered = false;
    int red = 0, green = 0, blue = 0, alpha = 0, depth = 0, stencil = 0, samples = 0;
    bool floatingPoint = false;
    bool slow = false;
    bool pbuffer = false; // can be a pbuffer
    bool window = false;  // can be a window of this visual
    std::uintptr_t visual = 0;
    int minSwapInterval = 1, maxSwapInterval = 1;
    int maxPbufferWidth = 0, maxPbufferHeight = 0, maxPbufferPixels = 0;

    int colorBits() const { return red + green + blue + alpha; }
};

/// How many bits the format has beyond the wanted one; -1 when it can't stand for it. Samples show, so they
/// are the same, and other bits don't.
int excess(const Format& format, const Format& wanted);
/// Whether what can be drawn to in the wanted format, windows or pbuffers, can be in this one too.
bool servesFor(const Format& format, const Format& wanted);

/// An EGL display and its formats. The pixel formats of all are numbered in one row, so that a number means
/// one format.
struct Connection {
    void* display = nullptr;       // EGLDisplay
    void* nativeDisplay = nullptr; // on which it was opened, where windows need to know: wl_display
    bool toolkits = false;         // somebody else's to open and close
    bool shows = false;            // its windows are seen, and a swap may wait for the retrace
    int offset = 0;                // how many formats the connections before it have
    std::vector<Format> formats;   // pixel format i is formats[i - offset - 1]
    std::string extensions;        // the names of the WGL extensions, once somebody asked
    bool createsByVersion = false; // EGL 1.5
    std::string adapter;           // for people
    std::string key;               // what is different for each adapter
    unsigned generation = 0;       // how often it was opened again after somebody terminated it

    int first() const { return offset + 1; }
    int last() const { return offset + static_cast<int>(formats.size()); }
    bool has(int number) const { return number >= first() && number <= last(); }
    const Format& format(int number) const { return formats[static_cast<std::size_t>(number - first())]; }
};

/// A display device: a monitor, an output, or an EGL device.
struct Device {
    std::string name;
    RECT area = {};
    bool primary = false;
    const Connection* connection = nullptr;
    int bitsPerPixel = 32;
};

/// By what a drawable is drawn to on one display: an EGL surface, or a drawable of GLX.
struct Surface {
    const Api* api = nullptr;
    void* display = nullptr;
    void* config = nullptr;
    unsigned generation = 0; // of the drawable's connection
    bool window = false;     // not a pbuffer
    bool none = false;       // there can't be one, and the context draws without
    std::uintptr_t handle = 0;
    std::shared_ptr<void> beneath{}; // on what it was made, and which it needs: a wl_egl_window
};

/// What a window system knows of its window.
struct NativeWindow {
    NativeWindow() = default;
    NativeWindow(const NativeWindow&) = delete;
    NativeWindow& operator=(const NativeWindow&) = delete;
    virtual ~NativeWindow() = default;
};

struct ContextRecord;

/// What can be drawn to: a window, a pbuffer, or the drawable of somebody else's context.
struct Drawable {
    HDC handle = nullptr;
    Connection* connection = nullptr; // null: somebody else's
    int width = 0;
    int height = 0;
    int pixelFormat = 0; // 0: none set
    int swapInterval = 1;
    std::vector<Surface> surfaces;
    std::vector<std::shared_ptr<void>> beneathOld; // of surfaces that are gone, but may still be current
    bool stale = false;                            // the surfaces have another size than the window
    int current = 0;                               // on how many threads it is the current drawable

    // A window.
    HWND window = nullptr;
    std::shared_ptr<NativeWindow> native;
    std::string className;
    int x = 0;
    int y = 0;
    bool visible = false;
    bool toolkits = false;   // somebody else made it
    void* surface = nullptr; // of a toolkit: a wl_surface

    // Somebody else's: EGL surfaces or GLX drawables.
    const Api* api = nullptr;
    void* display = nullptr;
    std::uintptr_t draw = 0;
    std::uintptr_t read = 0;
    std::shared_ptr<ContextRecord> owner; // the context that it was seen with last

    bool isForeign() const { return connection == nullptr; }
    bool isPbuffer() const { return connection && !window; }
};

struct ContextRecord {
    HGLRC handle = nullptr;
    Connection* connection = nullptr; // null: somebody else's
    int pixelFormat = 0;
    std::vector<int> attributes; // it was created with, in EGL's terms, EGL_NONE at the end
    const Api* api = nullptr;
    void* display = nullptr;     // EGLDisplay or Display
    void* config = nullptr;      // EGLConfig or GLXFBConfig; null: somebody else's
    void* native = nullptr;      // EGLContext or GLXContext; null: it is gone
    unsigned generation = 0;     // of the connection, when it was made
    bool used = false;           // was current or shares with another: can't be given a share any more
    std::thread::id currentOn{}; // the thread on which it is current, or which is at work on it

    bool isForeign() const { return connection == nullptr; }
    /// Its display was closed or terminated, and perhaps opened again without it.
    bool isLost() const {
        return !native ||
               (connection && display == connection->display && generation != connection->generation);
    }
};

struct Records {
    std::mutex lock;
    std::deque<Connection> connections; // never shrinks
    std::vector<Device> devices;        // as they were when the list was asked for last
    std::map<std::string, int, std::less<>> classes{{"STATIC", 0}}; // and how many windows each has
    std::map<HWND, std::shared_ptr<Drawable>> windows;
    std::map<HDC, std::shared_ptr<Drawable>> drawables;
    std::map<HGLRC, std::shared_ptr<ContextRecord>> contexts;
    std::set<void*> watchedDisplays; // of GLX: open, and their end will be heard of
    std::string notes;               // what went wrong when the displays were opened

    /// A value that no handle had before.
    template <class Handle>
    Handle newHandle() {
        return reinterpret_cast<Handle>(++lastHandle); // NOLINT(performance-no-int-to-ptr)
    }
    std::uintptr_t lastHandle = 0xFFFF;
};

/// Those of the process. Never destroyed: handles outlive static objects.
Records& records();

/// The record of a handle, or null. The caller holds the lock.
template <class Map, class Handle>
typename Map::mapped_type find(const Map& map, Handle handle) {
    const auto found = map.find(handle);
    return found == map.end() ? nullptr : found->second;
}

} // namespace ZLT::Platform
