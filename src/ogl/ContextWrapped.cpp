#include "ogl/ContextWrapped.h"

#include "extensionator/Managers.h"
#include "extensionator/ReporterThread.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Exceptions.h"

namespace ZLT::OGL {

// What somebody else made current behind the platform's back is what the client means.
ContextWrapped::ContextWrapped() {
    Platform::noticeCurrent();
    renderContext_ = wglGetCurrentContext();
    deviceContext_ = wglGetCurrentDC();
    adopt(nullptr);
}

ContextWrapped::ContextWrapped(HDC hdc, HGLRC hrc, HWND window) {
    deviceContext_ = hdc;
    renderContext_ = hrc;
    adopt(window);
}

void ContextWrapped::adopt(HWND window) {
    if (!deviceContext_)
        ZLT_RAISE("ContextWrapped::ctor invalid device");
    if (!renderContext_)
        ZLT_RAISE("ContextWrapped::ctor invalid rendering context");
    if (window)
        displayDevice_ = displayDeviceFromWindow(window);
    else
        Context::displayDevice(primaryDisplayIndex(), displayDevice_);
    internal::Managers::enter(*this);
    Detail::noticeContextChange();
    _registerContextWrapped(this);
}

ContextWrapped::~ContextWrapped() noexcept(false) {
    _unregisterShareContext(this);
    unregisterWithExtensionMgr();
}

void ContextWrapped::makeCurrent() const {
    try {
        Context::makeCurrent();
    } catch (const InternalException&) {
        ZLT_RAISE("ContextWrapped Object leaked");
    }
}

} // namespace ZLT::OGL
