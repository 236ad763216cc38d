#pragma once

#include <EGL/egl.h>
#include <gtest/gtest.h>

/// A context that is made by EGL past the library, on a pbuffer, and current as long as it lives. The display
/// stays open.
struct ForeignContext {
    EGLDisplay display;
    EGLSurface surface = EGL_NO_SURFACE;
    EGLContext context = EGL_NO_CONTEXT;

    explicit ForeignContext(EGLDisplay on) : display(on) {
        EGLConfig config = nullptr;
        EGLint count = 0;
        const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                                 EGL_NONE};
        eglInitialize(display, nullptr, nullptr);
        eglBindAPI(EGL_OPENGL_API);
        eglChooseConfig(display, wanted, &config, 1, &count);
        surface = eglCreatePbufferSurface(display, config, nullptr);
        context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
        EXPECT_TRUE(makeCurrent());
    }
    ForeignContext(const ForeignContext&) = delete;
    ForeignContext& operator=(const ForeignContext&) = delete;
    ~ForeignContext() {
        eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        eglDestroyContext(display, context);
        eglDestroySurface(display, surface);
    }
    bool makeCurrent() const { return eglMakeCurrent(display, surface, surface, context); }
};
