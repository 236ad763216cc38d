#include "ogl/ScopedContextWrapper.h"

#include "extensionator/ReporterThread.h"
#include "zlt/core/Enforce.h"

#include <sstream>

namespace ZLT::OGL {

// A pair that somebody else made current behind the platform's back would be lost at the end.
ScopedContextWrapper::ScopedContextWrapper() : savedDeviceContext_(nullptr), savedRenderContext_(nullptr) {
    Platform::noticeCurrent();
    savedRenderContext_ = wglGetCurrentContext();
    savedDeviceContext_ = wglGetCurrentDC();
}

// A failure is dropped: it must not hide the one that ended the scope.
ScopedContextWrapper::~ScopedContextWrapper() {
    try {
        if (wglGetCurrentContext() == savedRenderContext_ && wglGetCurrentDC() == savedDeviceContext_)
            return;
        Detail::noticeContextChange();
        if (wglMakeCurrent(savedDeviceContext_, savedRenderContext_))
            return;
        std::ostringstream message;
        message << "Context::can't make this context current" << GetLastError();
        ZLT_RAISE(message.str().c_str());
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

} // namespace ZLT::OGL
