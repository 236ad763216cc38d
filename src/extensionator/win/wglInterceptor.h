#pragma once

#include "Export.h"
#include "platform/Platform.h"

namespace ZLT::OGL {

class wglInterceptorDecorator;

/// The smaller chain, for a client's WGL calls: OpenGLInterceptor's mechanics over 20 functions. A client
/// calls `wcgmName(file, line, arguments)` instead of `wglName(arguments)`; the call passes through the
/// layers that were added and ends in a wglErrorChecker, which hands it to the platform. `CWGM` fills in file
/// and line:
///
///     CWGM(MakeCurrent, device, context);
///
/// Functions of WGL extensions are not in it. Independent of the GL chain, and like it not locked: layers are
/// added and taken off by one thread at a time, while no other is in a call.
class ZLT_OGL_API wglInterceptor {
public:
    wglInterceptor(const wglInterceptor&) = delete;
    wglInterceptor& operator=(const wglInterceptor&) = delete;

    /// The head of the chain: the layer that was added last, or the wglErrorChecker, which is made when the
    /// chain is empty. The chain owns the checker and the client every other layer. Needs no
    /// context and no initialised library. Null only when there was no memory for the checker.
    static wglInterceptor* Instance();

    /// Deletes the checker and empties the chain, which does nothing to an empty one. Pop all layers first.
    /// @throws InternalException "Enforce dynamic_cast<wglErrorChecker *>(gInterceptor) != NULL" while
    ///         a layer is installed; the chain is unchanged then
    static void destroy();

    /// Pushes `layer` in front of the chain and makes the old head its next layer. Nothing is checked.
    /// @param layer  stays the client's, and must live until it was popped
    void addInterceptor(wglInterceptorDecorator* layer);

    /// Takes the head off the chain and hands it back to its owner.
    /// @return null, and nothing is changed, when only the checker is there or nothing at all
    wglInterceptorDecorator* popInterceptor();

    virtual BOOL wcgmCopyContext(const char* file, unsigned int line, HGLRC source, HGLRC destination,
                                 UINT mask) = 0;
    virtual HGLRC wcgmCreateContext(const char* file, unsigned int line, HDC device) = 0;
    virtual HGLRC wcgmCreateLayerContext(const char* file, unsigned int line, HDC device, int layer) = 0;
    virtual BOOL wcgmDeleteContext(const char* file, unsigned int line, HGLRC context) = 0;
    virtual HGLRC wcgmGetCurrentContext(const char* file, unsigned int line) = 0;
    virtual HDC wcgmGetCurrentDC(const char* file, unsigned int line) = 0;
    virtual PROC wcgmGetProcAddress(const char* file, unsigned int line, LPCSTR name) = 0;
    virtual BOOL wcgmMakeCurrent(const char* file, unsigned int line, HDC device, HGLRC context) = 0;
    virtual BOOL wcgmShareLists(const char* file, unsigned int line, HGLRC first, HGLRC second) = 0;
    virtual BOOL wcgmUseFontBitmapsA(const char* file, unsigned int line, HDC device, DWORD first,
                                     DWORD count, DWORD listBase) = 0;
    virtual BOOL wcgmUseFontBitmapsW(const char* file, unsigned int line, HDC device, DWORD first,
                                     DWORD count, DWORD listBase) = 0;
    virtual BOOL wcgmSwapBuffers(const char* file, unsigned int line, HDC device) = 0;
    virtual BOOL wcgmUseFontOutlinesA(const char* file, unsigned int line, HDC device, DWORD first,
                                      DWORD count, DWORD listBase, FLOAT deviation, FLOAT extrusion,
                                      int format, LPGLYPHMETRICSFLOAT metrics) = 0;
    virtual BOOL wcgmUseFontOutlinesW(const char* file, unsigned int line, HDC device, DWORD first,
                                      DWORD count, DWORD listBase, FLOAT deviation, FLOAT extrusion,
                                      int format, LPGLYPHMETRICSFLOAT metrics) = 0;
    virtual BOOL wcgmDescribeLayerPlane(const char* file, unsigned int line, HDC device, int pixelFormat,
                                        int layer, UINT size, LPLAYERPLANEDESCRIPTOR descriptor) = 0;
    virtual int wcgmSetLayerPaletteEntries(const char* file, unsigned int line, HDC device, int layer,
                                           int start, int count, const COLORREF* colors) = 0;
    virtual int wcgmGetLayerPaletteEntries(const char* file, unsigned int line, HDC device, int layer,
                                           int start, int count, COLORREF* colors) = 0;
    virtual BOOL wcgmRealizeLayerPalette(const char* file, unsigned int line, HDC device, int layer,
                                         BOOL realize) = 0;
    virtual BOOL wcgmSwapLayerBuffers(const char* file, unsigned int line, HDC device, UINT planes) = 0;
    virtual DWORD wcgmSwapMultipleBuffers(const char* file, unsigned int line, UINT count,
                                          const WGLSWAP* buffers) = 0;

    virtual ~wglInterceptor();

protected:
    wglInterceptor();
};

} // namespace ZLT::OGL

/// Calls `wgl<name>` (or `SwapBuffers`) through the WGL chain, with the file and line of this place.
#define CWGM(name, ...)                                                                                      \
    (::ZLT::OGL::wglInterceptor::Instance()->wcgm##name(__FILE__, __LINE__ __VA_OPT__(, ) __VA_ARGS__))
