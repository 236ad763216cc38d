#include "InternalWindow.h"

#include "zlt/core/Enforce.h"

#include <cstdint>
#include <cstdio>

namespace ZLT::OGL {

namespace {

constexpr DWORD windowStyle = WS_OVERLAPPEDWINDOW;
constexpr DWORD extendedStyle = WS_EX_APPWINDOW | WS_EX_WINDOWEDGE;

// Each window has its class, named by its address, so that windows made at once don't meet.
struct ClassName {
    explicit ClassName(const InternalWindow* window) {
        std::snprintf(text, sizeof(text), "OpenGL%p", static_cast<const void*>(window));
    }
    char text[32];
};

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    return DefWindowProcW(window, message, wParam, lParam);
}

} // namespace

InternalWindow::InternalWindow(short x, short y) : window_(nullptr) {
    const ClassName name(this);
    const HINSTANCE instance = GetModuleHandleA(nullptr);
    WNDCLASSEXA description = {};
    description.cbSize = sizeof(description);
    description.style = CS_CLASSDC;
    description.lpfnWndProc = windowProcedure;
    description.hInstance = instance;
    description.hCursor = LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW));
    description.lpszClassName = name.text;
    if (!RegisterClassExA(&description))
        ZLT_RAISE("Unable to register window class");

    RECT frame = {0, 0, 8, 8};
    AdjustWindowRectEx(&frame, windowStyle, FALSE, extendedStyle);
    window_ = CreateWindowExA(extendedStyle, name.text, nullptr,
                              windowStyle | WS_CLIPCHILDREN | WS_CLIPSIBLINGS, x, y, frame.right - frame.left,
                              frame.bottom - frame.top, nullptr, nullptr, instance, nullptr);
    if (!window_) {
        // The next window may stand at this address.
        UnregisterClassA(name.text, instance);
        ZLT_RAISE("Unable to create window");
    }
}

InternalWindow::~InternalWindow() noexcept(false) {
    const HDC hDC = GetDC(window_);
    ZLT_ASSERT(hDC != 0); // NOLINT(modernize-use-nullptr): the rule's text is known to clients
    if (!ReleaseDC(window_, hDC))
        ZLT_RAISE("Unable to release the device context");
    DestroyWindow(window_);
    if (!UnregisterClassA(ClassName(this).text, GetModuleHandleA(nullptr)))
        ZLT_RAISE("Unable to unregister window class");
}

} // namespace ZLT::OGL
