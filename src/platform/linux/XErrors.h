#pragma once

#include <X11/Xlib.h>

namespace ZLT::Platform {

/// While it lives, the errors of one connection are kept from the program's handler, which by default ends
/// the process. May be nested. The caller holds the lock of the state.
class XErrors {
public:
    /// Whose the errors of earlier requests are: our own connection carries the GL driver's requests, which
    /// it makes for windows that may be gone, and somebody else's carries theirs.
    enum class Before {
        drivers,
        theirs,
        nothing, // and the server is not waited for, neither before nor after
    };

    explicit XErrors(Display* server, Before before = Before::drivers);
    XErrors(const XErrors&) = delete;
    XErrors& operator=(const XErrors&) = delete;
    ~XErrors();

    /// Waits until the server has seen all requests, and tells whether it refused one.
    bool any();

private:
    static int handle(Display* server, XErrorEvent* error);

    Display* server_;
    bool waits_;
    bool refused_ = false;
    XErrors* outer_;
};

} // namespace ZLT::Platform
