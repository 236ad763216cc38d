#pragma once

#include "platform/Platform.h"

/// @file
/// Windows of Wayland toolkits, on Linux. A Wayland client sees only its own surfaces, so the program has to
/// give the library a toolkit's surface together with its display.

struct wl_display;
struct wl_surface;

namespace ZLT::Platform {

/// The HWND for a toolkit's surface, to be used with ContextWindowed, ContextWrapped and the functions of
/// Platform.h. A second call with the same surface gives the same HWND a new size: call it when the toolkit
/// says that the window was resized. The new size is used from the next frame on: after the next swap, or at
/// once where nothing was drawn since the last one.
///
/// DestroyWindow releases the HWND; call it, and destroy the contexts, before the toolkit closes its
/// display. The surface still belongs to the toolkit, with its role, position and events. No context needs
/// to be current. May be called from the thread on which the toolkit works with the window.
///
/// @code
/// SDL_SysWMinfo about;
/// SDL_VERSION(&about.version);
/// SDL_GetWindowWMInfo(window, &about);
/// HWND hwnd = ZLT::Platform::windowFromWayland(about.info.wl.display, about.info.wl.surface, 640, 480);
/// ContextWindowed context(hwnd, BufferFormat(BufferFormat::RGBA8_D24S8), Context::eDoubleBuffered,
///                         Context::eNoMultisample, nullptr);
/// @endcode
///
/// @param display  the toolkit's connection, to which the surface belongs
/// @param surface  a surface on which no other EGL window is drawn to
/// @param width    in pixels of the buffer, at least 1; the same for height
/// @return null on failure: GetLastError() and lastErrorText() say why. ERROR_NOT_SUPPORTED where another
///         window system is in use.
ZLT_OGL_API HWND windowFromWayland(wl_display* display, wl_surface* surface, int width, int height);

} // namespace ZLT::Platform
