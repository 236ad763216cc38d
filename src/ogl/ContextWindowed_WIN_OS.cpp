#include "ogl/ContextWindowed.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/win/WglFunctions.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

ContextWindowed::ContextWindowed(HWND window, const BufferFormat& format, teBuffering buffering,
                                 teMultisample multisample, const Context* share) {
    displayDevice_ = displayDeviceFromWindow(window);
    initialize(GetDC(window), format, buffering, multisample, share);
    ExtensionManager::RegisterContext(*this);
    registerSharedContext(share);
}

ContextWindowed::~ContextWindowed() noexcept(false) {
    unregisterSharedContext();
    unregisterWithExtensionMgr();
    destroyContext();
}

void ContextWindowed::swapBuffers() { SwapBuffers(deviceContext()); }

void ContextWindowed::enableSyncToVerticalRetrace(bool on) {
    if (!supportsVerticalRetraceControl())
        ZLT_RAISE("ContextWindowed::enableSyncToVerticalRetrace unsupported feature");
    _wcgmSwapIntervalEXT(on ? 1 : 0);
}

} // namespace ZLT::OGL
