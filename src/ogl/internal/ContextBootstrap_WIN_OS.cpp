#include "ogl/internal/ContextBootstrap.h"

#include "ogl/BufferFormat.h"
#include "ogl/internal/WindowOwner.h"
#include "zlt/core/Memory.h"

namespace ZLT::OGL::internal {

ContextBootstrap::ContextBootstrap(const DISPLAY_DEVICEA& display) : window_(nullptr) {
    const POINTL origin = displayOrigin(display.DeviceName);
    WindowOwner window(new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__)
                           InternalWindow(static_cast<short>(origin.x), static_cast<short>(origin.y)));
    displayDevice_ = display;
    initialize(GetDC(window.window()), BufferFormat(BufferFormat::RGB8), eSingleBuffered, eNoMultisample,
               nullptr);
    window_ = window.release();
}

ContextBootstrap::~ContextBootstrap() noexcept(false) {
    destroyContext();
    ZLTDeleter<InternalWindow>()(window_);
}

} // namespace ZLT::OGL::internal
