#pragma once

#include "platform/Platform.h"

/// @file
/// Windows of Wayland toolkits, on Linux. A Wayland client sees its own surfaces alone, so a toolkit's
/// surface has to be handed over together with its display.

struct wl_display;
struct wl_surface;

namespace ZLT::Platform {

/// The HWND that stands for a toolkit's surface, for ContextWindowed, ContextWrapped and the functions of
/// Platform.h. A second call with the same surface gives the same HWND the new size: call it when the toolkit
/// says that the window was resized. The size holds from the next frame on: after the next swap, or at once
/// where nothing was drawn since the last one.
///
/// DestroyWindow gives the HWND back; call it, and destroy the contexts, before the toolkit closes its
/// display. The surface stays the toolkit's, and so do its role, its place and its events. Nothing needs to
/// be current. May be called from the thread on which the toolkit works with the window.
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
/// @param surface  a surface that has no other EGL window on it that is drawn to
/// @param width    in pixels of the buffer, at least 1; and height
/// @return null when it can't be: GetLastError() and lastErrorText() say why. ERROR_NOT_SUPPORTED where the
///         window system in use is another one.
ZLT_OGL_API HWND windowFromWayland(wl_display* display, wl_surface* surface, int width, int height);

} // namespace ZLT::Platform
