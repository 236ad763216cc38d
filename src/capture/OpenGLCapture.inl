#pragma once

#include "capture/CallWriter.h"
#include "capture/CaptureState.h"
#include "capture/OpenGLCapture.h"
#include "extensionator/NextLayer.h"
#include "platform/Platform.h"

/// @file
/// What the entries of the capturing layer are made of.

namespace ZLT::Capture {

using OGL::NextLayer;

/// A thread's first call, or one after calls of another capture.
CaptureState& attachThread(CaptureShared& shared);

inline CaptureState& stateOf(CaptureShared& shared) {
    CaptureState& state = captureThread.capture == shared.id ? *captureThread.state : attachThread(shared);
    if (wglGetCurrentContext() != state.handle()) [[unlikely]]
        state.noticeContext();
    return state;
}

} // namespace ZLT::Capture
