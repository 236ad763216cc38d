// How large a surface is. The questions are asked on the program's own connection, and their errors go to
// nobody.

#include "intercept/CallCapture.h"
#include "intercept/Thread.h"
#include "intercept/linux/Libraries.h"
#include "intercept/linux/RealLoader.h"

#include <EGL/egl.h>
#include <GL/glx.h>
#include <X11/Xlib-xcb.h>
#include <xcb/xcb.h>

#include <cstdlib>

namespace ZLT::Interception {

namespace {

// The program's libraries of X, as far as its GLX brought them.
struct Xcb {
    decltype(&XGetXCBConnection) connection = nullptr;
    decltype(&xcb_get_geometry) ask = nullptr;
    decltype(&xcb_get_geometry_reply) answer = nullptr;

    Xcb() {
        findLoaded(connection, "libX11-xcb.so.1", "XGetXCBConnection");
        findLoaded(ask, "libxcb.so.1", "xcb_get_geometry");
        findLoaded(answer, "libxcb.so.1", "xcb_get_geometry_reply");
    }
};

bool sizeOfWindow(XID drawable, int& width, int& height) {
    static const Xcb xcb;
    if (!xcb.connection || !xcb.ask || !xcb.answer)
        return false;
    xcb_connection_t* const connection = xcb.connection(static_cast<Display*>(thread.display));
    xcb_generic_error_t* error = nullptr;
    xcb_get_geometry_reply_t* const found =
        xcb.answer(connection, xcb.ask(connection, static_cast<xcb_drawable_t>(drawable)), &error);
    std::free(error);
    if (!found)
        return false;
    width = found->width;
    height = found->height;
    std::free(found);
    return true;
}

} // namespace

bool sizeOfSurface(std::uint64_t surface, int& width, int& height) {
    if (!thread.display)
        return false;
    if (thread.isEgl) {
        const auto query = reinterpret_cast<decltype(&eglQuerySurface)>(findFunction("eglQuerySurface"));
        auto* const handle = reinterpret_cast<EGLSurface>(surface); // NOLINT(performance-no-int-to-ptr)
        return query && query(thread.display, handle, EGL_WIDTH, &width) &&
               query(thread.display, handle, EGL_HEIGHT, &height);
    }
    if (sizeOfWindow(surface, width, height))
        return true;
    // No window, and so it is one of GLX's own: a pbuffer, a pixmap.
    const auto query = reinterpret_cast<decltype(&glXQueryDrawable)>(findFunction("glXQueryDrawable"));
    if (!query)
        return false;
    unsigned int size[2] = {};
    query(static_cast<Display*>(thread.display), surface, GLX_WIDTH, &size[0]);
    query(static_cast<Display*>(thread.display), surface, GLX_HEIGHT, &size[1]);
    width = static_cast<int>(size[0]);
    height = static_cast<int>(size[1]);
    return true;
}

} // namespace ZLT::Interception
