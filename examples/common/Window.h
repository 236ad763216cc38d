#pragma once

#include "platform/Platform.h"

/// A window with a pixel format for OpenGL: 8 bits for each colour, 24 for depth. No context is made.
class Window {
public:
    /// @throws std::runtime_error that says which step failed, with the system's error number
    Window(int width, int height);
    ~Window();
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    HDC device() const { return device_; }

private:
    HWND window_;
    HDC device_;
};
