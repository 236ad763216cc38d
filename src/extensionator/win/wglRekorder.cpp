#include "extensionator/win/wglRekorder.h"

#include "extensionator/RecordForms.h"
#include "zlt/core/Enforce.h"

#include <ostream>

namespace ZLT::OGL {

using namespace RecordForms;

wglRekorder::wglRekorder() = default;

wglRekorder::wglRekorder(std::ostream& text, std::ostream& data, HDC device, wglInterceptor* next,
                         bool lineComments)
    : wglInterceptorDecorator(next), outputStream_(&text), binaryOutputStream_(&data),
      lineComments_(lineComments) {
    text << "addCurrentAppDC((HDC)0x" << Pointer(device) << ");\n";
}

wglRekorder::~wglRekorder() = default;

// Without casts and "0x", unlike every other handle: replays are written for it.
BOOL wglRekorder::wcgmCopyContext(const char* file, unsigned int line, HGLRC source, HGLRC destination,
                                  UINT mask) {
    *outputStream_ << "wglCopyContext(" << Pointer(source) << comma << Pointer(destination) << comma
                   << Number(mask) << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmCopyContext(file, line, source, destination, mask);
}

// The declaration of `iter` is repeated with each context, in no block of its own: the format is so.
HGLRC wglRekorder::wcgmCreateContext(const char* file, unsigned int line, HDC device) {
    *outputStream_ << "GLRekorderCreateWindow((HDC)0x" << Pointer(device) << ");\n"
                   << "std::map<HDC, HDC>::iterator iter = hdc_map_.find((HDC)0x" << Pointer(device) << ");\n"
                   << "if (iter == hdc_map_.end())\n"
                      "{\n"
                      "    std::cerr << \"Missing HDC in hdc_map_!\\n\";\n"
                      "}\n"
                      "hDC_Ours = iter->second;\n"
                      "wglCreateContext(hDC_Ours"
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmCreateContext(file, line, device);
}

HGLRC wglRekorder::wcgmCreateLayerContext(const char* file, unsigned int line, HDC device, int layer) {
    *outputStream_ << "wglCreateLayerContext((HDC)0x" << Pointer(device) << comma << Number(layer)
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmCreateLayerContext(file, line, device, layer);
}

BOOL wglRekorder::wcgmDeleteContext(const char* file, unsigned int line, HGLRC context) {
    *outputStream_ << "wglDeleteContext((HGLRC)0x" << Pointer(context) << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmDeleteContext(file, line, context);
}

HGLRC wglRekorder::wcgmGetCurrentContext(const char* file, unsigned int line) {
    *outputStream_ << "wglGetCurrentContext(" << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmGetCurrentContext(file, line);
}

HDC wglRekorder::wcgmGetCurrentDC(const char* file, unsigned int line) {
    *outputStream_ << "wglGetCurrentDC(" << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmGetCurrentDC(file, line);
}

// Straight to the platform: a layer behind this one never sees it.
PROC wglRekorder::wcgmGetProcAddress(const char* file, unsigned int line, LPCSTR name) {
    *outputStream_ << "OpenGLRekorderUnsupported(\"Unsupported function (wglGetProcAddress) called. \""
                   << CallEnd(lineComments_, file, line);
    return wglGetProcAddress(name);
}

BOOL wglRekorder::wcgmMakeCurrent(const char* file, unsigned int line, HDC device, HGLRC context) {
    *outputStream_ << "GLRekorderMakeCurrent((HDC)0x" << Pointer(device) << ", (HGLRC)0x" << Pointer(context)
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmMakeCurrent(file, line, device, context);
}

BOOL wglRekorder::wcgmShareLists(const char* file, unsigned int line, HGLRC first, HGLRC second) {
    *outputStream_ << "wglShareLists((HGLRC)0x" << Pointer(first) << ", (HGLRC)0x" << Pointer(second)
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmShareLists(file, line, first, second);
}

BOOL wglRekorder::wcgmUseFontBitmapsA(const char*, unsigned int, HDC, DWORD, DWORD, DWORD) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmUseFontBitmapsW(const char*, unsigned int, HDC, DWORD, DWORD, DWORD) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmSwapBuffers(const char* file, unsigned int line, HDC device) {
    *outputStream_ << "GLRekorderSwapBuffers((HDC)0x" << Pointer(device)
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmSwapBuffers(file, line, device);
}

BOOL wglRekorder::wcgmUseFontOutlinesA(const char*, unsigned int, HDC, DWORD, DWORD, DWORD, FLOAT, FLOAT, int,
                                       LPGLYPHMETRICSFLOAT) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmUseFontOutlinesW(const char*, unsigned int, HDC, DWORD, DWORD, DWORD, FLOAT, FLOAT, int,
                                       LPGLYPHMETRICSFLOAT) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmDescribeLayerPlane(const char*, unsigned int, HDC, int, int, UINT,
                                         LPLAYERPLANEDESCRIPTOR) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

int wglRekorder::wcgmSetLayerPaletteEntries(const char*, unsigned int, HDC, int, int, int, const COLORREF*) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

int wglRekorder::wcgmGetLayerPaletteEntries(const char*, unsigned int, HDC, int, int, int, COLORREF*) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmRealizeLayerPalette(const char*, unsigned int, HDC, int, BOOL) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

BOOL wglRekorder::wcgmSwapLayerBuffers(const char* file, unsigned int line, HDC device, UINT planes) {
    *outputStream_ << "wglSwapLayerBuffers((HDC)0x" << Pointer(device) << comma << Number(planes)
                   << CallEnd(lineComments_, file, line);
    return interceptor()->wcgmSwapLayerBuffers(file, line, device, planes);
}

DWORD wglRekorder::wcgmSwapMultipleBuffers(const char*, unsigned int, UINT, const WGLSWAP*) {
    ZLT_UNREACHABLE("Missing code to record this wgl function!");
}

} // namespace ZLT::OGL
