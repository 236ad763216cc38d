#include "ogl/ContextWindowed.h"

#include "extensionator/Load.h"
#include "extensionator/Managers.h"
#include "extensionator/win/WglFunctions.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

// The pointer is the whole process's. When the driver of a device that was found later names the extension
// and lacks the function, it is null; the current context's driver has the function all the same.
auto swapIntervalOfCurrentContext() {
    if (_wcgmSwapIntervalEXT)
        return _wcgmSwapIntervalEXT;
    return functionAddress<decltype(_wcgmSwapIntervalEXT)>("wglSwapIntervalEXT");
}

} // namespace

ContextWindowed::ContextWindowed(HWND window, const BufferFormat& format, teBuffering buffering,
                                 teMultisample multisample, const Context* share) {
    displayDevice_ = displayDeviceFromWindow(window);
    initialize(GetDC(window), format, buffering, multisample, share);
    internal::Managers::enter(*this);
    registerSharedContext(share);
}

ContextWindowed::~ContextWindowed() noexcept(false) {
    unregisterSharedContext();
    unregisterWithExtensionMgr();
    destroyContext();
}

void ContextWindowed::swapBuffers() { SwapBuffers(deviceContext()); }

void ContextWindowed::enableSyncToVerticalRetrace(bool on) {
    const auto setInterval = supportsVerticalRetraceControl() ? swapIntervalOfCurrentContext() : nullptr;
    if (!setInterval)
        ZLT_RAISE("ContextWindowed::enableSyncToVerticalRetrace unsupported feature");
    setInterval(on ? 1 : 0);
}

} // namespace ZLT::OGL
