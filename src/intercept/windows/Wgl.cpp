// WGL, as far as it makes contexts and frames. The system's library calls itself by its exports, which are
// ours now: what comes from inside goes straight on. The types are the system's, but its header has other
// ideas of these names.

#include "intercept/CallCapture.h"
#include "intercept/Contexts.h"
#include "intercept/Intercepted.h"
#include "intercept/windows/System.h"

namespace ZLT::Interception {

namespace {

using Handle = void*; // HDC, HGLRC
using Bool = int;     // BOOL

Handle made(Handle context, Handle share) {
    if (context && !thread.inside)
        addContext(context, share, true);
    return context;
}

std::uint64_t numberOf(Handle window) { return reinterpret_cast<std::uintptr_t>(window); }

Bool madeCurrent(Bool success, Handle draw, Handle read, Handle context) {
    if (success && !thread.inside) {
        setCurrentContext(findOrAddContext(context, true));
        captureCurrent(numberOf(draw), numberOf(read), draw);
    }
    return success;
}

// Before a swap.
void swapping(Handle window) {
    if (!thread.inside)
        captureSwap(numberOf(window));
}

Bool swapped(Bool success) {
    if (success && !thread.inside)
        endFrame();
    return success;
}

#define ZLT_REAL(name)                                                                                       \
    static auto* const real = systemFunction(&name, #name);                                                  \
    if (!real)                                                                                               \
        return {};

// Functions of extensions that make contexts or change them: what the driver gave, for the one of ours.
Handle (*realCreateContextAttribs)(Handle, Handle, const int*) = nullptr;
Bool (*realMakeContextCurrent)(Handle, Handle, Handle) = nullptr;
Bool (*realBindTexImage)(Handle, int) = nullptr;

Handle createContextAttribs(Handle window, Handle share, const int* attributes) {
    constexpr int profileMask = 0x9126, es2Profile = 4;
    bool isDesktop = true;
    for (const int* pair = attributes; pair && *pair; pair += 2)
        if (pair[0] == profileMask)
            isDesktop = (pair[1] & es2Profile) == 0;
    const Handle context = inside([&] { return realCreateContextAttribs(window, share, attributes); });
    if (context && !thread.inside)
        addContext(context, share, isDesktop);
    return context;
}

Bool makeContextCurrent(Handle draw, Handle read, Handle context) {
    return madeCurrent(inside([&] { return realMakeContextCurrent(draw, read, context); }), draw, read,
                       context);
}

// Of GL, for a pbuffer; 0 for a cube map, of which the pbuffer is one face, and for what has no texture.
unsigned int textureTargetOf(Handle pbuffer) {
    constexpr int textureTarget = 0x2073; // WGL_TEXTURE_TARGET_ARB
    const auto query = reinterpret_cast<Bool (*)(Handle, int, int*)>(
        inside([] { return driverFunction("wglQueryPbufferARB"); }));
    int target = 0;
    if (query)
        inside([&] { query(pbuffer, textureTarget, &target); });
    switch (target) {
    case 0x2079: // WGL_TEXTURE_1D_ARB
        return 0x0DE0;
    case 0x207A: // WGL_TEXTURE_2D_ARB
        return 0x0DE1;
    case 0x20A2: // WGL_TEXTURE_RECTANGLE_NV
        return 0x84F5;
    default:
        return 0;
    }
}

Bool bindTexImage(Handle pbuffer, int buffer) {
    const Bool success = inside([&] { return realBindTexImage(pbuffer, buffer); });
    if (success && isCaptured())
        captureTexels(textureTargetOf(pbuffer), "the pixels that wglBindTexImageARB gives to a texture",
                      __builtin_return_address(0));
    return success;
}

template <class Function>
RealFunction keep(Function*& kept, RealFunction real, Function* ours) {
    kept = reinterpret_cast<Function*>(real);
    return reinterpret_cast<RealFunction>(ours);
}

} // namespace

} // namespace ZLT::Interception

using namespace ZLT::Interception;

ZLT_INTERCEPTED Handle wglCreateContext(Handle window) {
    ZLT_REAL(wglCreateContext)
    return made(inside([&] { return real(window); }), nullptr);
}

ZLT_INTERCEPTED Handle wglCreateLayerContext(Handle window, int layer) {
    ZLT_REAL(wglCreateLayerContext)
    return made(inside([&] { return real(window, layer); }), nullptr);
}

ZLT_INTERCEPTED Bool wglDeleteContext(Handle context) {
    ZLT_REAL(wglDeleteContext)
    const Bool success = inside([&] { return real(context); });
    if (success && !thread.inside) {
        if (thread.context && thread.context == findContext(context))
            setCurrentContext(nullptr);
        captureDestroyed(context);
        removeContext(context);
    }
    return success;
}

ZLT_INTERCEPTED Bool wglMakeCurrent(Handle window, Handle context) {
    ZLT_REAL(wglMakeCurrent)
    return madeCurrent(inside([&] { return real(window, context); }), window, window, context);
}

ZLT_INTERCEPTED Bool wglShareLists(Handle from, Handle to) {
    ZLT_REAL(wglShareLists)
    const Bool success = inside([&] { return real(from, to); });
    if (success && !thread.inside)
        shareLists(from, to);
    return success;
}

ZLT_INTERCEPTED Bool wglSwapBuffers(Handle window) {
    ZLT_REAL(wglSwapBuffers)
    swapping(window);
    return swapped(inside([&] { return real(window); }));
}

ZLT_INTERCEPTED Bool wglSwapLayerBuffers(Handle window, unsigned int planes) {
    ZLT_REAL(wglSwapLayerBuffers)
    swapping(window);
    return swapped(inside([&] { return real(window, planes); }));
}

ZLT_INTERCEPTED unsigned long wglSwapMultipleBuffers(unsigned int count, const void* swaps) {
    ZLT_REAL(wglSwapMultipleBuffers)
    struct Swap { // WGLSWAP
        Handle window;
        unsigned int planes;
    };
    for (unsigned int i = 0; i < count; ++i)
        swapping(static_cast<const Swap*>(swaps)[i].window);
    const unsigned long success = inside([&] { return real(count, swaps); });
    swapped(success != 0);
    return success;
}

ZLT_INTERCEPTED Bool wglUseFontBitmapsA(Handle window, unsigned long first, unsigned long count,
                                        unsigned long base) {
    ZLT_REAL(wglUseFontBitmapsA)
    captureIncomplete("the display lists of wglUseFontBitmapsA");
    return inside([&] { return real(window, first, count, base); });
}

ZLT_INTERCEPTED Bool wglUseFontOutlinesA(Handle window, unsigned long first, unsigned long count,
                                         unsigned long base, float deviation, float extrusion, int format,
                                         void* metrics) {
    ZLT_REAL(wglUseFontOutlinesA)
    captureIncomplete("the display lists of wglUseFontOutlinesA");
    return inside([&] { return real(window, first, count, base, deviation, extrusion, format, metrics); });
}

ZLT_INTERCEPTED Bool wglUseFontBitmapsW(Handle window, unsigned long first, unsigned long count,
                                        unsigned long base) {
    ZLT_REAL(wglUseFontBitmapsW)
    captureIncomplete("the display lists of wglUseFontBitmapsW");
    return inside([&] { return real(window, first, count, base); });
}

ZLT_INTERCEPTED Bool wglUseFontOutlinesW(Handle window, unsigned long first, unsigned long count,
                                         unsigned long base, float deviation, float extrusion, int format,
                                         void* metrics) {
    ZLT_REAL(wglUseFontOutlinesW)
    captureIncomplete("the display lists of wglUseFontOutlinesW");
    return inside([&] { return real(window, first, count, base, deviation, extrusion, format, metrics); });
}

ZLT_INTERCEPTED RealFunction wglGetProcAddress(const char* name) {
    const RealFunction real = name ? inside([&] { return driverFunction(name); }) : nullptr;
    if (!real || thread.inside || !program().isActive())
        return real;
    const std::string_view text = name;
    if (text == "wglCreateContextAttribsARB")
        return keep(realCreateContextAttribs, real, createContextAttribs);
    if (text == "wglMakeContextCurrentARB" || text == "wglMakeContextCurrentEXT")
        return keep(realMakeContextCurrent, real, makeContextCurrent);
    if (text == "wglBindTexImageARB")
        return keep(realBindTexImage, real, bindTexImage);
    return handOut(name, real);
}
