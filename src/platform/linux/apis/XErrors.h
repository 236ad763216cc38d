#pragma once

#include <memory>

// NOLINTNEXTLINE(bugprone-reserved-identifier)
struct _XDisplay; // Xlib's Display

namespace ZLT::Platform {

/// While it lives, the errors of the requests that are made on one connection do not reach the program's
/// handler, which by default ends the process. That handler stays where it is: the errors are taken out
/// before Xlib would call it, as Xlib does for its own requests. The display must be open. May be nested.
class XErrors {
public:
    explicit XErrors(_XDisplay* display);
    XErrors(const XErrors&) = delete;
    XErrors& operator=(const XErrors&) = delete;
    /// Waits until the server has seen all requests.
    ~XErrors();

    /// Waits until the server has seen all requests, and tells whether it refused one.
    bool any();

private:
    struct Filter;
    std::unique_ptr<Filter> filter_;
};

/// For a connection of our own: no error of it reaches the program's handler, and its end does not end the
/// process.
void keepErrorsFromProgram(_XDisplay* display);

} // namespace ZLT::Platform
