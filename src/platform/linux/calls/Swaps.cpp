// Showing what was drawn.

#include "platform/linux/adoption/Adoption.h"
#include "platform/linux/calls/Calls.h"
#include "platform/linux/windows/Surfaces.h"

#include <algorithm>

namespace ZLT::Platform {

namespace {

BOOL swapOwn(const std::shared_ptr<Drawable>& drawable) {
    {
        const std::lock_guard guard(records().lock);
        if (drawable->pixelFormat == 0)
            return fail(ERROR_INVALID_PIXEL_FORMAT);
    }
    refresh(*drawable);
    const bool seen = drawable->native && windowSystem().isSeen(*drawable->native);
    if (!seen)
        return 1;
    const Pins* current = pinned();
    if (!current || current->draw != drawable)
        return fail(ERROR_INVALID_OPERATION, "Only the current window can be swapped.");
    if (windowSystem().isLost())
        return 0;
    const ContextRecord& context = *current->context;
    const auto surface = surfaceFor(*drawable, *context.api, context.display, context.config);
    return surface && context.api->swap(context.display, *surface);
}

} // namespace

BOOL SwapBuffers(HDC device) {
    askCurrent();
    Records& all = opened();
    forgetDestroyedWindows();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    guard.unlock();
    if (!drawable)
        return fail(ERROR_INVALID_HANDLE);
    const bool swapped = drawable->isForeign() ? drawable->api->swap(drawable->display, drawable->draw)
                                               : swapOwn(drawable) != 0;
    // A driver that draws by requests to the server may leave them in the connection's buffer.
    windowSystem().flush();
    return swapped;
}

BOOL wglSwapLayerBuffers(HDC device, UINT planes) {
    return planes == WGL_SWAP_MAIN_PLANE ? SwapBuffers(device) : fail(ERROR_INVALID_PARAMETER);
}

DWORD wglSwapMultipleBuffers(UINT count, const WGLSWAP* buffers) {
    if (!buffers || count > 32)
        return fail(ERROR_INVALID_PARAMETER);
    DWORD swapped = 0;
    for (UINT i = 0; i < count; ++i)
        if (wglSwapLayerBuffers(buffers[i].hdc, buffers[i].uiFlags))
            swapped |= DWORD(1) << i;
    return swapped;
}

// Neither EGL nor GLX tells the interval that a drawable has, so it is kept.

BOOL WINAPI swapIntervalEXT(int interval) {
    const HDC device = wglGetCurrentDC();
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    guard.unlock();
    if (!drawable)
        return fail(ERROR_INVALID_OPERATION, "No drawable is current.");
    if (interval < 0)
        return fail(ERROR_INVALID_PARAMETER);
    if (!currentNative().api->setSwapInterval(interval))
        return 0;
    guard.lock();
    if (!drawable->isForeign()) {
        // EGL takes any number and stays between these.
        const Format& format = drawable->connection->format(drawable->pixelFormat);
        interval = std::clamp(interval, format.minSwapInterval, format.maxSwapInterval);
    }
    drawable->swapInterval = interval;
    return 1;
}

int WINAPI getSwapIntervalEXT() {
    const HDC device = wglGetCurrentDC();
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    return drawable ? drawable->swapInterval : 0;
}

} // namespace ZLT::Platform
