// EGL, as far as it makes contexts and frames.

#include "intercept/CallCapture.h"
#include "intercept/Contexts.h"
#include "intercept/Intercepted.h"
#include "intercept/linux/Libraries.h"
#include "platform/GL.h"

#define EGL_EGLEXT_PROTOTYPES
#include <EGL/egl.h>
#include <EGL/eglext.h>

namespace ZLT::Interception {

namespace {

#define ZLT_REAL(name) realOf(name, #name)

// The API that the thread has bound, which is that of a new context.
bool makesDesktopContexts() {
    const auto query = reinterpret_cast<EGLenum (*)()>(findFunction("eglQueryAPI"));
    return query && query() == EGL_OPENGL_API;
}

// Surfaces are addresses, and those of GLX small numbers: neither is taken for the other.
std::uint64_t numberOf(EGLSurface surface) { return reinterpret_cast<std::uintptr_t>(surface); }

template <class Call>
EGLBoolean swapped(EGLSurface surface, const Call& call) {
    captureSwap(numberOf(surface));
    const EGLBoolean success = inside(call);
    if (success)
        endFrame();
    return success;
}

} // namespace

} // namespace ZLT::Interception

using namespace ZLT::Interception;

ZLT_INTERCEPTED EGLContext eglCreateContext(EGLDisplay display, EGLConfig config, EGLContext share,
                                            const EGLint* attributes) {
    const EGLContext context =
        inside([&] { return ZLT_REAL(eglCreateContext)(display, config, share, attributes); });
    if (context != EGL_NO_CONTEXT)
        addContext(context, share, makesDesktopContexts());
    return context;
}

ZLT_INTERCEPTED EGLBoolean eglDestroyContext(EGLDisplay display, EGLContext context) {
    const EGLBoolean success = inside([&] { return ZLT_REAL(eglDestroyContext)(display, context); });
    if (success)
        captureDestroyed(removeContext(context));
    return success;
}

ZLT_INTERCEPTED EGLBoolean eglMakeCurrent(EGLDisplay display, EGLSurface draw, EGLSurface read,
                                          EGLContext context) {
    const EGLBoolean success = inside([&] { return ZLT_REAL(eglMakeCurrent)(display, draw, read, context); });
    if (success) {
        setCurrentContext(findOrAddContext(context, true));
        captureCurrent(numberOf(draw), numberOf(read), display, true);
    }
    return success;
}

ZLT_INTERCEPTED EGLBoolean eglReleaseThread() {
    const EGLBoolean success = inside([&] { return ZLT_REAL(eglReleaseThread)(); });
    if (success) {
        setCurrentContext(nullptr);
        captureCurrent(0, 0, nullptr, true);
    }
    return success;
}

ZLT_INTERCEPTED EGLBoolean eglSwapBuffers(EGLDisplay display, EGLSurface surface) {
    return swapped(surface, [&] { return ZLT_REAL(eglSwapBuffers)(display, surface); });
}

ZLT_INTERCEPTED EGLBoolean eglSwapBuffersWithDamageKHR(EGLDisplay display, EGLSurface surface,
                                                       const EGLint* rects, EGLint count) {
    return swapped(surface,
                   [&] { return ZLT_REAL(eglSwapBuffersWithDamageKHR)(display, surface, rects, count); });
}

ZLT_INTERCEPTED EGLBoolean eglSwapBuffersWithDamageEXT(EGLDisplay display, EGLSurface surface,
                                                       const EGLint* rects, EGLint count) {
    return swapped(surface,
                   [&] { return ZLT_REAL(eglSwapBuffersWithDamageEXT)(display, surface, rects, count); });
}

ZLT_INTERCEPTED EGLBoolean eglBindTexImage(EGLDisplay display, EGLSurface surface, EGLint buffer) {
    const EGLBoolean success = inside([&] { return ZLT_REAL(eglBindTexImage)(display, surface, buffer); });
    if (success)
        captureTexels(GL_TEXTURE_2D, "the pixels that eglBindTexImage gives to a texture",
                      __builtin_return_address(0));
    return success;
}

ZLT_INTERCEPTED void (*eglGetProcAddress(const char* name))() {
    const auto real = ZLT_REAL(eglGetProcAddress);
    return name && real ? handOut(name, real(name)) : nullptr;
}
