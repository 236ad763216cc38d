#include "ogl/ContextOffscreen.h"

#include "extensionator/Managers.h"
#include "ogl/BufferFormat.h"
#include "ogl/internal/WindowOwner.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Memory.h"

namespace ZLT::OGL {

ContextOffscreen::ContextOffscreen(const Context* pContext) : window_(nullptr) {
    ZLT_ASSERT(pContext != NULL); // NOLINT(modernize-use-nullptr): the rule's text is known to clients
    // The record is the context's own, and reading it changes nothing.
    create(const_cast<Context*>(pContext)->displayDevice(), pContext);
}

ContextOffscreen::ContextOffscreen(const DISPLAY_DEVICEA& display) : window_(nullptr) {
    create(display, nullptr);
}

void ContextOffscreen::create(const DISPLAY_DEVICEA& display, const Context* share) {
    const POINTL origin = displayOrigin(display.DeviceName);
    internal::WindowOwner window(new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) InternalWindow(
        static_cast<short>(origin.x), static_cast<short>(origin.y)));
    displayDevice_ = display;
    initialize(GetDC(window.window()), BufferFormat(BufferFormat::RGB8), eSingleBuffered, eNoMultisample,
               share);
    internal::Managers::enter(*this);
    registerSharedContext(share);
    window_ = window.release();
}

ContextOffscreen::~ContextOffscreen() noexcept(false) {
    unregisterSharedContext();
    unregisterWithExtensionMgr();
    destroyContext();
    ZLTDeleter<InternalWindow>()(window_);
}

} // namespace ZLT::OGL
