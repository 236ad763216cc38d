#include "platform/linux/Handles.h"

#include <EGL/eglext.h>

namespace ZLT::Platform {

namespace {

thread_local DWORD lastError = ERROR_SUCCESS;

EGLint attribute(EGLDisplay display, EGLConfig config, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

void openDisplay(State& state) {
    for (const EGLDisplay display : {eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr),
                                     eglGetDisplay(EGL_DEFAULT_DISPLAY)})
        if (display != EGL_NO_DISPLAY && eglInitialize(display, nullptr, nullptr)) {
            state.display = display;
            break;
        }
    if (state.display == EGL_NO_DISPLAY)
        return;
    EGLint count = 0;
    eglGetConfigs(state.display, nullptr, 0, &count);
    std::vector<EGLConfig> all(static_cast<std::size_t>(count));
    eglGetConfigs(state.display, all.data(), count, &count);
    for (const EGLConfig config : all)
        if ((attribute(state.display, config, EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT) &&
            (attribute(state.display, config, EGL_SURFACE_TYPE) & EGL_PBUFFER_BIT))
            state.configs.push_back(config);
}

} // namespace

State& state() {
    static State& only = *[] {
        auto* made = new State;
        openDisplay(*made);
        return made;
    }();
    return only;
}

Failure fail(DWORD error) {
    lastError = error;
    return {};
}

Failure failOfEGL() {
    switch (eglGetError()) {
    case EGL_BAD_ALLOC:
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    case EGL_BAD_ACCESS:
        return fail(ERROR_BUSY);
    case EGL_BAD_CONFIG:
    case EGL_BAD_MATCH:
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    default:
        return fail(ERROR_GEN_FAILURE);
    }
}

HWND windowOf(const State& state, HDC device) {
    for (const HWND window : state.windows)
        if (&window->device == device)
            return window;
    return nullptr;
}

} // namespace ZLT::Platform

DWORD GetLastError() { return ZLT::Platform::lastError; }
void SetLastError(DWORD error) { ZLT::Platform::lastError = error; }
