// Stands in front of other programs' GL, and ends them after as many frames as FRAMES says.

#include <EGL/egl.h>
#include <GL/glx.h>
#include <dlfcn.h>

#include <cstdlib>

namespace {

void count() {
    static int left = std::atoi(getenv("FRAMES"));
    if (--left == 0)
        std::exit(0);
}

} // namespace

extern "C" EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    const auto swap = reinterpret_cast<decltype(&eglSwapBuffers)>(dlsym(RTLD_NEXT, "eglSwapBuffers"));
    const EGLBoolean swapped = swap(display, surface);
    count();
    return swapped;
}

extern "C" void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    reinterpret_cast<decltype(&glXSwapBuffers)>(dlsym(RTLD_NEXT, "glXSwapBuffers"))(display, drawable);
    count();
}
