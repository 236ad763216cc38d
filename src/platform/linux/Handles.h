#pragma once

#include "platform/Platform.h"

#include <EGL/egl.h>

#include <mutex>
#include <set>
#include <thread>
#include <vector>

/// @file
/// What the handles stand for, and which of them are live. Everything here is guarded by State::lock.

namespace ZLT::Platform {

struct DeviceContext {
    HWND window;
};

struct Window {
    int width;
    int height;
    int pixelFormat = 0; // 0: none set
    EGLSurface surface = EGL_NO_SURFACE;
    DeviceContext device{this};
    int current = 0;   // on how many threads it is the current drawable
    bool gone = false; // destroyed meanwhile: deleted when it is no longer current
};

struct RenderingContext {
    int pixelFormat;
    EGLContext native;
    bool used = false;           // was current or shares with another: can't be given a share any more
    std::thread::id currentOn{}; // the thread on which it is current
};

struct State {
    std::mutex lock;
    EGLDisplay display = EGL_NO_DISPLAY;
    std::vector<EGLConfig> configs; // pixel format i is configs[i - 1]
    std::set<HWND> windows;
    std::set<HGLRC> contexts;

    EGLConfig config(int pixelFormat) const { return configs[static_cast<std::size_t>(pixelFormat - 1)]; }
};

/// The state of the process; opens the display on first use. Never destroyed: handles outlive static objects.
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

/// The window of a live device context, or null.
HWND windowOf(const State& state, HDC device);

} // namespace ZLT::Platform
