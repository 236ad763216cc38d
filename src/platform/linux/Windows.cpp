// Window classes, windows and their device contexts.

#include "platform/linux/Handles.h"
#include "platform/linux/XErrors.h"

#include <X11/Xutil.h>

using namespace ZLT::Platform;

namespace {

HWND handleOf(std::uintptr_t value) {
    return reinterpret_cast<HWND>(value); // NOLINT(performance-no-int-to-ptr)
}

std::uintptr_t valueOf(HWND handle) { return reinterpret_cast<std::uintptr_t>(handle); }

std::unique_ptr<::Window> makeXWindow(State& state, int x, int y, int width, int height, LPCSTR name,
                                      bool visible) {
    Display* server = state.server;
    XErrors errors(server);
    XSetWindowAttributes attributes = {};
    attributes.background_pixmap = 0; // what GL drew is not painted over
    attributes.border_pixel = 0;
    const ::Window window = XCreateWindow(
        server, DefaultRootWindow(server), x, y, static_cast<unsigned>(width), static_cast<unsigned>(height),
        0, CopyFromParent, InputOutput, CopyFromParent, CWBackPixmap | CWBorderPixel, &attributes);
    // At this place and of this size, whatever the window manager prefers.
    XSizeHints hints = {};
    hints.flags = USPosition | USSize;
    XSetWMNormalHints(server, window, &hints);
    // A window that the user closes stays; without this its whole connection would go.
    Atom closing = XInternAtom(server, "WM_DELETE_WINDOW", False);
    XSetWMProtocols(server, window, &closing, 1);
    if (name)
        XStoreName(server, window, name);
    if (visible)
        XMapWindow(server, window);
    if (!errors.any())
        return std::make_unique<::Window>(window);
    XDestroyWindow(server, window);
    return nullptr;
}

// Reads size and visual; false when the window is gone.
bool readGeometry(State& state, DeviceContext& device) {
    XErrors errors(state.server);
    XWindowAttributes attributes = {};
    const bool found = XGetWindowAttributes(state.server, device.xid, &attributes) != 0;
    if (!found || errors.any() || attributes.c_class != InputOutput)
        return false;
    device.width = attributes.width;
    device.height = attributes.height;
    device.visual = XVisualIDFromVisual(attributes.visual);
    return true;
}

void forgetWindow(State& state, HWND handle) {
    const auto found = state.windows.find(handle);
    std::unique_ptr<WindowRecord> window = std::move(found->second);
    state.windows.erase(found);
    if (window->foreign)
        --state.foreignWindows;
    else
        --state.classes[window->className];
    destroyDrawable(state, std::move(window->device));
}

} // namespace

namespace ZLT::Platform {

void forgetDestroyedWindows(State& state) {
    if (state.foreignWindows == 0)
        return;
    std::vector<HWND> destroyed;
    {
        const XErrors errors(state.server, XErrors::Before::nothing);
        while (XEventsQueued(state.server, QueuedAfterReading) > 0) {
            XEvent event;
            XNextEvent(state.server, &event);
            if (event.type == DestroyNotify)
                destroyed.push_back(handleOf(event.xdestroywindow.window));
        }
    }
    for (const HWND window : destroyed)
        if (state.windows.contains(window))
            forgetWindow(state, window);
}

WindowRecord* windowOf(State& state, HWND handle) {
    forgetDestroyedWindows(state);
    const auto found = state.windows.find(handle);
    if (found != state.windows.end()) {
        DeviceContext& device = *found->second->device;
        if (!device.xid || readGeometry(state, device))
            return found->second.get();
        forgetWindow(state, handle);
    } else if (state.server && handle) {
        auto window = std::make_unique<WindowRecord>();
        window->foreign = true;
        window->device = std::make_unique<DeviceContext>();
        window->device->connection = &state.connections.front();
        window->device->window = handle;
        window->device->xid = valueOf(handle);
        if (readGeometry(state, *window->device)) {
            XErrors errors(state.server);
            XSelectInput(state.server, window->device->xid, StructureNotifyMask);
            state.devices.insert(window->device.get());
            ++state.foreignWindows;
            return (state.windows[handle] = std::move(window)).get();
        }
    }
    fail(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

void destroyDrawable(State& state, std::unique_ptr<DeviceContext> device) {
    state.devices.erase(device.get());
    // EGL keeps a surface that is current until it no longer is.
    if (device->surface != EGL_NO_SURFACE)
        eglDestroySurface(device->connection->display, device->surface);
    device->surface = EGL_NO_SURFACE;
    destroyGuests(*device);
    if (device->current > 0) {
        // Its address is not given out again while a thread has it current.
        device->gone = true;
        static_cast<void>(device.release());
    }
}

void refresh(DeviceContext& device) {
    const Current& here = ownCurrent();
    const int currentHere = (here.device == &device ? 1 : 0) + (here.read == &device ? 1 : 0);
    if (!device.stale || device.current > currentHere)
        return;
    const EGLDisplay display = device.connection->display;
    const EGLint size[] = {EGL_WIDTH, device.width, EGL_HEIGHT, device.height, EGL_NONE};
    const EGLSurface surface =
        eglCreatePbufferSurface(display, device.connection->format(device.pixelFormat).config, size);
    if (surface == EGL_NO_SURFACE)
        return;
    const EGLSurface old = device.surface;
    const std::vector<GuestSurface> oldGuests = std::move(device.guests);
    device.surface = surface;
    device.guests.clear();
    device.stale = false;
    if (currentHere > 0) {
        const std::uintptr_t draw = surfaceFor(*here.device, *here.context);
        const std::uintptr_t read = surfaceFor(*here.read, *here.context);
        if (draw && read)
            makeNativeCurrent(*here.context, draw, read);
    }
    eglDestroySurface(display, old);
    DeviceContext gone;
    gone.guests = oldGuests;
    destroyGuests(gone);
}

} // namespace ZLT::Platform

ATOM RegisterClassExA(const WNDCLASSEXA* description) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!description || description->cbSize != sizeof(*description) || !description->lpszClassName)
        return fail(ERROR_INVALID_PARAMETER);
    if (!state.classes.emplace(description->lpszClassName, 0).second)
        return fail(ERROR_CLASS_ALREADY_EXISTS);
    return 1;
}

BOOL UnregisterClassA(LPCSTR className, HINSTANCE) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const auto found = className ? state.classes.find(className) : state.classes.end();
    if (found == state.classes.end())
        return fail(ERROR_CLASS_DOES_NOT_EXIST);
    if (found->second > 0)
        return fail(ERROR_CLASS_HAS_WINDOWS);
    state.classes.erase(found);
    return TRUE;
}

// No message ever arrives.
LRESULT DefWindowProcW(HWND, UINT, WPARAM, LPARAM) { return 0; }
HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name) {
    static char arrow;
    return !instance && name == IDC_ARROW ? reinterpret_cast<HCURSOR>(&arrow)
                                          : fail(ERROR_RESOURCE_NAME_NOT_FOUND);
}
HMODULE GetModuleHandleA(LPCSTR module) {
    static char program;
    return module ? fail(ERROR_MOD_NOT_FOUND) : reinterpret_cast<HMODULE>(&program);
}
BOOL AdjustWindowRectEx(RECT* rectangle, DWORD, BOOL, DWORD) {
    return rectangle ? TRUE : fail(ERROR_INVALID_PARAMETER);
}

HWND CreateWindowExA(DWORD, LPCSTR className, LPCSTR name, DWORD style, int x, int y, int width, int height,
                     HWND parent, HMENU menu, HINSTANCE, LPVOID) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (width < 1 || height < 1 || parent || menu || !className)
        return fail(ERROR_INVALID_PARAMETER);
    const auto found = state.classes.find(className);
    if (found == state.classes.end())
        return fail(ERROR_CANNOT_FIND_WND_CLASS);
    const std::vector<Device> devices = displayDevices(state);
    const Device* place = deviceAt(devices, x, y);
    if (!place)
        return fail(ERROR_GEN_FAILURE);

    auto window = std::make_unique<WindowRecord>();
    window->className = className;
    window->x = x;
    window->y = y;
    window->visible = (style & WS_VISIBLE) != 0;
    window->device = std::make_unique<DeviceContext>();
    DeviceContext& device = *window->device;
    device.connection = place->connection;
    device.width = width;
    device.height = height;
    device.window = reinterpret_cast<HWND>(window.get());
    if (state.server) {
        const auto xid = makeXWindow(state, x, y, width, height, name, window->visible);
        if (!xid)
            return fail(ERROR_GEN_FAILURE);
        device.xid = *xid;
        device.window = handleOf(*xid);
        readGeometry(state, device);
    }
    ++found->second;
    const HWND handle = device.window;
    state.devices.insert(&device);
    state.windows[handle] = std::move(window);
    return handle;
}

BOOL DestroyWindow(HWND handle) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const WindowRecord* window = windowOf(state, handle);
    if (!window)
        return FALSE;
    if (window->foreign)
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    const ::Window xid = window->device->xid;
    forgetWindow(state, handle);
    if (xid) {
        XErrors errors(state.server);
        XDestroyWindow(state.server, xid);
    }
    return TRUE;
}

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    WindowRecord* window = windowOf(state, handle);
    if (!window)
        return FALSE;
    if (width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    window->x = x;
    window->y = y;
    DeviceContext& device = *window->device;
    const bool resized = device.width != width || device.height != height;
    device.width = width;
    device.height = height;
    if (device.xid) {
        XErrors errors(state.server);
        XMoveResizeWindow(state.server, device.xid, x, y, static_cast<unsigned>(width),
                          static_cast<unsigned>(height));
        return errors.any() ? fail(ERROR_INVALID_WINDOW_HANDLE) : TRUE;
    }
    if (resized && device.surface != EGL_NO_SURFACE) {
        device.stale = true;
        refresh(device);
    }
    return TRUE;
}

BOOL ShowWindow(HWND handle, int command) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    WindowRecord* window = windowOf(state, handle);
    if (!window)
        return FALSE;
    const bool before = window->visible;
    window->visible = command != SW_HIDE;
    if (window->device->xid) {
        XErrors errors(state.server);
        if (window->visible)
            XMapWindow(state.server, window->device->xid);
        else
            XUnmapWindow(state.server, window->device->xid);
    }
    return before;
}

BOOL GetClientRect(HWND handle, RECT* rectangle) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const WindowRecord* window = windowOf(state, handle);
    if (!window)
        return FALSE;
    if (!rectangle)
        return fail(ERROR_INVALID_PARAMETER);
    *rectangle = {0, 0, window->device->width, window->device->height};
    return TRUE;
}

HDC GetDC(HWND handle) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    WindowRecord* window = windowOf(state, handle);
    return window ? window->device.get() : nullptr;
}

int ReleaseDC(HWND handle, HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const auto found = state.windows.find(handle);
    if (found == state.windows.end() || found->second->device.get() != device)
        return fail(ERROR_INVALID_HANDLE);
    return 1;
}
