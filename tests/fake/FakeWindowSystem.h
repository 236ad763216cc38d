#pragma once

#include "platform/Platform.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// @file
/// A window system that keeps state: display devices, window classes, windows, pixel formats and contexts. It
/// is there as long as a FakeWindowSystem lives; without one, the functions of WGL are scripted like those of
/// GL.

/// What the driver of a display device says while a context on it is current.
struct FakeDriver {
    /// For `glGetString`, null without.
    std::optional<std::string> vendor = "Vendor", version = "3.0", extensions = "";
    /// Given one by one by `glGetStringi`.
    std::vector<std::string> indexedExtensions;
    /// What `wglGetExtensionsStringARB` returns; without, there is no such function. The functions of
    /// WGL_ARB_pixel_format, WGL_ARB_create_context and WGL_EXT_swap_control exist where they are named.
    std::optional<std::string> wglExtensions =
        "WGL_ARB_pixel_format WGL_ARB_create_context WGL_EXT_swap_control";
    /// For `glGetIntegerv`; what isn't here isn't written.
    std::map<unsigned int, int> integers;
    /// In the place of the scripted GL's own functions: null for one that is missing.
    std::map<std::string, PROC> functions;
};

/// A display device, with a monitor of 1000 x 1000 pixels if it is attached to the desktop.
struct FakeDevice {
    std::string name = "first";
    DWORD flags = DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | DISPLAY_DEVICE_PRIMARY_DEVICE;
    LONG x = 0, y = 0;
    FakeDriver driver{};
    std::string monitor{}; // its name there, when it is another one
};

/// One at a time. Threads may use the functions at once; what is public here is for one of them.
class FakeWindowSystem {
public:
    /// With one device, and without calls, failures and handles. FakeGL begins anew as well.
    FakeWindowSystem();
    ~FakeWindowSystem();
    FakeWindowSystem(const FakeWindowSystem&) = delete;
    FakeWindowSystem& operator=(const FakeWindowSystem&) = delete;

    std::vector<FakeDevice> devices;
    /// The calls since the last time, with their arguments: "wglMakeCurrent(d1, c1)". Windows, device
    /// contexts, contexts and classes are w, d, c and k with a number, in the order in which they are seen;
    /// numbers behind that are decimal for positions and sizes, and else hexadecimal. The calls that only ask
    /// for what is current, and `wglGetProcAddress` for GL, are left out.
    std::vector<std::string> takeCalls();

    /// From now on, the n-th call of the function fails, with this error number.
    void fail(const std::string& function, int nth = 1, DWORD error = 77);
    /// From now on, the n-th of all calls that are noted fails, with error number 77.
    void failCall(int nth);
    /// Forgets what was to fail.
    void failNothing();

    /// A window of the client's, and a context of the client's on its window. The calls are not noted.
    HWND makeWindow(int x = 10, int y = 10);
    HGLRC makeContext(HWND window);

    /// How many windows, window classes and contexts there are.
    std::size_t windows() const, classes() const, contexts() const;

    struct State;

private:
    std::unique_ptr<State> state_;
};
