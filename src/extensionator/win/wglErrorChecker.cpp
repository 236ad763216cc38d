#include "extensionator/win/wglErrorChecker.h"

#include "extensionator/ReporterThread.h"

namespace ZLT::OGL {

wglErrorChecker::wglErrorChecker() = default;
wglErrorChecker::~wglErrorChecker() = default;

// Another context has other errors pending.
BOOL wglErrorChecker::wcgmMakeCurrent(const char*, unsigned int, HDC device, HGLRC context) {
    Detail::noticeContextChange();
    return wglMakeCurrent(device, context);
}

} // namespace ZLT::OGL
