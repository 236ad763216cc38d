// What the platform layer says of the thread's context. What is loaded into foreign programs has surroundings
// of its own, and not this source.

#include "capture/CaptureState.h"
#include "platform/Platform.h"

namespace ZLT::Capture {

namespace {

class PlatformSurroundings final : public CaptureSurroundings {
public:
    Surface drawSurface() override {
        const HDC device = wglGetCurrentDC();
        Surface surface;
        surface.id = reinterpret_cast<std::uintptr_t>(device);
        RECT area = {};
        if (const HWND window = device ? WindowFromDC(device) : nullptr;
            window && GetClientRect(window, &area)) {
            surface.width = static_cast<int>(area.right - area.left);
            surface.height = static_cast<int>(area.bottom - area.top);
        }
        return surface;
    }
    Surface readSurface() override { return drawSurface(); }
    // Without somebody who saw them made, contexts are taken for ones that share nothing.
    std::uint64_t shareGroupOf(void* context) override { return reinterpret_cast<std::uintptr_t>(context); }
};

} // namespace

std::unique_ptr<CaptureSurroundings> platformSurroundings() {
    return std::make_unique<PlatformSurroundings>();
}

} // namespace ZLT::Capture
