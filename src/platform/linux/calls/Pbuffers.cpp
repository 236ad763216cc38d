// Pbuffers: drawables without a window. The handle is the device context's.

#include "platform/linux/apis/Egl.h"
#include "platform/linux/calls/Calls.h"

#include "platform/WglTokens.h"

namespace ZLT::Platform {

namespace {

HPBUFFERARB handleOf(HDC device) { return reinterpret_cast<HPBUFFERARB>(device); }

std::shared_ptr<Drawable> pbufferOf(HPBUFFERARB handle) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, reinterpret_cast<HDC>(handle));
    return drawable && drawable->isPbuffer() ? drawable : fail(ERROR_INVALID_HANDLE);
}

} // namespace

HPBUFFERARB WINAPI createPbufferARB(HDC device, int number, int width, int height, const int* attributes) {
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    guard.unlock();
    if (!drawable || drawable->isForeign())
        return fail(ERROR_INVALID_HANDLE);
    if (width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    bool largest = false;
    for (; attributes && attributes[0] != 0; attributes += 2) {
        if (attributes[0] != WGL_PBUFFER_LARGEST_ARB)
            return fail(ERROR_INVALID_PARAMETER);
        largest = attributes[1] != 0;
    }
    Connection& connection = *drawable->connection;
    if (!keepOpen(connection))
        return nullptr;
    guard.lock();
    if (!connection.has(number) || !connection.format(number).pbuffer)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    Surface surface = {.api = &egl(),
                       .display = connection.display,
                       .config = connection.format(number).config,
                       .generation = connection.generation};
    guard.unlock();
    surface.handle = egl().pbuffer(surface.display, surface.config, width, height, largest);
    if (!surface.handle)
        return nullptr;
    const auto made = std::make_shared<Drawable>();
    made->connection = &connection;
    made->pixelFormat = number;
    sizeOfEglSurface(surface.display, surface.handle, made->width, made->height);
    made->surfaces.push_back(surface);
    enterDrawable(made);
    return handleOf(made->handle);
}

HDC WINAPI getPbufferDCARB(HPBUFFERARB handle) {
    const std::shared_ptr<Drawable> pbuffer = pbufferOf(handle);
    return pbuffer ? pbuffer->handle : nullptr;
}

int WINAPI releasePbufferDCARB(HPBUFFERARB handle, HDC device) {
    const std::shared_ptr<Drawable> pbuffer = pbufferOf(handle);
    if (!pbuffer)
        return 0;
    return pbuffer->handle == device ? 1 : fail(ERROR_INVALID_HANDLE);
}

BOOL WINAPI destroyPbufferARB(HPBUFFERARB handle) {
    const std::shared_ptr<Drawable> pbuffer = pbufferOf(handle);
    return pbuffer && removeDrawable(*pbuffer);
}

BOOL WINAPI queryPbufferARB(HPBUFFERARB handle, int attribute, int* value) {
    const std::shared_ptr<Drawable> pbuffer = pbufferOf(handle);
    if (!pbuffer)
        return 0;
    if (!value)
        return fail(ERROR_INVALID_PARAMETER);
    switch (attribute) {
    case WGL_PBUFFER_WIDTH_ARB:
        *value = pbuffer->width;
        return 1;
    case WGL_PBUFFER_HEIGHT_ARB:
        *value = pbuffer->height;
        return 1;
    case WGL_PBUFFER_LOST_ARB:
        *value = 0;
        return 1;
    default:
        return fail(ERROR_INVALID_PARAMETER);
    }
}

} // namespace ZLT::Platform
