#include "extensionator/win/wglErrorChecker.h"

#include "extensionator/ReporterThread.h"

namespace ZLT::OGL {

wglErrorChecker::wglErrorChecker() = default;
wglErrorChecker::~wglErrorChecker() = default;

BOOL wglErrorChecker::wcgmCopyContext(const char*, unsigned int, HGLRC source, HGLRC destination, UINT mask) {
    return wglCopyContext(source, destination, mask);
}

HGLRC wglErrorChecker::wcgmCreateContext(const char*, unsigned int, HDC device) {
    return wglCreateContext(device);
}

HGLRC wglErrorChecker::wcgmCreateLayerContext(const char*, unsigned int, HDC device, int layer) {
    return wglCreateLayerContext(device, layer);
}

BOOL wglErrorChecker::wcgmDeleteContext(const char*, unsigned int, HGLRC context) {
    return wglDeleteContext(context);
}

HGLRC wglErrorChecker::wcgmGetCurrentContext(const char*, unsigned int) { return wglGetCurrentContext(); }

HDC wglErrorChecker::wcgmGetCurrentDC(const char*, unsigned int) { return wglGetCurrentDC(); }

PROC wglErrorChecker::wcgmGetProcAddress(const char*, unsigned int, LPCSTR name) {
    return wglGetProcAddress(name);
}

BOOL wglErrorChecker::wcgmMakeCurrent(const char*, unsigned int, HDC device, HGLRC context) {
    Detail::noticeContextChange();
    return wglMakeCurrent(device, context);
}

BOOL wglErrorChecker::wcgmShareLists(const char*, unsigned int, HGLRC first, HGLRC second) {
    return wglShareLists(first, second);
}

BOOL wglErrorChecker::wcgmUseFontBitmapsA(const char*, unsigned int, HDC device, DWORD first, DWORD count,
                                          DWORD listBase) {
    return wglUseFontBitmapsA(device, first, count, listBase);
}

BOOL wglErrorChecker::wcgmUseFontBitmapsW(const char*, unsigned int, HDC device, DWORD first, DWORD count,
                                          DWORD listBase) {
    return wglUseFontBitmapsW(device, first, count, listBase);
}

BOOL wglErrorChecker::wcgmSwapBuffers(const char*, unsigned int, HDC device) { return SwapBuffers(device); }

BOOL wglErrorChecker::wcgmUseFontOutlinesA(const char*, unsigned int, HDC device, DWORD first, DWORD count,
                                           DWORD listBase, FLOAT deviation, FLOAT extrusion, int format,
                                           LPGLYPHMETRICSFLOAT metrics) {
    return wglUseFontOutlinesA(device, first, count, listBase, deviation, extrusion, format, metrics);
}

BOOL wglErrorChecker::wcgmUseFontOutlinesW(const char*, unsigned int, HDC device, DWORD first, DWORD count,
                                           DWORD listBase, FLOAT deviation, FLOAT extrusion, int format,
                                           LPGLYPHMETRICSFLOAT metrics) {
    return wglUseFontOutlinesW(device, first, count, listBase, deviation, extrusion, format, metrics);
}

BOOL wglErrorChecker::wcgmDescribeLayerPlane(const char*, unsigned int, HDC device, int pixelFormat,
                                             int layer, UINT size, LPLAYERPLANEDESCRIPTOR descriptor) {
    return wglDescribeLayerPlane(device, pixelFormat, layer, size, descriptor);
}

int wglErrorChecker::wcgmSetLayerPaletteEntries(const char*, unsigned int, HDC device, int layer, int start,
                                                int count, const COLORREF* colors) {
    return wglSetLayerPaletteEntries(device, layer, start, count, colors);
}

int wglErrorChecker::wcgmGetLayerPaletteEntries(const char*, unsigned int, HDC device, int layer, int start,
                                                int count, COLORREF* colors) {
    return wglGetLayerPaletteEntries(device, layer, start, count, colors);
}

BOOL wglErrorChecker::wcgmRealizeLayerPalette(const char*, unsigned int, HDC device, int layer,
                                              BOOL realize) {
    return wglRealizeLayerPalette(device, layer, realize);
}

BOOL wglErrorChecker::wcgmSwapLayerBuffers(const char*, unsigned int, HDC device, UINT planes) {
    return wglSwapLayerBuffers(device, planes);
}

DWORD wglErrorChecker::wcgmSwapMultipleBuffers(const char*, unsigned int, UINT count,
                                               const WGLSWAP* buffers) {
    return wglSwapMultipleBuffers(count, buffers);
}

} // namespace ZLT::OGL
