#pragma once

#include "Png.h"
#include "RecordingStream.h"
#include "platform/Platform.h"

#include <cstdint>
#include <iosfwd>
#include <map>

/// @file
/// What the statements of a recording expect of the program around them, under the names that they use.

extern RecordingStream* pBinaryInputStream;
/// The recorded device contexts and the replay's own ones.
extern std::map<HDC, HDC> hdc_map_;
extern HDC hDC_Ours;

/// The float with these bits.
float makeFloat(std::int32_t bits);

/// A call that the recording doesn't hold. Each text is counted.
void OpenGLRekorderUnsupported(const char* text);

/// The application's device context: stands for a window of the replay.
void addCurrentAppDC(HDC recorded);
/// Gives a recorded device context a window of the replay, unless it has one.
void GLRekorderCreateWindow(HDC recorded);
/// A recorded rendering context that appears for the first time is the oldest own one that nobody named yet:
/// the text has no other link between a creation and its result.
/// @throws std::runtime_error when there is none, or when it can't be made current
int GLRekorderMakeCurrent(HDC recordedDevice, HGLRC recordedContext);
/// Keeps the picture, then swaps.
int GLRekorderSwapBuffers(HDC recorded);

namespace replay {

/// Sets the size of all windows; the stream is for pBinaryInputStream.
void begin(int width, int height, RecordingStream& stream);
/// The picture of the last swap, or what the current context shows when nothing was swapped.
Picture end();
/// One line for each marker that was met, with how often.
void writeUnsupported(std::ostream& out);

// WGL calls that a recording makes on contexts: kept track of, or with handles of the recording.
HGLRC createContext(HDC own);
int deleteContext(HGLRC recorded);
int shareLists(HGLRC first, HGLRC second);
int copyContext(HGLRC source, HGLRC destination, UINT mask);
HGLRC createLayerContext(HDC recorded, int layer);
int swapLayerBuffers(HDC recorded, UINT planes);

} // namespace replay
