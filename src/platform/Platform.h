#pragma once

/// @file
/// The window system operations that the library stands on, by their WGL, GDI and USER names. On Windows they
/// are the system's own. On Linux this header declares the same types and functions, which `zlt_ogl`
/// implements over EGL: a window is then a pbuffer of its size, which needs no X server. A context that is
/// current when its thread ends is current no more. A function that fails returns what it returns on Windows
/// and leaves an error number for GetLastError(). A handle that was never given out, or is gone, is refused.

#if defined(_WIN32)

#include <windows.h>

#else

#include "Export.h"

#include <cstdint>

using BOOL = int;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using UINT = unsigned int;
using FLOAT = float;
using COLORREF = std::uint32_t;
using LPVOID = void*;
using LPCSTR = const char*;
using PROC = void (*)();

namespace ZLT::Platform {
struct Window;
struct DeviceContext;
struct RenderingContext;
struct Menu;
struct Instance;
} // namespace ZLT::Platform

using HWND = ZLT::Platform::Window*;
using HDC = ZLT::Platform::DeviceContext*;
using HGLRC = ZLT::Platform::RenderingContext*;
using HMENU = ZLT::Platform::Menu*;
using HINSTANCE = ZLT::Platform::Instance*;

// Other headers define these two as macros.
#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_BUSY = 170;
constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
constexpr DWORD ERROR_INVALID_PIXEL_FORMAT = 2000;
constexpr DWORD ERROR_INVALID_OPERATION = 4317;

constexpr DWORD WS_POPUP = 0x80000000;

constexpr DWORD PFD_DOUBLEBUFFER = 0x00000001;
constexpr DWORD PFD_DRAW_TO_WINDOW = 0x00000004;
constexpr DWORD PFD_SUPPORT_OPENGL = 0x00000020;
constexpr BYTE PFD_TYPE_RGBA = 0;
constexpr UINT WGL_SWAP_MAIN_PLANE = 1;

struct PIXELFORMATDESCRIPTOR {
    WORD nSize;
    WORD nVersion;
    DWORD dwFlags;
    BYTE iPixelType;
    BYTE cColorBits;
    BYTE cRedBits;
    BYTE cRedShift;
    BYTE cGreenBits;
    BYTE cGreenShift;
    BYTE cBlueBits;
    BYTE cBlueShift;
    BYTE cAlphaBits;
    BYTE cAlphaShift;
    BYTE cAccumBits;
    BYTE cAccumRedBits;
    BYTE cAccumGreenBits;
    BYTE cAccumBlueBits;
    BYTE cAccumAlphaBits;
    BYTE cDepthBits;
    BYTE cStencilBits;
    BYTE cAuxBuffers;
    BYTE iLayerType;
    BYTE bReserved;
    DWORD dwLayerMask;
    DWORD dwVisibleMask;
    DWORD dwDamageMask;
};

// Layer planes and glyph outlines exist on Windows alone; the types serve the signatures.
using LPLAYERPLANEDESCRIPTOR = struct LAYERPLANEDESCRIPTOR*;
using LPGLYPHMETRICSFLOAT = struct GLYPHMETRICSFLOAT*;

struct WGLSWAP {
    HDC hdc;
    UINT uiFlags;
};

/// The error number of the calling thread's last failure.
ZLT_OGL_API DWORD GetLastError();
ZLT_OGL_API void SetLastError(DWORD error);

/// A window of width x height pixels; class, texts, place, parent, menu and instance don't matter.
ZLT_OGL_API HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR name, DWORD style, int x, int y,
                                 int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                 LPVOID data);
ZLT_OGL_API BOOL DestroyWindow(HWND window);
/// The window's device context: always the same one, valid as long as the window.
ZLT_OGL_API HDC GetDC(HWND window);
ZLT_OGL_API int ReleaseDC(HWND window, HDC device);

/// The index, from 1, of the format nearest to the one described.
ZLT_OGL_API int ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted);
/// Describes the format, and returns how many there are.
ZLT_OGL_API int DescribePixelFormat(HDC device, int format, UINT size, PIXELFORMATDESCRIPTOR* description);
ZLT_OGL_API int GetPixelFormat(HDC device);
/// Once for each window.
ZLT_OGL_API BOOL SetPixelFormat(HDC device, int format, const PIXELFORMATDESCRIPTOR* description);
/// A pbuffer has nothing to show: ends the frame of the current window, and does nothing for another.
ZLT_OGL_API BOOL SwapBuffers(HDC device);

ZLT_OGL_API BOOL wglCopyContext(HGLRC source, HGLRC destination, UINT mask);
ZLT_OGL_API HGLRC wglCreateContext(HDC device);
ZLT_OGL_API HGLRC wglCreateLayerContext(HDC device, int layer);
ZLT_OGL_API BOOL wglDeleteContext(HGLRC context);
ZLT_OGL_API HGLRC wglGetCurrentContext();
ZLT_OGL_API HDC wglGetCurrentDC();
/// Not null for any name that begins with "gl": the system's GL library has a function for each, and only the
/// driver's version and extensions tell whether it does something.
ZLT_OGL_API PROC wglGetProcAddress(LPCSTR name);
ZLT_OGL_API BOOL wglMakeCurrent(HDC device, HGLRC context);
/// Lets `second` share what `first` has. `second` was never current, and shares with nobody yet.
ZLT_OGL_API BOOL wglShareLists(HGLRC first, HGLRC second);
ZLT_OGL_API BOOL wglUseFontBitmapsA(HDC device, DWORD first, DWORD count, DWORD listBase);
ZLT_OGL_API BOOL wglUseFontBitmapsW(HDC device, DWORD first, DWORD count, DWORD listBase);
ZLT_OGL_API BOOL wglUseFontOutlinesA(HDC device, DWORD first, DWORD count, DWORD listBase, FLOAT deviation,
                                     FLOAT extrusion, int format, LPGLYPHMETRICSFLOAT metrics);
ZLT_OGL_API BOOL wglUseFontOutlinesW(HDC device, DWORD first, DWORD count, DWORD listBase, FLOAT deviation,
                                     FLOAT extrusion, int format, LPGLYPHMETRICSFLOAT metrics);
ZLT_OGL_API BOOL wglDescribeLayerPlane(HDC device, int pixelFormat, int layer, UINT size,
                                       LPLAYERPLANEDESCRIPTOR descriptor);
ZLT_OGL_API int wglSetLayerPaletteEntries(HDC device, int layer, int start, int count,
                                          const COLORREF* colors);
ZLT_OGL_API int wglGetLayerPaletteEntries(HDC device, int layer, int start, int count, COLORREF* colors);
ZLT_OGL_API BOOL wglRealizeLayerPalette(HDC device, int layer, BOOL realize);
ZLT_OGL_API BOOL wglSwapLayerBuffers(HDC device, UINT planes);
/// Bit i of the result is set when buffer i was swapped.
ZLT_OGL_API DWORD wglSwapMultipleBuffers(UINT count, const WGLSWAP* buffers);

#endif
