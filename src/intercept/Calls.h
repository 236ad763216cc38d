#pragma once

/// @file
/// The chain of each thread, and what happens to all of it.

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// The calling thread's first call, or one that found the thread without a chain: gives it one. Null where
/// the call is not for the layers.
/// @param frame  of the function that stands for GL's
OGL::OpenGLInterceptor* enterChain(const void* frame);
/// In a process that was forked off: all calls go straight to the driver, and what was told was told by the
/// parent.
void leaveAlone();
/// The program swapped its buffers.
void endFrame();
/// The program sets up the driver's messages for itself: ours are given up in this context.
void giveUpDriverMessages();

} // namespace ZLT::Interception
