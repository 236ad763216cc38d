#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

/// @file
/// The capture of a foreign program: what its threads and contexts do, into the channel. Each function does
/// nothing where no capture is wanted.

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// The head of the chain of a program that is captured: one for all threads.
OGL::OpenGLInterceptor* captureOf(OGL::OpenGLInterceptor& end);
/// Whether the program is captured now.
bool isCaptured();
/// The calling thread's context or its surfaces changed.
void captureCurrent(std::uint64_t draw, std::uint64_t read, void* display, bool isEgl = false);
/// @param context  what wglGetCurrentContext() gives of it here; null for none
void captureDestroyed(void* context);
/// Before the surface is swapped; 0 for the current one.
void captureSwap(std::uint64_t surface);
/// Does `work` with calls that the capture has as the program's; not where no capture is wanted.
void captureCalls(const std::function<void(OGL::OpenGLInterceptor&)>& work);
/// The window system gave pixels to the texture that is bound to a target of GL, for the program that called
/// from `returnAddress`. `what` is told where they can't be captured.
void captureTexels(unsigned int target, const char* what, const void* returnAddress);
/// Something that is not captured.
void captureIncomplete(const char* what);

/// What the program says of its calls: the name of a debug group that it begins, null where it ends one;
/// where it is; what it calls an object.
void captureGroup(const char* name, std::size_t length);
void captureMarker(const char* text, std::size_t length);
void captureLabel(unsigned int kind, unsigned int name, const char* label, std::size_t length);

/// The size of a surface of the calling thread's window system.
/// @return whether it is known
bool sizeOfSurface(std::uint64_t surface, int& width, int& height);

} // namespace ZLT::Interception
