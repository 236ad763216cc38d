// What the platform layer says of the thread's context. What is loaded into foreign programs has surroundings
// of its own, and not this source.

#include "capture/CaptureState.h"
#include "platform/Platform.h"

namespace ZLT::Capture {

namespace {

class PlatformSurroundings final : public CaptureSurroundings {
public:
    std::uint64_t drawSurface() override { return reinterpret_cast<std::uintptr_t>(wglGetCurrentDC()); }
    std::uint64_t readSurface() override { return drawSurface(); }
    Size sizeOf(std::uint64_t surface) override {
        const HWND window = WindowFromDC(reinterpret_cast<HDC>(surface)); // NOLINT(performance-no-int-to-ptr)
        RECT area = {};
        if (!window || !GetClientRect(window, &area))
            return {};
        return {static_cast<int>(area.right - area.left), static_cast<int>(area.bottom - area.top)};
    }
    // Without somebody who saw them made, contexts are taken for ones that share nothing.
    std::uint64_t shareGroupOf(void* context) override { return reinterpret_cast<std::uintptr_t>(context); }
};

} // namespace

std::unique_ptr<CaptureSurroundings> platformSurroundings() {
    return std::make_unique<PlatformSurroundings>();
}

} // namespace ZLT::Capture
