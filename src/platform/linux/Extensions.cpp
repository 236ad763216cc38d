// The WGL extensions that EGL can stand for: their names, and their functions by name.

#include "platform/linux/Handles.h"

#include "platform/WglTokens.h"

#include <EGL/eglext.h>

#include <algorithm>
#include <cstring>

namespace ZLT::Platform {

namespace {

const char* WINAPI getExtensionsStringARB(HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.devices.contains(device))
        return fail(ERROR_INVALID_HANDLE);
    // A drawable of somebody else's stands for the first display.
    if (device->isForeign())
        return state.connections.empty() ? "" : state.connections.front().extensions.c_str();
    return device->connection->extensions.c_str();
}

const char* WINAPI getExtensionsStringEXT() { return getExtensionsStringARB(wglGetCurrentDC()); }

// Swap control. Neither EGL nor GLX tells the interval that a drawable has.

BOOL WINAPI swapIntervalEXT(int interval) {
    const HDC handle = wglGetCurrentDC();
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.devices.contains(handle))
        return fail(ERROR_INVALID_OPERATION);
    if (interval < 0)
        return fail(ERROR_INVALID_PARAMETER);
    DeviceContext& device = *handle;
    if (!setSwapInterval(interval))
        return failOfEGL();
    device.swapInterval = interval;
    if (!device.isForeign()) {
        // EGL takes any number and stays between these.
        EGLint least = 0;
        EGLint most = 0;
        const EGLConfig config = device.connection->format(device.pixelFormat).config;
        eglGetConfigAttrib(device.connection->display, config, EGL_MIN_SWAP_INTERVAL, &least);
        eglGetConfigAttrib(device.connection->display, config, EGL_MAX_SWAP_INTERVAL, &most);
        device.swapInterval = std::clamp(interval, least, most);
    }
    return TRUE;
}

int WINAPI getSwapIntervalEXT() {
    const HDC device = wglGetCurrentDC();
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    return state.devices.contains(device) ? device->swapInterval : 0;
}

// Pbuffers: drawables without a window. The handle is the device context's.

HPBUFFERARB handleOf(HDC device) { return reinterpret_cast<HPBUFFERARB>(device); }

HDC pbufferOf(const State& state, HPBUFFERARB handle) {
    const auto device = reinterpret_cast<HDC>(handle);
    if (state.devices.contains(device) && device->isPbuffer())
        return device;
    return fail(ERROR_INVALID_HANDLE);
}

HPBUFFERARB WINAPI createPbufferARB(HDC device, int number, int width, int height, const int* attributes) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.devices.contains(device) || device->isForeign())
        return fail(ERROR_INVALID_HANDLE);
    if (!device->connection->has(number) || !device->connection->format(number).pbuffer)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    EGLint largest = EGL_FALSE;
    for (; attributes && attributes[0] != 0; attributes += 2) {
        if (attributes[0] != WGL_PBUFFER_LARGEST_ARB)
            return fail(ERROR_INVALID_PARAMETER);
        largest = attributes[1] ? EGL_TRUE : EGL_FALSE;
    }
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_LARGEST_PBUFFER, largest, EGL_NONE};
    auto made = std::make_unique<DeviceContext>();
    made->connection = device->connection;
    made->pixelFormat = number;
    made->surface =
        eglCreatePbufferSurface(made->connection->display, made->connection->format(number).config, size);
    if (made->surface == EGL_NO_SURFACE)
        return failOfEGL();
    eglQuerySurface(made->connection->display, made->surface, EGL_WIDTH, &made->width);
    eglQuerySurface(made->connection->display, made->surface, EGL_HEIGHT, &made->height);
    state.devices.insert(made.get());
    return handleOf(made.release());
}

HDC WINAPI getPbufferDCARB(HPBUFFERARB handle) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    return pbufferOf(state, handle);
}

int WINAPI releasePbufferDCARB(HPBUFFERARB handle, HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HDC found = pbufferOf(state, handle);
    if (!found)
        return 0;
    return found == device ? 1 : fail(ERROR_INVALID_HANDLE);
}

BOOL WINAPI destroyPbufferARB(HPBUFFERARB handle) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HDC device = pbufferOf(state, handle);
    if (!device)
        return FALSE;
    destroyDrawable(state, std::unique_ptr<DeviceContext>(device));
    return TRUE;
}

BOOL WINAPI queryPbufferARB(HPBUFFERARB handle, int attribute, int* value) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HDC device = pbufferOf(state, handle);
    if (!device)
        return FALSE;
    if (!value)
        return fail(ERROR_INVALID_PARAMETER);
    switch (attribute) {
    case WGL_PBUFFER_WIDTH_ARB:
        *value = device->width;
        return TRUE;
    case WGL_PBUFFER_HEIGHT_ARB:
        *value = device->height;
        return TRUE;
    case WGL_PBUFFER_LOST_ARB:
        *value = 0;
        return TRUE;
    default:
        return fail(ERROR_INVALID_PARAMETER);
    }
}

struct Function {
    const char* extension;
    const char* name;
    PROC address;
};

template <class Address>
Function function(const char* extension, const char* name, Address* address) {
    return {extension, name, reinterpret_cast<PROC>(address)};
}

const Function functions[] = {
    function("WGL_ARB_extensions_string", "wglGetExtensionsStringARB", getExtensionsStringARB),
    function("WGL_EXT_extensions_string", "wglGetExtensionsStringEXT", getExtensionsStringEXT),
    function("WGL_ARB_pixel_format", "wglChoosePixelFormatARB", choosePixelFormatARB),
    function("WGL_ARB_pixel_format", "wglGetPixelFormatAttribivARB", getPixelFormatAttribivARB),
    function("WGL_ARB_pixel_format", "wglGetPixelFormatAttribfvARB", getPixelFormatAttribfvARB),
    function("WGL_ARB_create_context", "wglCreateContextAttribsARB", createContextAttribsARB),
    function("WGL_ARB_make_current_read", "wglMakeContextCurrentARB", makeContextCurrentARB),
    function("WGL_ARB_make_current_read", "wglGetCurrentReadDCARB", getCurrentReadDCARB),
    function("WGL_ARB_pbuffer", "wglCreatePbufferARB", createPbufferARB),
    function("WGL_ARB_pbuffer", "wglGetPbufferDCARB", getPbufferDCARB),
    function("WGL_ARB_pbuffer", "wglReleasePbufferDCARB", releasePbufferDCARB),
    function("WGL_ARB_pbuffer", "wglDestroyPbufferARB", destroyPbufferARB),
    function("WGL_ARB_pbuffer", "wglQueryPbufferARB", queryPbufferARB),
    function("WGL_EXT_swap_control", "wglSwapIntervalEXT", swapIntervalEXT),
    function("WGL_EXT_swap_control", "wglGetSwapIntervalEXT", getSwapIntervalEXT),
};

bool names(const std::string& list, std::string_view name) {
    return (' ' + list + ' ').find(' ' + std::string(name) + ' ') != std::string::npos;
}

} // namespace

std::string extensionNames(const Connection& connection) {
    const char* version = eglQueryString(connection.display, EGL_VERSION);
    std::string list = "WGL_ARB_extensions_string WGL_EXT_extensions_string WGL_ARB_pixel_format "
                       "WGL_ARB_make_current_read";
    const bool is15 = version && std::strncmp(version, "1.", 2) == 0 && version[2] >= '5';
    if (is15)
        list += " WGL_ARB_create_context WGL_ARB_create_context_profile";
    const auto& formats = connection.formats;
    if (std::ranges::any_of(formats, &Format::pbuffer))
        list += " WGL_ARB_pbuffer";
    if (std::ranges::any_of(formats, [](const Format& format) { return format.samples > 0; }))
        list += " WGL_ARB_multisample";
    if (std::ranges::any_of(formats, &Format::floatingPoint))
        list += " WGL_ARB_pixel_format_float";
    // Only where the interval can be both 0 and 1; a pbuffer has no retrace to wait for.
    const auto controls = [&](const Format& format) {
        EGLint least = 1;
        EGLint most = 1;
        eglGetConfigAttrib(connection.display, format.config, EGL_MIN_SWAP_INTERVAL, &least);
        eglGetConfigAttrib(connection.display, format.config, EGL_MAX_SWAP_INTERVAL, &most);
        return least == 0 && most >= 1;
    };
    if (connection.x11 && std::ranges::any_of(formats, controls))
        list += " WGL_EXT_swap_control";
    return list;
}

} // namespace ZLT::Platform

using namespace ZLT::Platform;

PROC wglGetProcAddress(LPCSTR name) {
    const HDC device = wglGetCurrentDC();
    if (!device)
        return fail(ERROR_INVALID_HANDLE);
    if (!name)
        return fail(ERROR_PROC_NOT_FOUND);
    if (std::strncmp(name, "gl", 2) == 0)
        if (const PROC address = eglGetProcAddress(name))
            return address;
    for (const Function& function : functions)
        if (std::strcmp(name, function.name) == 0) {
            const std::string_view offered = getExtensionsStringARB(device);
            return names(std::string(offered), function.extension) ? function.address
                                                                   : fail(ERROR_PROC_NOT_FOUND);
        }
    return fail(ERROR_PROC_NOT_FOUND);
}
