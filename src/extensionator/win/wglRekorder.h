#pragma once

#include "extensionator/win/wglInterceptorDecorator.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <iosfwd>
#include <list>

namespace ZLT::OGL {

/// A layer that records WGL calls as source text, in the style of OpenGLRekorder: built over the same text
/// stream as that one, it puts the changes of contexts between the GL calls. Device contexts and rendering
/// contexts are in the text as the handles that they were, and a replay maps them to its own: for calls
/// that depend on a window the text calls helpers that the replay supplies (docs/recording-format.md).
///
/// Nine functions can't be recorded (fonts, layer planes and palettes, wglSwapMultipleBuffers): they throw
/// InternalException "!\"Missing code to record this wgl function!\"", write nothing and don't reach the
/// driver. `wcgmGetProcAddress` leaves a marker and goes straight to the platform, without the layers after
/// this one.
class ZLT_OGL_API wglRekorder : public wglInterceptorDecorator {
public:
    /// No call may pass through an object made this way.
    wglRekorder();

    /// Introduces the application's device context to the replay by a first statement.
    /// @param text          gets the statements; not owned
    /// @param data          kept for symmetry with OpenGLRekorder and never written; not owned
    /// @param device        the application's device context, written as a number and not used otherwise
    /// @param next          the next layer; addInterceptor() replaces it
    /// @param lineComments  whether each statement shows the caller's file and line
    wglRekorder(std::ostream& text, std::ostream& data, HDC device, wglInterceptor* next, bool lineComments);
    /// Neither writes nor flushes.
    ~wglRekorder() override;

#include "extensionator/win/wglLayerEntries.inl"

private:
    std::ostream* outputStream_ = nullptr;
    std::ostream* binaryOutputStream_ = nullptr;
    std::list<void*, ZLTAllocator<void*>> handles_; // stays empty
    bool lineComments_ = false;
};

} // namespace ZLT::OGL
