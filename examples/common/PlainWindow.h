#pragma once

#include "platform/Platform.h"

/// A window that is not shown, for as long as the object lives. Failures are std::runtime_error, with the
/// step and the system's error number.
class PlainWindow {
public:
    /// In pixels.
    PlainWindow(int width, int height);
    ~PlainWindow();
    PlainWindow(const PlainWindow&) = delete;
    PlainWindow& operator=(const PlainWindow&) = delete;

    HWND handle() const { return window_; }
    HDC device() const { return device_; }

    /// Gives it a pixel format for a context that is not made by the library: 8 bits for each colour, 24 for
    /// depth, double buffered.
    void setPixelFormat();

private:
    HWND window_;
    HDC device_;
};
