#include "DriverContext.h"

#include <windows.h>

namespace {

class HiddenWindow : public DriverContext {
public:
    ~HiddenWindow() override {
        wglMakeCurrent(nullptr, nullptr);
        wglDeleteContext(context_);
        ReleaseDC(window_, device_);
        DestroyWindow(window_);
    }

    // The step that failed, or null.
    const char* open() {
        window_ = CreateWindowA("STATIC", "driver test", WS_POPUP, 0, 0, size, size, nullptr, nullptr,
                                nullptr, nullptr);
        if (!window_)
            return "CreateWindow";
        device_ = GetDC(window_);
        PIXELFORMATDESCRIPTOR format = {};
        format.nSize = sizeof(format);
        format.nVersion = 1;
        format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL;
        format.iPixelType = PFD_TYPE_RGBA;
        format.cColorBits = 24;
        format.cDepthBits = 24;
        const int index = ChoosePixelFormat(device_, &format);
        if (!index || !SetPixelFormat(device_, index, &format))
            return "SetPixelFormat";
        context_ = wglCreateContext(device_);
        if (!context_ || !wglMakeCurrent(device_, context_))
            return "wglMakeCurrent";
        return nullptr;
    }

private:
    HWND window_ = nullptr;
    HDC device_ = nullptr;
    HGLRC context_ = nullptr;
};

} // namespace

std::unique_ptr<DriverContext> DriverContext::open(std::string& why) {
    auto context = std::make_unique<HiddenWindow>();
    if (const char* step = context->open()) {
        why = std::string(step) + " failed, error " + std::to_string(GetLastError());
        return nullptr;
    }
    return context;
}
