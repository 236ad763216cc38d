#pragma once

#include "capture/CaptureOutput.h"
#include "capture/CaptureSurroundings.h"
#include "capture/Export.h"
#include "extensionator/OpenGLInterceptorDecorator.h"

#include <cstdint>
#include <memory>
#include <string_view>

namespace ZLT::Capture {

struct CaptureShared;
using OGL::OpenGLInterceptor;
using OGL::OpenGLInterceptorDecorator;

/// A layer that captures every call with all that it points at, so that it can be done again: see
/// docs/capture-format.md for what is in a capture, and CapturePlayer for how it is played.
///
///     CaptureFileWriter file("scene.zlt");
///     OpenGLCapture capture(file);
///     const ScopedInterceptor installed(capture);
///     ...                      // draw
///     capture.swapping();      // before each swap; wglCapture does it for the calls of the WGL chain
///
/// Each call is made first and written then. Threads may call at once. The layer asks the driver about state
/// that it needs (arrays, the pixel store), never between glBegin and glEnd, and changes none.
class ZLT_CAPTURE_API OpenGLCapture : public OpenGLInterceptorDecorator {
public:
    using Options = CaptureOptions;

    /// @param output  not owned; lives longer than the layer
    explicit OpenGLCapture(CaptureOutput& output);
    OpenGLCapture(CaptureOutput& output, Options options);
    /// @param surroundings  not owned; null for those of the platform layer
    OpenGLCapture(CaptureOutput& output, Options options, CaptureSurroundings* surroundings);
    ~OpenGLCapture() override;

    /// The calling thread's context or its surfaces changed, by the window system's functions. A change of
    /// the context alone is seen without.
    void contextChanged();
    /// A context is no more. `context` as wglGetCurrentContext() gave it.
    void contextDestroyed(void* context);
    /// The contexts share their objects. Those that nobody tells of are taken for ones that don't.
    void contextsShare(void* first, void* second);
    /// The frame is complete, and about to be shown. To be called before the swap.
    /// @param surface  its id; 0 for the one that the current context draws to
    void swapping(std::uint64_t surface = 0);
    /// The window system gave pixels to the texture that is bound to `target` of the active unit
    /// (GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_RECTANGLE_ARB), by glXBindTexImageEXT for example. In the
    /// capture they are a call of glTexImage, at this place of the program. To be called after that function.
    /// @param what  told once in the capture if they can't be read at the time, as incomplete() does
    void texelsGiven(const char* file, unsigned int line, unsigned int target, std::string_view what);
    /// Something that can't be captured: told once in the capture.
    void incomplete(std::string_view what);
    /// The program begins a debug group, a part of a frame that has a name, or ends the last one; it says
    /// where it is; it calls an object something (`kind` as for glObjectLabel: GL_TEXTURE, GL_BUFFER, ...).
    /// To be called after those functions of `GL_KHR_debug` and the like, which no layer has, were called.
    void groupBegun(std::string_view name);
    void groupEnded();
    void marked(std::string_view text);
    void labelled(unsigned int kind, unsigned int name, std::string_view label);
    /// No call follows: the capture is complete.
    void end();

#include "extensionator/LayerEntries.inl"

private:
    std::unique_ptr<CaptureShared> shared_;
};

} // namespace ZLT::Capture
