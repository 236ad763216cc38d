#pragma once

#include <X11/Xlib.h>

namespace ZLT::Platform {

/// While it lives, the errors of one connection are kept from the program's handler, which by default ends
/// the process.
class XErrors {
public:
    /// Whose the errors of earlier requests are: our own connection carries the GL driver's requests, which
    /// it makes for windows that may be gone, and somebody else's carries theirs.
    enum class Before { drivers, theirs };

    explicit XErrors(Display* server, Before before = Before::drivers);
    XErrors(const XErrors&) = delete;
    XErrors& operator=(const XErrors&) = delete;
    ~XErrors();

    /// Waits until the server has seen all requests, and tells whether it refused one.
    bool any();

private:
    Display* server_;
    XErrorHandler before_;
};

} // namespace ZLT::Platform
