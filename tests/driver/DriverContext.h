#pragma once

#include <memory>
#include <string>

/// A context on the real driver with a drawable of 64 x 64 pixels and a depth buffer, current on the thread
/// that made it. Windows: a hidden window and WGL. Linux: an EGL pbuffer, on the X server of DISPLAY if there
/// is one.
class DriverContext {
public:
    static constexpr int size = 64;

    /// Null, with the reason in `why`, where this machine has no driver to test.
    static std::unique_ptr<DriverContext> open(std::string& why);
    virtual ~DriverContext() = default;
};
