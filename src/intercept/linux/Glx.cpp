// GLX, as far as it makes contexts and frames.

#include "intercept/CallCapture.h"
#include "intercept/Contexts.h"
#include "intercept/Intercepted.h"
#include "intercept/linux/Fonts.h"
#include "intercept/linux/Libraries.h"

#define GLX_GLXEXT_PROTOTYPES
#include <GL/glx.h>
#include <GL/glxext.h>

namespace ZLT::Interception {

namespace {

#define ZLT_REAL(name) realOf(name, #name)

GLXContext made(GLXContext context, GLXContext share) {
    if (context)
        addContext(context, share, true);
    return context;
}

// Whether the profile that the attributes ask for is one of OpenGL ES (GLX_EXT_create_context_es2_profile).
bool isDesktop(const int* attributes) {
    for (; attributes && *attributes; attributes += 2)
        if (attributes[0] == GLX_CONTEXT_PROFILE_MASK_ARB)
            return (attributes[1] & GLX_CONTEXT_ES2_PROFILE_BIT_EXT) == 0;
    return true;
}

Bool madeCurrent(Bool success, Display* display, GLXDrawable draw, GLXDrawable read, GLXContext context) {
    if (success) {
        setCurrentContext(findOrAddContext(context, true));
        captureCurrent(draw, read, display);
    }
    return success;
}

// Of GL, for a pixmap or a pbuffer; 0 for one without a texture.
unsigned int textureTargetOf(Display* display, GLXDrawable drawable) {
    const auto query = reinterpret_cast<decltype(&glXQueryDrawable)>(findFunction("glXQueryDrawable"));
    unsigned int target = 0;
    if (query)
        inside([&] { query(display, drawable, GLX_TEXTURE_TARGET_EXT, &target); });
    switch (target) {
    case GLX_TEXTURE_1D_EXT:
        return GL_TEXTURE_1D;
    case GLX_TEXTURE_2D_EXT:
        return GL_TEXTURE_2D;
    case GLX_TEXTURE_RECTANGLE_EXT:
        return GL_TEXTURE_RECTANGLE_ARB;
    default:
        return 0;
    }
}

} // namespace

} // namespace ZLT::Interception

using namespace ZLT::Interception;

ZLT_INTERCEPTED GLXContext glXCreateContext(Display* display, XVisualInfo* visual, GLXContext share,
                                            Bool direct) {
    return made(inside([&] { return ZLT_REAL(glXCreateContext)(display, visual, share, direct); }), share);
}

ZLT_INTERCEPTED GLXContext glXCreateNewContext(Display* display, GLXFBConfig config, int type,
                                               GLXContext share, Bool direct) {
    return made(inside([&] { return ZLT_REAL(glXCreateNewContext)(display, config, type, share, direct); }),
                share);
}

ZLT_INTERCEPTED GLXContext glXCreateContextAttribsARB(Display* display, GLXFBConfig config, GLXContext share,
                                                      Bool direct, const int* attributes) {
    const GLXContext context = inside(
        [&] { return ZLT_REAL(glXCreateContextAttribsARB)(display, config, share, direct, attributes); });
    if (context)
        addContext(context, share, isDesktop(attributes));
    return context;
}

ZLT_INTERCEPTED GLXContext glXCreateContextWithConfigSGIX(Display* display, GLXFBConfigSGIX config, int type,
                                                          GLXContext share, Bool direct) {
    return made(inside([&] {
                    return ZLT_REAL(glXCreateContextWithConfigSGIX)(display, config, type, share, direct);
                }),
                share);
}

ZLT_INTERCEPTED GLXContext glXImportContextEXT(Display* display, GLXContextID id) {
    return made(inside([&] { return ZLT_REAL(glXImportContextEXT)(display, id); }), nullptr);
}

ZLT_INTERCEPTED void glXDestroyContext(Display* display, GLXContext context) {
    captureDestroyed(removeContext(context));
    const Inside driver;
    ZLT_REAL(glXDestroyContext)(display, context);
}

ZLT_INTERCEPTED void glXFreeContextEXT(Display* display, GLXContext context) {
    captureDestroyed(removeContext(context));
    const Inside driver;
    ZLT_REAL(glXFreeContextEXT)(display, context);
}

ZLT_INTERCEPTED Bool glXMakeCurrent(Display* display, GLXDrawable drawable, GLXContext context) {
    return madeCurrent(inside([&] { return ZLT_REAL(glXMakeCurrent)(display, drawable, context); }), display,
                       drawable, drawable, context);
}

ZLT_INTERCEPTED Bool glXMakeContextCurrent(Display* display, GLXDrawable draw, GLXDrawable read,
                                           GLXContext context) {
    return madeCurrent(inside([&] { return ZLT_REAL(glXMakeContextCurrent)(display, draw, read, context); }),
                       display, draw, read, context);
}

ZLT_INTERCEPTED Bool glXMakeCurrentReadSGI(Display* display, GLXDrawable draw, GLXDrawable read,
                                           GLXContext context) {
    return madeCurrent(inside([&] { return ZLT_REAL(glXMakeCurrentReadSGI)(display, draw, read, context); }),
                       display, draw, read, context);
}

ZLT_INTERCEPTED void glXSwapBuffers(Display* display, GLXDrawable drawable) {
    captureSwap(drawable);
    inside([&] { ZLT_REAL(glXSwapBuffers)(display, drawable); });
    endFrame();
}

ZLT_INTERCEPTED int64_t glXSwapBuffersMscOML(Display* display, GLXDrawable drawable, int64_t target,
                                             int64_t divisor, int64_t remainder) {
    captureSwap(drawable);
    const int64_t result =
        inside([&] { return ZLT_REAL(glXSwapBuffersMscOML)(display, drawable, target, divisor, remainder); });
    endFrame();
    return result;
}

ZLT_INTERCEPTED void glXCopyContext(Display* display, GLXContext from, GLXContext to, unsigned long mask) {
    captureIncomplete("what glXCopyContext copies");
    const Inside driver;
    ZLT_REAL(glXCopyContext)(display, from, to, mask);
}

ZLT_INTERCEPTED void glXUseXFont(Font font, int first, int count, int list) {
    const void* const caller = __builtin_return_address(0);
    bool isMade = false;
    captureCalls([&](ZLT::OGL::OpenGLInterceptor& gl) {
        isMade = makeFontLists(gl, siteOf(caller), font, first, count, list);
    });
    if (isMade)
        return;
    const Inside driver;
    ZLT_REAL(glXUseXFont)(font, first, count, list);
}

ZLT_INTERCEPTED void glXBindTexImageEXT(Display* display, GLXDrawable drawable, int buffer,
                                        const int* attributes) {
    inside([&] { ZLT_REAL(glXBindTexImageEXT)(display, drawable, buffer, attributes); });
    if (isCaptured())
        captureTexels(textureTargetOf(display, drawable),
                      "the pixels that glXBindTexImageEXT gives to a texture", __builtin_return_address(0));
}

ZLT_INTERCEPTED void (*glXGetProcAddress(const GLubyte* name))() {
    const auto real = ZLT_REAL(glXGetProcAddress);
    return name && real ? handOut(reinterpret_cast<const char*>(name), real(name)) : nullptr;
}

ZLT_INTERCEPTED void (*glXGetProcAddressARB(const GLubyte* name))() {
    const auto real = ZLT_REAL(glXGetProcAddressARB);
    return name && real ? handOut(reinterpret_cast<const char*>(name), real(name)) : nullptr;
}
