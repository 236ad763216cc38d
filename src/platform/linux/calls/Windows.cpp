// Window classes, windows and their device contexts.

#include "platform/linux/adoption/Adoption.h"
#include "platform/linux/calls/Calls.h"
#include "platform/linux/windows/Surfaces.h"

#include "platform/Wayland.h"

#include <utility>

namespace ZLT::Platform {

namespace {

WindowShape shapeOf(const Drawable& window) {
    const std::lock_guard guard(records().lock);
    return {window.x, window.y, window.width, window.height};
}

// Reads the size; false when the window is gone.
bool readGeometry(Drawable& window) {
    const auto now = windowSystem().geometry(*window.native, shapeOf(window));
    if (!now)
        return false;
    const std::lock_guard guard(records().lock);
    window.width = now->width;
    window.height = now->height;
    return true;
}

// Another thread may have been faster; then false.
bool forgetWindow(Drawable& window) {
    if (!removeDrawable(window))
        return false;
    Records& all = records();
    const std::lock_guard guard(all.lock);
    all.windows.erase(window.window);
    if (!window.toolkits)
        --all.classes[window.className];
    return true;
}

// What both a window of our own and one of somebody else's start with.
std::shared_ptr<Drawable> newWindow(std::shared_ptr<NativeWindow> native, Connection* connection,
                                    HWND handle) {
    auto window = std::make_shared<Drawable>();
    window->native = std::move(native);
    window->connection = connection;
    Records& all = records();
    const std::lock_guard guard(all.lock);
    window->window = handle ? handle : all.newHandle<HWND>();
    return window;
}

std::shared_ptr<Drawable> adoptedWindow(HWND handle) {
    Connection* connection = nullptr;
    std::shared_ptr<NativeWindow> native = windowSystem().adopt(handle, connection);
    if (!native)
        return nullptr;
    const std::shared_ptr<Drawable> window = newWindow(std::move(native), connection, handle);
    window->toolkits = true;
    if (!readGeometry(*window))
        return nullptr;
    enterDrawable(window);
    Records& all = records();
    const std::lock_guard guard(all.lock);
    return find(all.windows, handle);
}

} // namespace

void forgetDestroyedWindows() {
    for (const HWND handle : windowSystem().takeDestroyed()) {
        Records& all = records();
        std::unique_lock guard(all.lock);
        const std::shared_ptr<Drawable> window = find(all.windows, handle);
        guard.unlock();
        if (window)
            forgetWindow(*window);
    }
}

std::shared_ptr<Drawable> windowOf(HWND handle) {
    Records& all = opened();
    forgetDestroyedWindows();
    std::unique_lock guard(all.lock);
    std::shared_ptr<Drawable> window = find(all.windows, handle);
    guard.unlock();
    if (!window)
        return adoptedWindow(handle);
    // A window of our own goes by DestroyWindow.
    if (!window->toolkits || readGeometry(*window))
        return window;
    forgetWindow(*window);
    return fail(ERROR_INVALID_WINDOW_HANDLE);
}

void enterDrawable(const std::shared_ptr<Drawable>& drawable) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    if (drawable->window && !all.windows.emplace(drawable->window, drawable).second)
        return; // another thread has entered it
    drawable->handle = all.newHandle<HDC>();
    all.drawables[drawable->handle] = drawable;
}

bool removeDrawable(Drawable& drawable) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    // The caller keeps the record, and a thread on which it is current too.
    if (all.drawables.erase(drawable.handle) == 0)
        return fail(ERROR_INVALID_HANDLE);
    const std::vector<Surface> surfaces = takeSurfaces(drawable);
    guard.unlock();
    destroySurfaces(surfaces);
    return true;
}

void refresh(Drawable& drawable) {
    Records& all = records();
    std::vector<Surface> old;
    {
        const std::lock_guard guard(all.lock);
        const int currentHere =
            (here.device == drawable.handle ? 1 : 0) + (here.read == drawable.handle ? 1 : 0);
        if (!drawable.stale || drawable.current > currentHere || !all.drawables.contains(drawable.handle))
            return;
        drawable.stale = false;
        old = takeSurfaces(drawable);
    }
    const Pins* current = pinned();
    if (current && (current->draw.get() == &drawable || current->read.get() == &drawable)) {
        const ContextRecord& context = *current->context;
        const auto draw = surfaceFor(*current->draw, *context.api, context.display, context.config);
        const auto read = surfaceFor(*current->read, *context.api, context.display, context.config);
        if (draw && read)
            makeNativeCurrent({context.api, context.display, context.native, *draw, *read});
    }
    destroySurfaces(old);
    std::vector<std::shared_ptr<void>> beneath;
    const std::lock_guard guard(all.lock);
    beneath.swap(drawable.beneathOld);
}

ATOM RegisterClassExA(const WNDCLASSEXA* description) {
    if (!description || description->cbSize != sizeof(*description) || !description->lpszClassName)
        return fail(ERROR_INVALID_PARAMETER);
    Records& all = records();
    const std::lock_guard guard(all.lock);
    if (!all.classes.emplace(description->lpszClassName, 0).second)
        return fail(ERROR_CLASS_ALREADY_EXISTS);
    return 1;
}

BOOL UnregisterClassA(LPCSTR className, HINSTANCE) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    const auto found = className ? all.classes.find(className) : all.classes.end();
    if (found == all.classes.end())
        return fail(ERROR_CLASS_DOES_NOT_EXIST);
    if (found->second > 0)
        return fail(ERROR_CLASS_HAS_WINDOWS);
    all.classes.erase(found);
    return 1;
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
    return rectangle ? 1 : fail(ERROR_INVALID_PARAMETER);
}

HWND CreateWindowExA(DWORD, LPCSTR className, LPCSTR name, DWORD style, int x, int y, int width, int height,
                     HWND parent, HMENU menu, HINSTANCE, LPVOID) {
    if (width < 1 || height < 1 || parent || menu || !className)
        return fail(ERROR_INVALID_PARAMETER);
    Records& all = opened();
    {
        // Counted before it is there, so that the class stays.
        const std::lock_guard guard(all.lock);
        const auto found = all.classes.find(className);
        if (found == all.classes.end())
            return fail(ERROR_CANNOT_FIND_WND_CLASS);
        ++found->second;
    }
    const bool visible = (style & WS_VISIBLE) != 0;
    Connection* connection = nullptr;
    HWND handle = nullptr;
    std::shared_ptr<NativeWindow> native =
        windowSystem().create({x, y, width, height}, name, visible, connection, handle);
    if (!native) {
        const std::lock_guard guard(all.lock);
        --all.classes[className];
        return nullptr;
    }
    const std::shared_ptr<Drawable> window = newWindow(std::move(native), connection, handle);
    window->className = className;
    window->x = x;
    window->y = y;
    window->width = width;
    window->height = height;
    window->visible = visible;
    enterDrawable(window);
    return window->window;
}

HWND windowFromWayland(wl_display* display, wl_surface* surface, int width, int height) {
    if (!display || !surface || width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    Records& all = opened();
    HWND known = nullptr;
    {
        const std::lock_guard guard(all.lock);
        for (const auto& [handle, window] : all.windows)
            if (window->surface == surface && window->connection->nativeDisplay == display)
                known = handle;
    }
    if (known)
        return MoveWindow(known, 0, 0, width, height, 0) ? known : nullptr;
    Connection* connection = nullptr;
    std::shared_ptr<NativeWindow> native =
        windowSystem().adoptSurface(display, surface, width, height, connection);
    if (!native)
        return nullptr;
    const std::shared_ptr<Drawable> window = newWindow(std::move(native), connection, nullptr);
    window->className = "STATIC";
    window->surface = surface;
    window->width = width;
    window->height = height;
    window->visible = true;
    enterDrawable(window);
    const std::lock_guard guard(all.lock);
    ++all.classes[window->className];
    return window->window;
}

BOOL DestroyWindow(HWND handle) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    if (!window)
        return 0;
    if (window->toolkits)
        return fail(ERROR_INVALID_WINDOW_HANDLE, "The window is somebody else's.");
    if (!forgetWindow(*window))
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    windowSystem().destroy(*window->native);
    return 1;
}

BOOL MoveWindow(HWND handle, int x, int y, int width, int height, BOOL) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    if (!window)
        return 0;
    if (width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    if (!windowSystem().move(*window->native, {x, y, width, height}))
        return 0;
    {
        const std::lock_guard guard(records().lock);
        window->x = x;
        window->y = y;
        const bool resized = window->width != width || window->height != height;
        window->width = width;
        window->height = height;
        if (!resized || window->surfaces.empty() || !windowSystem().resizesBySurface(*window->native))
            return 1;
        window->stale = true;
    }
    refresh(*window);
    return 1;
}

BOOL ShowWindow(HWND handle, int command) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    if (!window)
        return 0;
    const bool visible = command != SW_HIDE;
    windowSystem().show(*window->native, visible);
    const std::lock_guard guard(records().lock);
    return std::exchange(window->visible, visible) ? 1 : 0;
}

BOOL GetClientRect(HWND handle, RECT* rectangle) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    if (!window)
        return 0;
    if (!rectangle)
        return fail(ERROR_INVALID_PARAMETER);
    // One of our own may have been resized by a window manager.
    if (!window->toolkits && !readGeometry(*window))
        return 0;
    const std::lock_guard guard(records().lock);
    *rectangle = {0, 0, window->width, window->height};
    return 1;
}

HDC GetDC(HWND handle) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    return window ? window->handle : nullptr;
}

int ReleaseDC(HWND handle, HDC device) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> window = find(all.windows, handle);
    if (!window || window->handle != device)
        return fail(ERROR_INVALID_HANDLE);
    return 1;
}

HWND WindowFromDC(HDC device) {
    Records& all = records();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    return drawable ? drawable->window : nullptr;
}

} // namespace ZLT::Platform
