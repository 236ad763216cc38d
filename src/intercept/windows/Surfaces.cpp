// How large a surface is: a device context is that of a window, or of something that GL's viewport tells more
// of.

#include "intercept/CallCapture.h"

#include <windows.h>

namespace ZLT::Interception {

bool sizeOfSurface(std::uint64_t surface, int& width, int& height) {
    auto* const device = reinterpret_cast<HDC>(surface); // NOLINT(performance-no-int-to-ptr)
    const HWND window = WindowFromDC(device);
    RECT area = {};
    if (!window || !GetClientRect(window, &area))
        return false;
    width = area.right - area.left;
    height = area.bottom - area.top;
    return true;
}

} // namespace ZLT::Interception
