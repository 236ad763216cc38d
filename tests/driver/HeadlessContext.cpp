#include "HeadlessContext.h"

#include <EGL/eglext.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>

namespace {

[[noreturn]] void fail(const char* step) {
    std::ostringstream text;
    text << step << " failed, EGL error 0x" << std::hex << eglGetError();
    throw std::runtime_error(text.str());
}

EGLDisplay openDisplay() {
    if (const char* server = std::getenv("DISPLAY"); server && *server)
        return eglGetDisplay(EGL_DEFAULT_DISPLAY);
    return eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
}

EGLConfig chooseConfig(EGLDisplay display, int samples) {
    for (; samples >= 0; samples = samples > 1 ? samples / 2 : samples - 1) {
        const EGLint wanted[] = {EGL_SURFACE_TYPE,
                                 EGL_PBUFFER_BIT,
                                 EGL_RENDERABLE_TYPE,
                                 EGL_OPENGL_BIT,
                                 EGL_RED_SIZE,
                                 8,
                                 EGL_GREEN_SIZE,
                                 8,
                                 EGL_BLUE_SIZE,
                                 8,
                                 EGL_DEPTH_SIZE,
                                 24,
                                 EGL_SAMPLES,
                                 samples,
                                 EGL_NONE};
        EGLConfig config;
        EGLint count = 0;
        if (eglChooseConfig(display, wanted, &config, 1, &count) && count == 1)
            return config;
    }
    fail("eglChooseConfig");
}

} // namespace

HeadlessContext::HeadlessContext(int width, int height, int samples) : display_(openDisplay()) {
    if (display_ == EGL_NO_DISPLAY)
        fail("eglGetPlatformDisplay");
    if (!eglInitialize(display_, nullptr, nullptr))
        fail("eglInitialize");
    if (!eglBindAPI(EGL_OPENGL_API))
        fail("eglBindAPI");
    const EGLConfig config = chooseConfig(display_, samples);
    const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
    surface_ = eglCreatePbufferSurface(display_, config, size);
    if (surface_ == EGL_NO_SURFACE)
        fail("eglCreatePbufferSurface");
    context_ = eglCreateContext(display_, config, EGL_NO_CONTEXT, nullptr);
    if (context_ == EGL_NO_CONTEXT)
        fail("eglCreateContext");
    if (!eglMakeCurrent(display_, surface_, surface_, context_))
        fail("eglMakeCurrent");
}

HeadlessContext::~HeadlessContext() {
    eglMakeCurrent(display_, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    eglDestroyContext(display_, context_);
    eglDestroySurface(display_, surface_);
    eglTerminate(display_);
}
