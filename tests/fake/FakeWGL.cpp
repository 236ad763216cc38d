// The functions of the WGL chain, scripted like those of GL. On Linux they stand for src/platform/linux.

#include "FakeGL.h"

#if defined(_WIN32)
#define _GDI32_ // declares the functions as our own, not as imported ones
#else
#define WINAPI
#endif
#include "platform/Platform.h"

#define SCRIPTED(result, name, parameters, arguments)                                                        \
    result WINAPI name parameters { return FakeGL::Function<result>{#name} arguments; }

#if defined(_WIN32)
extern "C" {
#endif

SCRIPTED(BOOL, wglCopyContext, (HGLRC source, HGLRC destination, UINT mask), (source, destination, mask))
SCRIPTED(HGLRC, wglCreateContext, (HDC device), (device))
SCRIPTED(HGLRC, wglCreateLayerContext, (HDC device, int layer), (device, layer))
SCRIPTED(BOOL, wglDeleteContext, (HGLRC context), (context))
SCRIPTED(HDC, wglGetCurrentDC, (), ())
SCRIPTED(BOOL, wglMakeCurrent, (HDC device, HGLRC context), (device, context))
SCRIPTED(BOOL, wglShareLists, (HGLRC first, HGLRC second), (first, second))
SCRIPTED(BOOL, wglUseFontBitmapsA, (HDC device, DWORD first, DWORD count, DWORD list),
         (device, first, count, list))
SCRIPTED(BOOL, wglUseFontBitmapsW, (HDC device, DWORD first, DWORD count, DWORD list),
         (device, first, count, list))
SCRIPTED(BOOL, SwapBuffers, (HDC device), (device))
SCRIPTED(BOOL, wglUseFontOutlinesA,
         (HDC device, DWORD first, DWORD count, DWORD list, FLOAT deviation, FLOAT extrusion, int format,
          LPGLYPHMETRICSFLOAT metrics),
         (device, first, count, list, deviation, extrusion, format, metrics))
SCRIPTED(BOOL, wglUseFontOutlinesW,
         (HDC device, DWORD first, DWORD count, DWORD list, FLOAT deviation, FLOAT extrusion, int format,
          LPGLYPHMETRICSFLOAT metrics),
         (device, first, count, list, deviation, extrusion, format, metrics))
SCRIPTED(BOOL, wglDescribeLayerPlane,
         (HDC device, int format, int layer, UINT size, LPLAYERPLANEDESCRIPTOR descriptor),
         (device, format, layer, size, descriptor))
SCRIPTED(int, wglSetLayerPaletteEntries,
         (HDC device, int layer, int start, int count, const COLORREF* colors),
         (device, layer, start, count, colors))
SCRIPTED(int, wglGetLayerPaletteEntries, (HDC device, int layer, int start, int count, COLORREF* colors),
         (device, layer, start, count, colors))
SCRIPTED(BOOL, wglRealizeLayerPalette, (HDC device, int layer, BOOL realize), (device, layer, realize))
SCRIPTED(BOOL, wglSwapLayerBuffers, (HDC device, UINT planes), (device, planes))
SCRIPTED(DWORD, wglSwapMultipleBuffers, (UINT count, const WGLSWAP* buffers), (count, buffers))

// The chain's own loading of functions comes through these two on Windows. So they are noted only where a
// result was set; without, they serve the scripted GL, with a context that is always current.

PROC WINAPI wglGetProcAddress(LPCSTR name) {
    if (FakeGL::hasResult("wglGetProcAddress"))
        return FakeGL::Function<PROC>{"wglGetProcAddress"}(name);
    return reinterpret_cast<PROC>(FakeGL::addressOf(name));
}

HGLRC WINAPI wglGetCurrentContext() {
    if (FakeGL::hasResult("wglGetCurrentContext"))
        return FakeGL::Function<HGLRC>{"wglGetCurrentContext"}();
    static int context;
    return reinterpret_cast<HGLRC>(&context);
}

#if defined(_WIN32)
} // extern "C"
#endif
