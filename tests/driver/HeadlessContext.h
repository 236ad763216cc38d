#pragma once

#include <EGL/egl.h>

/// A desktop OpenGL context with compatibility profile on an EGL pbuffer, current on the thread that made it
/// until it is destroyed. On the X server of `DISPLAY` where there is one, without any server otherwise.
class HeadlessContext {
public:
    /// @param width, height  size of the picture in pixels
    /// @param samples        samples for each pixel; fewer where the driver hasn't as many
    /// @throws std::runtime_error that says which step failed
    HeadlessContext(int width, int height, int samples = 0);
    ~HeadlessContext();
    HeadlessContext(const HeadlessContext&) = delete;
    HeadlessContext& operator=(const HeadlessContext&) = delete;

private:
    EGLDisplay display_ = EGL_NO_DISPLAY;
    EGLSurface surface_ = EGL_NO_SURFACE;
    EGLContext context_ = EGL_NO_CONTEXT;
};
