#pragma once

#include <EGL/egl.h>
#include <GL/gl.h>

#include <cstdio>

/// @file
/// A context without a window. The programs of this folder know nothing of the library: they stand for those
/// of other people.

#ifndef GL
#define GL(name) name
#endif

inline EGLDisplay display;
inline EGLConfig config;

inline EGLContext makeContext(EGLContext share = EGL_NO_CONTEXT, EGLenum api = EGL_OPENGL_API) {
    const EGLint wanted[] = {EGL_RENDERABLE_TYPE,
                             api == EGL_OPENGL_API ? EGL_OPENGL_BIT : EGL_OPENGL_ES2_BIT,
                             EGL_SURFACE_TYPE,
                             EGL_PBUFFER_BIT,
                             EGL_RED_SIZE,
                             8,
                             EGL_NONE};
    const EGLint version[] = {EGL_CONTEXT_CLIENT_VERSION, 2, EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, 64, EGL_HEIGHT, 64, EGL_NONE};
    EGLint count = 0;
    display = GL(eglGetDisplay)(EGL_DEFAULT_DISPLAY);
    if (!GL(eglInitialize)(display, nullptr, nullptr) ||
        !GL(eglChooseConfig)(display, wanted, &config, 1, &count) || !count)
        return EGL_NO_CONTEXT;
    GL(eglBindAPI)(api);
    EGLContext context =
        GL(eglCreateContext)(display, config, share, api == EGL_OPENGL_API ? nullptr : version);
    EGLSurface surface = GL(eglCreatePbufferSurface)(display, config, size);
    return GL(eglMakeCurrent)(display, surface, surface, context) ? context : EGL_NO_CONTEXT;
}
