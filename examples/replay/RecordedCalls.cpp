// The recording, compiled. ZLT_RECORDING is the file of its statements. They go through a chain of the
// replay's own, so a call that the driver refuses ends the replay with the statement's file and line.

#include "RecordedCalls.h"

#include "Replay.h"
#include "extensionator/gl_intercept.h"
#include "extensionator/gl_tokens.h"

#include <iostream>
#include <map>
#include <vector>

#define wglCreateContext(device) replay::createContext(device)
#define wglDeleteContext(context) replay::deleteContext(context)
#define wglShareLists(first, second) replay::shareLists(first, second)
#define wglCopyContext(source, destination, mask)                                                            \
    replay::copyContext((HGLRC)(source), (HGLRC)(destination), mask)
#define wglCreateLayerContext(device, layer) replay::createLayerContext(device, layer)
#define wglSwapLayerBuffers(device, planes) replay::swapLayerBuffers(device, planes)

void replayRecordedCalls() {
#include ZLT_RECORDING
}
