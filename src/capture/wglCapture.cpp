#include "capture/wglCapture.h"

#include "capture/OpenGLCapture.h"

#include <cstdint>

namespace ZLT::Capture {

wglCapture::wglCapture(OpenGLCapture& capture) : wglInterceptorDecorator(nullptr), capture_(&capture) {}
wglCapture::~wglCapture() = default;

namespace {

std::uint64_t idOf(HDC device) { return reinterpret_cast<std::uintptr_t>(device); }

} // namespace

BOOL wglCapture::wcgmCopyContext(const char* file, unsigned int line, HGLRC source, HGLRC destination,
                                 UINT mask) {
    const BOOL success = interceptor()->wcgmCopyContext(file, line, source, destination, mask);
    if (success)
        capture_->incomplete("what wglCopyContext copied");
    return success;
}

HGLRC wglCapture::wcgmCreateContext(const char* file, unsigned int line, HDC device) {
    return interceptor()->wcgmCreateContext(file, line, device);
}

HGLRC wglCapture::wcgmCreateLayerContext(const char* file, unsigned int line, HDC device, int layer) {
    return interceptor()->wcgmCreateLayerContext(file, line, device, layer);
}

BOOL wglCapture::wcgmDeleteContext(const char* file, unsigned int line, HGLRC context) {
    const BOOL success = interceptor()->wcgmDeleteContext(file, line, context);
    if (success)
        capture_->contextDestroyed(context);
    return success;
}

HGLRC wglCapture::wcgmGetCurrentContext(const char* file, unsigned int line) {
    return interceptor()->wcgmGetCurrentContext(file, line);
}

HDC wglCapture::wcgmGetCurrentDC(const char* file, unsigned int line) {
    return interceptor()->wcgmGetCurrentDC(file, line);
}

PROC wglCapture::wcgmGetProcAddress(const char* file, unsigned int line, LPCSTR name) {
    return interceptor()->wcgmGetProcAddress(file, line, name);
}

BOOL wglCapture::wcgmMakeCurrent(const char* file, unsigned int line, HDC device, HGLRC context) {
    const BOOL success = interceptor()->wcgmMakeCurrent(file, line, device, context);
    if (success)
        capture_->contextChanged();
    return success;
}

BOOL wglCapture::wcgmShareLists(const char* file, unsigned int line, HGLRC first, HGLRC second) {
    const BOOL success = interceptor()->wcgmShareLists(file, line, first, second);
    if (success)
        capture_->contextsShare(first, second);
    return success;
}

BOOL wglCapture::wcgmUseFontBitmapsA(const char* file, unsigned int line, HDC device, DWORD first,
                                     DWORD count, DWORD listBase) {
    const BOOL success = interceptor()->wcgmUseFontBitmapsA(file, line, device, first, count, listBase);
    if (success)
        capture_->incomplete("the display lists of wglUseFontBitmapsA");
    return success;
}

BOOL wglCapture::wcgmUseFontBitmapsW(const char* file, unsigned int line, HDC device, DWORD first,
                                     DWORD count, DWORD listBase) {
    const BOOL success = interceptor()->wcgmUseFontBitmapsW(file, line, device, first, count, listBase);
    if (success)
        capture_->incomplete("the display lists of wglUseFontBitmapsW");
    return success;
}

BOOL wglCapture::wcgmSwapBuffers(const char* file, unsigned int line, HDC device) {
    capture_->swapping(idOf(device));
    return interceptor()->wcgmSwapBuffers(file, line, device);
}

BOOL wglCapture::wcgmUseFontOutlinesA(const char* file, unsigned int line, HDC device, DWORD first,
                                      DWORD count, DWORD listBase, FLOAT deviation, FLOAT extrusion,
                                      int format, LPGLYPHMETRICSFLOAT metrics) {
    const BOOL success = interceptor()->wcgmUseFontOutlinesA(file, line, device, first, count, listBase,
                                                             deviation, extrusion, format, metrics);
    if (success)
        capture_->incomplete("the display lists of wglUseFontOutlinesA");
    return success;
}

BOOL wglCapture::wcgmUseFontOutlinesW(const char* file, unsigned int line, HDC device, DWORD first,
                                      DWORD count, DWORD listBase, FLOAT deviation, FLOAT extrusion,
                                      int format, LPGLYPHMETRICSFLOAT metrics) {
    const BOOL success = interceptor()->wcgmUseFontOutlinesW(file, line, device, first, count, listBase,
                                                             deviation, extrusion, format, metrics);
    if (success)
        capture_->incomplete("the display lists of wglUseFontOutlinesW");
    return success;
}

BOOL wglCapture::wcgmDescribeLayerPlane(const char* file, unsigned int line, HDC device, int pixelFormat,
                                        int layer, UINT size, LPLAYERPLANEDESCRIPTOR descriptor) {
    return interceptor()->wcgmDescribeLayerPlane(file, line, device, pixelFormat, layer, size, descriptor);
}

int wglCapture::wcgmSetLayerPaletteEntries(const char* file, unsigned int line, HDC device, int layer,
                                           int start, int count, const COLORREF* colors) {
    return interceptor()->wcgmSetLayerPaletteEntries(file, line, device, layer, start, count, colors);
}

int wglCapture::wcgmGetLayerPaletteEntries(const char* file, unsigned int line, HDC device, int layer,
                                           int start, int count, COLORREF* colors) {
    return interceptor()->wcgmGetLayerPaletteEntries(file, line, device, layer, start, count, colors);
}

BOOL wglCapture::wcgmRealizeLayerPalette(const char* file, unsigned int line, HDC device, int layer,
                                         BOOL realize) {
    return interceptor()->wcgmRealizeLayerPalette(file, line, device, layer, realize);
}

BOOL wglCapture::wcgmSwapLayerBuffers(const char* file, unsigned int line, HDC device, UINT planes) {
    capture_->swapping(idOf(device));
    return interceptor()->wcgmSwapLayerBuffers(file, line, device, planes);
}

DWORD wglCapture::wcgmSwapMultipleBuffers(const char* file, unsigned int line, UINT count,
                                          const WGLSWAP* buffers) {
    for (UINT i = 0; i < count; ++i)
        capture_->swapping(idOf(buffers[i].hdc));
    return interceptor()->wcgmSwapMultipleBuffers(file, line, count, buffers);
}

} // namespace ZLT::Capture
