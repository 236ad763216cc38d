#pragma once

#include "InternalWindow.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <exception>
#include <utility>

namespace ZLT::OGL::internal {

/// Owns a hidden window in a scope, until it is handed over. A window that can't be destroyed is a failure
/// that leaves the scope, but not one that hides the failure which is ending the scope.
class WindowOwner {
public:
    explicit WindowOwner(InternalWindow* window) : window_(window) {}
    WindowOwner(const WindowOwner&) = delete;
    WindowOwner& operator=(const WindowOwner&) = delete;
    ~WindowOwner() noexcept(false) {
        try {
            reset();
        } catch (...) {
            if (std::uncaught_exceptions() == exceptions_)
                throw;
        }
    }

    HWND window() const { return window_->window(); }
    /// Hands the window over.
    InternalWindow* release() { return std::exchange(window_, nullptr); }
    /// Destroys it now.
    void reset() { ZLTDeleter<InternalWindow>()(release()); }

private:
    InternalWindow* window_;
    int exceptions_ = std::uncaught_exceptions();
};

} // namespace ZLT::OGL::internal
