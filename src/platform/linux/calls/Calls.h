#pragma once

#include "platform/linux/records/Errors.h"
#include "platform/linux/windows/WindowSystem.h"

/// @file
/// What the functions that the library calls by name share.

namespace ZLT::Platform {

/// The records, once the displays are open.
inline Records& opened() {
    windowSystem();
    return records();
}

/// Hears of the windows that somebody else destroyed meanwhile: they are no longer known then, and their
/// numbers may be given out again. Doesn't wait for the server, but hears of its end.
void forgetDestroyedWindows();
/// The window of a handle, where it is asked for now; one that somebody else made is entered with the first
/// call. Null, with the error, when there is none.
std::shared_ptr<Drawable> windowOf(HWND handle);
/// Gives the drawable surfaces of the window's size, unless it is current on another thread.
void refresh(Drawable& drawable);
/// Enters a drawable.
void enterDrawable(const std::shared_ptr<Drawable>& drawable);
/// Takes the drawable out and destroys its surfaces. False, with the error, when it is out already.
bool removeDrawable(Drawable& drawable);

BOOL WINAPI choosePixelFormatARB(HDC device, const int* integers, const FLOAT* reals, UINT capacity,
                                 int* formats, UINT* count);
BOOL WINAPI getPixelFormatAttribivARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      int* values);
BOOL WINAPI getPixelFormatAttribfvARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      FLOAT* values);

HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC share, const int* attributes);
BOOL WINAPI makeContextCurrentARB(HDC draw, HDC read, HGLRC context);
HDC WINAPI getCurrentReadDCARB();

BOOL WINAPI swapIntervalEXT(int interval);
int WINAPI getSwapIntervalEXT();

HPBUFFERARB WINAPI createPbufferARB(HDC device, int number, int width, int height, const int* attributes);
HDC WINAPI getPbufferDCARB(HPBUFFERARB pbuffer);
int WINAPI releasePbufferDCARB(HPBUFFERARB pbuffer, HDC device);
BOOL WINAPI destroyPbufferARB(HPBUFFERARB pbuffer);
BOOL WINAPI queryPbufferARB(HPBUFFERARB pbuffer, int attribute, int* value);

} // namespace ZLT::Platform
