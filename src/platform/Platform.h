#pragma once

/// @file
/// The window system operations that the library uses, by their WGL, GDI and USER names. On Windows they
/// are the system's own. On Linux this header declares the same types and functions, which `zlt_ogl`
/// implements over EGL, GLX and a window system:
///
/// - With an X server (DISPLAY) a window is an X11 window made by anybody, an HWND is its XID, and the
///   display devices are the monitors.
/// - In a Wayland session without X (WAYLAND_DISPLAY) the display devices are the outputs. Windows made here
///   are surfaces that are never shown; `platform/Wayland.h` makes an HWND of a toolkit's surface.
/// - Without either, a window is a pbuffer, and the display devices are the EGL devices, laid out in rows: a
///   window belongs to the device that contains its top left corner.
/// - `ZLT_OGL_PLATFORM` set to `x11`, `wayland` or `headless` forces one of them. When the one that is forced
///   can't be used, or with any other text, there is no display device, and no window can be made.
///
/// A server that DISPLAY or WAYLAND_DISPLAY names and that can't be reached counts as no server;
/// startupNotes() has a sentence about it.
///
/// On Linux the names are in ZLT::Platform, and come to the global namespace by using-declarations. A program
/// that has such names of its own, in a shim for a port from Windows, defines `ZLT_OGL_NO_GLOBAL_NAMES`
/// before it includes the library's headers: then neither set of names replaces the other. BOOL is always
/// in ZLT::Platform only, since X11/Xmd.h has another type of this name.
///
/// A context that somebody else made current, through EGL or GLX, has handles here as well:
/// wglGetCurrentContext and wglGetCurrentDC report it, and wglMakeCurrent makes it current again. Nothing
/// here ever destroys it. While one of the contexts made here is current, the first context that somebody
/// else makes current in the process is seen only after a call of noticeCurrent().
///
/// A context that is current when its thread ends is released. A function that fails returns what it
/// returns on Windows and leaves an error number for GetLastError(). A handle that never existed, or that no
/// longer exists, is refused. All functions may be called from any thread.

#if defined(_WIN32)

#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

namespace ZLT::Platform {
using ::BOOL;
/// The system itself knows what is current.
inline void noticeCurrent() {}
} // namespace ZLT::Platform

#else

#include "Export.h"

#include <cstddef>
#include <cstdint>
#include <string>

// The calling conventions, which Linux has one of.
#ifndef WINAPI
#define WINAPI
#endif
#ifndef CALLBACK
#define CALLBACK
#endif

// Other headers define these two as macros.
#ifndef FALSE
#define FALSE 0
#endif
#ifndef TRUE
#define TRUE 1
#endif

namespace ZLT::Platform {

using BOOL = int;
using BYTE = std::uint8_t;
using CHAR = char;
using WORD = std::uint16_t;
using SHORT = std::int16_t;
using USHORT = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using INT = int;
using INT32 = std::int32_t;
using INT64 = std::int64_t;
using UINT = unsigned int;
using FLOAT = float;
using COLORREF = std::uint32_t;
using LPVOID = void*;
using HANDLE = void*;
using LPCSTR = const char*;
using PROC = void (*)();
using ATOM = WORD;
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

/// What the handles point at: opaque.
namespace Handles {
struct Window;
struct DeviceContext;
struct RenderingContext;
struct Monitor;
struct Menu;
struct Instance;
struct Icon;
struct Cursor;
struct Brush;
} // namespace Handles

using HWND = Handles::Window*;
using HDC = Handles::DeviceContext*;
using HGLRC = Handles::RenderingContext*;
using HMONITOR = Handles::Monitor*;
using HMENU = Handles::Menu*;
using HINSTANCE = Handles::Instance*;
using HMODULE = HINSTANCE;
using HICON = Handles::Icon*;
using HCURSOR = Handles::Cursor*;
using HBRUSH = Handles::Brush*;
using WNDPROC = LRESULT(CALLBACK*)(HWND, UINT, WPARAM, LPARAM);

constexpr DWORD ERROR_SUCCESS = 0;
constexpr DWORD ERROR_INVALID_HANDLE = 6;
constexpr DWORD ERROR_NOT_ENOUGH_MEMORY = 8;
constexpr DWORD ERROR_GEN_FAILURE = 31;
constexpr DWORD ERROR_NOT_SUPPORTED = 50;
constexpr DWORD ERROR_INVALID_PARAMETER = 87;
constexpr DWORD ERROR_MOD_NOT_FOUND = 126;
constexpr DWORD ERROR_PROC_NOT_FOUND = 127;
constexpr DWORD ERROR_BUSY = 170;
constexpr DWORD ERROR_INVALID_WINDOW_HANDLE = 1400;
constexpr DWORD ERROR_CANNOT_FIND_WND_CLASS = 1407;
constexpr DWORD ERROR_CLASS_ALREADY_EXISTS = 1410;
constexpr DWORD ERROR_CLASS_DOES_NOT_EXIST = 1411;
constexpr DWORD ERROR_CLASS_HAS_WINDOWS = 1412;
constexpr DWORD ERROR_INVALID_MONITOR_HANDLE = 1461;
constexpr DWORD ERROR_RESOURCE_NAME_NOT_FOUND = 1814;
constexpr DWORD ERROR_INVALID_PIXEL_FORMAT = 2000;
constexpr DWORD ERROR_INVALID_OPERATION = 4317;

constexpr UINT CS_CLASSDC = 0x0040;
constexpr DWORD WS_OVERLAPPEDWINDOW = 0x00CF0000;
constexpr DWORD WS_CLIPCHILDREN = 0x02000000;
constexpr DWORD WS_CLIPSIBLINGS = 0x04000000;
constexpr DWORD WS_VISIBLE = 0x10000000;
constexpr DWORD WS_POPUP = 0x80000000;
constexpr DWORD WS_EX_WINDOWEDGE = 0x00000100;
constexpr DWORD WS_EX_APPWINDOW = 0x00040000;
constexpr int SW_HIDE = 0;
constexpr int SW_SHOWNORMAL = 1;
/// The name of the system's arrow cursor: a number in place of a text.
inline const LPCSTR IDC_ARROW =
    reinterpret_cast<LPCSTR>(std::uintptr_t(0x7F00)); // NOLINT(performance-no-int-to-ptr)

constexpr DWORD DISPLAY_DEVICE_ATTACHED_TO_DESKTOP = 0x00000001;
constexpr DWORD DISPLAY_DEVICE_PRIMARY_DEVICE = 0x00000004;
constexpr DWORD DISPLAY_DEVICE_MIRRORING_DRIVER = 0x00000008;
constexpr DWORD ENUM_CURRENT_SETTINGS = 0xFFFFFFFF;
constexpr DWORD MONITOR_DEFAULTTONULL = 0;
constexpr DWORD MONITOR_DEFAULTTOPRIMARY = 1;
constexpr DWORD MONITOR_DEFAULTTONEAREST = 2;
constexpr DWORD MONITORINFOF_PRIMARY = 1;
constexpr DWORD DM_POSITION = 0x00000020;
constexpr DWORD DM_BITSPERPEL = 0x00040000;
constexpr DWORD DM_PELSWIDTH = 0x00080000;
constexpr DWORD DM_PELSHEIGHT = 0x00100000;

constexpr DWORD PFD_DOUBLEBUFFER = 0x00000001;
constexpr DWORD PFD_DRAW_TO_WINDOW = 0x00000004;
constexpr DWORD PFD_SUPPORT_OPENGL = 0x00000020;
constexpr DWORD PFD_GENERIC_FORMAT = 0x00000040;
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

struct POINTL {
    LONG x;
    LONG y;
};

struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

struct DISPLAY_DEVICEA {
    DWORD cb;
    CHAR DeviceName[32];
    CHAR DeviceString[128];
    DWORD StateFlags;
    CHAR DeviceID[128];
    CHAR DeviceKey[128];
};

struct DEVMODEA {
    BYTE dmDeviceName[32];
    WORD dmSpecVersion;
    WORD dmDriverVersion;
    WORD dmSize;
    WORD dmDriverExtra;
    DWORD dmFields;
    POINTL dmPosition;
    DWORD dmDisplayOrientation;
    DWORD dmDisplayFixedOutput;
    SHORT dmColor;
    SHORT dmDuplex;
    SHORT dmYResolution;
    SHORT dmTTOption;
    SHORT dmCollate;
    BYTE dmFormName[32];
    WORD dmLogPixels;
    DWORD dmBitsPerPel;
    DWORD dmPelsWidth;
    DWORD dmPelsHeight;
    DWORD dmDisplayFlags;
    DWORD dmDisplayFrequency;
    DWORD dmICMMethod;
    DWORD dmICMIntent;
    DWORD dmMediaType;
    DWORD dmDitherType;
    DWORD dmReserved1;
    DWORD dmReserved2;
    DWORD dmPanningWidth;
    DWORD dmPanningHeight;
};

struct MONITORINFO {
    DWORD cbSize;
    RECT rcMonitor;
    RECT rcWork;
    DWORD dwFlags;
};
struct MONITORINFOEXA : MONITORINFO {
    CHAR szDevice[32];
};

struct WNDCLASSEXA {
    UINT cbSize;
    UINT style;
    WNDPROC lpfnWndProc;
    int cbClsExtra;
    int cbWndExtra;
    HINSTANCE hInstance;
    HICON hIcon;
    HCURSOR hCursor;
    HBRUSH hbrBackground;
    LPCSTR lpszMenuName;
    LPCSTR lpszClassName;
    HICON hIconSm;
};

// Layer planes and glyph outlines exist only on Windows; the types are for the signatures.
using LPLAYERPLANEDESCRIPTOR = struct LAYERPLANEDESCRIPTOR*;
using LPGLYPHMETRICSFLOAT = struct GLYPHMETRICSFLOAT*;

struct WGLSWAP {
    HDC hdc;
    UINT uiFlags;
};

/// The error number of the calling thread's last failure.
ZLT_OGL_API DWORD GetLastError();
ZLT_OGL_API void SetLastError(DWORD error);

/// The display devices, from 0: FALSE past the last one. `device` must be null and the flags 0.
ZLT_OGL_API BOOL EnumDisplayDevicesA(LPCSTR device, DWORD index, DISPLAY_DEVICEA* record, DWORD flags);
/// The current position and size of a display device; `mode` must be ENUM_CURRENT_SETTINGS.
ZLT_OGL_API BOOL EnumDisplaySettingsA(LPCSTR device, DWORD mode, DEVMODEA* settings);
/// The monitor that shows most of the window, or the nearest, the primary or none, as `otherwise` says.
ZLT_OGL_API HMONITOR MonitorFromWindow(HWND window, DWORD otherwise);
/// Fills a MONITORINFO or a MONITORINFOEXA, as cbSize says.
ZLT_OGL_API BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* information);

/// The class "STATIC" always exists.
ZLT_OGL_API ATOM RegisterClassExA(const WNDCLASSEXA* description);
/// Refused while a window of the class exists.
ZLT_OGL_API BOOL UnregisterClassA(LPCSTR className, HINSTANCE instance);
ZLT_OGL_API LRESULT DefWindowProcW(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
ZLT_OGL_API HCURSOR LoadCursorA(HINSTANCE instance, LPCSTR name);
ZLT_OGL_API HMODULE GetModuleHandleA(LPCSTR module);
/// Windows have no frame of their own here, so the rectangle stays as it is.
ZLT_OGL_API BOOL AdjustWindowRectEx(RECT* rectangle, DWORD style, BOOL menu, DWORD exStyle);

/// A window of width x height pixels at (x, y) of the desktop. It has no events, and is hidden unless
/// the style has WS_VISIBLE. Parent and menu must be null.
ZLT_OGL_API HWND CreateWindowExA(DWORD exStyle, LPCSTR className, LPCSTR name, DWORD style, int x, int y,
                                 int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                 LPVOID data);
/// A window that CreateWindowExA made.
ZLT_OGL_API BOOL DestroyWindow(HWND window);
/// The content is undefined after a change of size.
ZLT_OGL_API BOOL MoveWindow(HWND window, int x, int y, int width, int height, BOOL repaint);
/// SW_HIDE hides the window, any other command shows it. Returns whether it was visible before.
ZLT_OGL_API BOOL ShowWindow(HWND window, int command);
ZLT_OGL_API BOOL GetClientRect(HWND window, RECT* rectangle);
/// The window's device context: always the same one, valid as long as the window.
ZLT_OGL_API HDC GetDC(HWND window);
ZLT_OGL_API int ReleaseDC(HWND window, HDC device);
/// The window of which it is the device context; null, without an error, for anything else.
ZLT_OGL_API HWND WindowFromDC(HDC device);

/// The index, from 1, of the format nearest to the one described, among those that the window can have. The
/// formats are EGL's configurations, all double buffered and then all single buffered; the formats of several
/// EGL devices follow one another. A pbuffer has one colour buffer in either form.
ZLT_OGL_API int ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted);
/// Describes the format, and returns how many there are. A context of somebody else has one format, number 1.
ZLT_OGL_API int DescribePixelFormat(HDC device, int format, UINT size, PIXELFORMATDESCRIPTOR* description);
ZLT_OGL_API int GetPixelFormat(HDC device);
/// Once for each window. A format that was chosen for a window of another visual or EGL device is replaced
/// by the nearest one that this window can have, which has at least its bits and the same samples.
ZLT_OGL_API BOOL SetPixelFormat(HDC device, int format, const PIXELFORMATDESCRIPTOR* description);
/// Shows what was drawn. EGL can swap only the current window: any other is refused, except one that is
/// never shown, which has nothing to swap.
ZLT_OGL_API BOOL SwapBuffers(HDC device);

ZLT_OGL_API BOOL wglCopyContext(HGLRC source, HGLRC destination, UINT mask);
ZLT_OGL_API HGLRC wglCreateContext(HDC device);
ZLT_OGL_API HGLRC wglCreateLayerContext(HDC device, int layer);
ZLT_OGL_API BOOL wglDeleteContext(HGLRC context);
ZLT_OGL_API HGLRC wglGetCurrentContext();
ZLT_OGL_API HDC wglGetCurrentDC();
/// Not null for any name that begins with "gl": the system's GL library has a function for each, and only the
/// driver's version and extensions say whether it does something. It knows the WGL extensions that
/// wglGetExtensionsStringARB names.
ZLT_OGL_API PROC wglGetProcAddress(LPCSTR name);
ZLT_OGL_API BOOL wglMakeCurrent(HDC device, HGLRC context);
/// Lets `second` share the objects of `first`. `second` must not have been current, nor share already.
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

/// How many windows, pbuffers and contexts of this layer are live in the process.
ZLT_OGL_API std::size_t liveHandles();
/// A sentence about the calling thread's last failure, to go with GetLastError(); "" when there was
/// none. It is valid until the thread's next failure.
ZLT_OGL_API const char* lastErrorText();
/// Why a window system or a driver could not be used when the displays were opened: a sentence for each, on
/// a line of its own. Empty when all could be used. Opens the displays if that has not happened yet.
///
/// @code
/// if (ZLT::OGL::Context::numDisplayDevice() == 0)
///     std::cerr << ZLT::Platform::startupNotes();
/// @endcode
ZLT_OGL_API std::string startupNotes();
/// Asks EGL and GLX what is current on the calling thread, even where the answer is believed to be known: the
/// wglGetCurrentContext that follows then sees a context that somebody else made current without this
/// layer. It costs two system calls: call it once for each context, not once for each GL call.
ZLT_OGL_API void noticeCurrent();

} // namespace ZLT::Platform

namespace ZLT {
using namespace Platform;
} // namespace ZLT

#if !defined(ZLT_OGL_NO_GLOBAL_NAMES)

using BYTE = ZLT::Platform::BYTE;
using CHAR = ZLT::Platform::CHAR;
using WORD = ZLT::Platform::WORD;
using SHORT = ZLT::Platform::SHORT;
using USHORT = ZLT::Platform::USHORT;
using DWORD = ZLT::Platform::DWORD;
using LONG = ZLT::Platform::LONG;
using INT = ZLT::Platform::INT;
using INT32 = ZLT::Platform::INT32;
using INT64 = ZLT::Platform::INT64;
using UINT = ZLT::Platform::UINT;
using FLOAT = ZLT::Platform::FLOAT;
using COLORREF = ZLT::Platform::COLORREF;
using LPVOID = ZLT::Platform::LPVOID;
using HANDLE = ZLT::Platform::HANDLE;
using LPCSTR = ZLT::Platform::LPCSTR;
using PROC = ZLT::Platform::PROC;
using ATOM = ZLT::Platform::ATOM;
using WPARAM = ZLT::Platform::WPARAM;
using LPARAM = ZLT::Platform::LPARAM;
using LRESULT = ZLT::Platform::LRESULT;
using HWND = ZLT::Platform::HWND;
using HDC = ZLT::Platform::HDC;
using HGLRC = ZLT::Platform::HGLRC;
using HMONITOR = ZLT::Platform::HMONITOR;
using HMENU = ZLT::Platform::HMENU;
using HINSTANCE = ZLT::Platform::HINSTANCE;
using HMODULE = ZLT::Platform::HMODULE;
using HICON = ZLT::Platform::HICON;
using HCURSOR = ZLT::Platform::HCURSOR;
using HBRUSH = ZLT::Platform::HBRUSH;
using WNDPROC = ZLT::Platform::WNDPROC;
using LPLAYERPLANEDESCRIPTOR = ZLT::Platform::LPLAYERPLANEDESCRIPTOR;
using LPGLYPHMETRICSFLOAT = ZLT::Platform::LPGLYPHMETRICSFLOAT;
using PIXELFORMATDESCRIPTOR = ZLT::Platform::PIXELFORMATDESCRIPTOR;
using POINTL = ZLT::Platform::POINTL;
using RECT = ZLT::Platform::RECT;
using DISPLAY_DEVICEA = ZLT::Platform::DISPLAY_DEVICEA;
using DEVMODEA = ZLT::Platform::DEVMODEA;
using MONITORINFO = ZLT::Platform::MONITORINFO;
using MONITORINFOEXA = ZLT::Platform::MONITORINFOEXA;
using WNDCLASSEXA = ZLT::Platform::WNDCLASSEXA;
using WGLSWAP = ZLT::Platform::WGLSWAP;

using ZLT::Platform::CS_CLASSDC;
using ZLT::Platform::DISPLAY_DEVICE_ATTACHED_TO_DESKTOP;
using ZLT::Platform::DISPLAY_DEVICE_MIRRORING_DRIVER;
using ZLT::Platform::DISPLAY_DEVICE_PRIMARY_DEVICE;
using ZLT::Platform::DM_BITSPERPEL;
using ZLT::Platform::DM_PELSHEIGHT;
using ZLT::Platform::DM_PELSWIDTH;
using ZLT::Platform::DM_POSITION;
using ZLT::Platform::ENUM_CURRENT_SETTINGS;
using ZLT::Platform::ERROR_BUSY;
using ZLT::Platform::ERROR_CANNOT_FIND_WND_CLASS;
using ZLT::Platform::ERROR_CLASS_ALREADY_EXISTS;
using ZLT::Platform::ERROR_CLASS_DOES_NOT_EXIST;
using ZLT::Platform::ERROR_CLASS_HAS_WINDOWS;
using ZLT::Platform::ERROR_GEN_FAILURE;
using ZLT::Platform::ERROR_INVALID_HANDLE;
using ZLT::Platform::ERROR_INVALID_MONITOR_HANDLE;
using ZLT::Platform::ERROR_INVALID_OPERATION;
using ZLT::Platform::ERROR_INVALID_PARAMETER;
using ZLT::Platform::ERROR_INVALID_PIXEL_FORMAT;
using ZLT::Platform::ERROR_INVALID_WINDOW_HANDLE;
using ZLT::Platform::ERROR_MOD_NOT_FOUND;
using ZLT::Platform::ERROR_NOT_ENOUGH_MEMORY;
using ZLT::Platform::ERROR_NOT_SUPPORTED;
using ZLT::Platform::ERROR_PROC_NOT_FOUND;
using ZLT::Platform::ERROR_RESOURCE_NAME_NOT_FOUND;
using ZLT::Platform::ERROR_SUCCESS;
using ZLT::Platform::IDC_ARROW;
using ZLT::Platform::MONITOR_DEFAULTTONEAREST;
using ZLT::Platform::MONITOR_DEFAULTTONULL;
using ZLT::Platform::MONITOR_DEFAULTTOPRIMARY;
using ZLT::Platform::MONITORINFOF_PRIMARY;
using ZLT::Platform::PFD_DOUBLEBUFFER;
using ZLT::Platform::PFD_DRAW_TO_WINDOW;
using ZLT::Platform::PFD_GENERIC_FORMAT;
using ZLT::Platform::PFD_SUPPORT_OPENGL;
using ZLT::Platform::PFD_TYPE_RGBA;
using ZLT::Platform::SW_HIDE;
using ZLT::Platform::SW_SHOWNORMAL;
using ZLT::Platform::WGL_SWAP_MAIN_PLANE;
using ZLT::Platform::WS_CLIPCHILDREN;
using ZLT::Platform::WS_CLIPSIBLINGS;
using ZLT::Platform::WS_EX_APPWINDOW;
using ZLT::Platform::WS_EX_WINDOWEDGE;
using ZLT::Platform::WS_OVERLAPPEDWINDOW;
using ZLT::Platform::WS_POPUP;
using ZLT::Platform::WS_VISIBLE;

using ZLT::Platform::AdjustWindowRectEx;
using ZLT::Platform::ChoosePixelFormat;
using ZLT::Platform::CreateWindowExA;
using ZLT::Platform::DefWindowProcW;
using ZLT::Platform::DescribePixelFormat;
using ZLT::Platform::DestroyWindow;
using ZLT::Platform::EnumDisplayDevicesA;
using ZLT::Platform::EnumDisplaySettingsA;
using ZLT::Platform::GetClientRect;
using ZLT::Platform::GetDC;
using ZLT::Platform::GetLastError;
using ZLT::Platform::GetModuleHandleA;
using ZLT::Platform::GetMonitorInfoA;
using ZLT::Platform::GetPixelFormat;
using ZLT::Platform::LoadCursorA;
using ZLT::Platform::MonitorFromWindow;
using ZLT::Platform::MoveWindow;
using ZLT::Platform::RegisterClassExA;
using ZLT::Platform::ReleaseDC;
using ZLT::Platform::SetLastError;
using ZLT::Platform::SetPixelFormat;
using ZLT::Platform::ShowWindow;
using ZLT::Platform::SwapBuffers;
using ZLT::Platform::UnregisterClassA;
using ZLT::Platform::wglCopyContext;
using ZLT::Platform::wglCreateContext;
using ZLT::Platform::wglCreateLayerContext;
using ZLT::Platform::wglDeleteContext;
using ZLT::Platform::wglDescribeLayerPlane;
using ZLT::Platform::wglGetCurrentContext;
using ZLT::Platform::wglGetCurrentDC;
using ZLT::Platform::wglGetLayerPaletteEntries;
using ZLT::Platform::wglGetProcAddress;
using ZLT::Platform::wglMakeCurrent;
using ZLT::Platform::wglRealizeLayerPalette;
using ZLT::Platform::wglSetLayerPaletteEntries;
using ZLT::Platform::wglShareLists;
using ZLT::Platform::wglSwapLayerBuffers;
using ZLT::Platform::wglSwapMultipleBuffers;
using ZLT::Platform::wglUseFontBitmapsA;
using ZLT::Platform::wglUseFontBitmapsW;
using ZLT::Platform::wglUseFontOutlinesA;
using ZLT::Platform::wglUseFontOutlinesW;
using ZLT::Platform::WindowFromDC;

#endif

#endif

// Handles of the WGL extensions, which <windows.h> lacks. They agree with those of GL/wglext.h.
// NOLINTBEGIN(bugprone-reserved-identifier)
using HPBUFFERARB = struct HPBUFFERARB__*;
using HPBUFFEREXT = struct HPBUFFEREXT__*;
using HVIDEOOUTPUTDEVICENV = struct HVIDEOOUTPUTDEVICENV__*;
using HPVIDEODEV = struct HPVIDEODEV__*;
using HGPUNV = struct HGPUNV__*;
using PGPU_DEVICE = struct _GPU_DEVICE*;
// NOLINTEND(bugprone-reserved-identifier)
