// Windows, their device contexts and pixel formats.

#include "platform/linux/Handles.h"

#include <limits>
#include <memory>

using namespace ZLT::Platform;

namespace {

int bits(const State& state, int format, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(state.display, state.config(format), name, &value);
    return value;
}

PIXELFORMATDESCRIPTOR describe(const State& state, int format) {
    const auto byte = [&](EGLint name) { return static_cast<BYTE>(bits(state, format, name)); };
    PIXELFORMATDESCRIPTOR description = {};
    description.nSize = sizeof(description);
    description.nVersion = 1;
    description.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    description.iPixelType = PFD_TYPE_RGBA;
    description.cRedBits = byte(EGL_RED_SIZE);
    description.cGreenBits = byte(EGL_GREEN_SIZE);
    description.cBlueBits = byte(EGL_BLUE_SIZE);
    description.cAlphaBits = byte(EGL_ALPHA_SIZE);
    description.cColorBits =
        static_cast<BYTE>(description.cRedBits + description.cGreenBits + description.cBlueBits);
    description.cDepthBits = byte(EGL_DEPTH_SIZE);
    description.cStencilBits = byte(EGL_STENCIL_SIZE);
    return description;
}

// How far a number of bits is from the wanted one: too few weigh more than too many.
int distance(int offered, int wanted) {
    return offered < wanted ? 100 * (wanted - offered) : offered - wanted;
}

bool isFormat(const State& state, int format) {
    return format >= 1 && static_cast<std::size_t>(format) <= state.configs.size();
}

} // namespace

HWND CreateWindowExA(DWORD, LPCSTR, LPCSTR, DWORD, int, int, int width, int height, HWND, HMENU, HINSTANCE,
                     LPVOID) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (width < 1 || height < 1)
        return fail(ERROR_INVALID_PARAMETER);
    if (state.display == EGL_NO_DISPLAY)
        return fail(ERROR_GEN_FAILURE);
    auto window = std::make_unique<Window>(Window{width, height});
    window->device.window = window.get();
    state.windows.insert(window.get());
    return window.release();
}

BOOL DestroyWindow(HWND window) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (state.windows.erase(window) == 0)
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    // EGL keeps a surface that is current until it no longer is.
    if (window->surface != EGL_NO_SURFACE)
        eglDestroySurface(state.display, window->surface);
    if (window->current == 0)
        delete window;
    else
        window->gone = true; // its address is not given out again while a thread has it current
    return TRUE;
}

HDC GetDC(HWND window) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.windows.contains(window))
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    return &window->device;
}

int ReleaseDC(HWND window, HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.windows.contains(window) || &window->device != device)
        return fail(ERROR_INVALID_HANDLE);
    return 1;
}

int ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!windowOf(state, device))
        return fail(ERROR_INVALID_HANDLE);
    if (!wanted)
        return fail(ERROR_INVALID_PARAMETER);
    int best = 0;
    int least = std::numeric_limits<int>::max();
    for (int format = 1; isFormat(state, format); ++format) {
        const PIXELFORMATDESCRIPTOR offered = describe(state, format);
        const int away = distance(offered.cColorBits, wanted->cColorBits) +
                         distance(offered.cAlphaBits, wanted->cAlphaBits) +
                         distance(offered.cDepthBits, wanted->cDepthBits) +
                         distance(offered.cStencilBits, wanted->cStencilBits) +
                         bits(state, format, EGL_SAMPLES);
        if (away < least) {
            least = away;
            best = format;
        }
    }
    return best ? best : fail(ERROR_INVALID_PIXEL_FORMAT);
}

int DescribePixelFormat(HDC device, int format, UINT size, PIXELFORMATDESCRIPTOR* description) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!windowOf(state, device))
        return fail(ERROR_INVALID_HANDLE);
    if (description) {
        if (size < sizeof(*description))
            return fail(ERROR_INVALID_PARAMETER);
        if (!isFormat(state, format))
            return fail(ERROR_INVALID_PIXEL_FORMAT);
        *description = describe(state, format);
    }
    return static_cast<int>(state.configs.size());
}

int GetPixelFormat(HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HWND window = windowOf(state, device);
    if (!window)
        return fail(ERROR_INVALID_HANDLE);
    return window->pixelFormat ? window->pixelFormat : fail(ERROR_INVALID_PIXEL_FORMAT);
}

BOOL SetPixelFormat(HDC device, int format, const PIXELFORMATDESCRIPTOR*) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const HWND window = windowOf(state, device);
    if (!window)
        return fail(ERROR_INVALID_HANDLE);
    if (!isFormat(state, format))
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (window->pixelFormat != 0)
        return window->pixelFormat == format ? TRUE : fail(ERROR_INVALID_PIXEL_FORMAT);
    const EGLint size[] = {EGL_WIDTH, window->width, EGL_HEIGHT, window->height, EGL_NONE};
    window->surface = eglCreatePbufferSurface(state.display, state.config(format), size);
    if (window->surface == EGL_NO_SURFACE)
        return failOfEGL();
    window->pixelFormat = format;
    return TRUE;
}

BOOL SwapBuffers(HDC device) {
    State& state = ZLT::Platform::state();
    EGLSurface surface = EGL_NO_SURFACE;
    {
        const std::lock_guard guard(state.lock);
        const HWND window = windowOf(state, device);
        if (!window)
            return fail(ERROR_INVALID_HANDLE);
        surface = window->surface;
    }
    if (surface == EGL_NO_SURFACE)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    // EGL swaps the current surface alone. Without the lock: it may wait for the driver.
    if (device != wglGetCurrentDC())
        return TRUE;
    return eglSwapBuffers(state.display, surface) ? TRUE : failOfEGL();
}
