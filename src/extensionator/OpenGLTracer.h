#pragma once

#include "extensionator/OpenGLInterceptorDecorator.h"

#include <iosfwd>
#include <iostream>

namespace ZLT::OGL {

/// A layer that writes one line of text for each call, then passes the call on:
///
///     main.cpp:41: glBindTexture(GL_TEXTURE_2D, 5)
///
/// The line is complete before the call is made, so the trace shows a call that fails, and output parameters
/// as they were before it. Results are not written. docs/trace-format.md says how each type of value looks;
/// numbers follow the flags, the precision and the locale of the stream, which the tracer never touches.
///
/// A parameter that points at characters or bytes (`GLchar`, `GLubyte`, `GLbyte`, `GLboolean`) is written as
/// text up to a zero byte, even where it is binary data or memory for a result. It must be readable up to
/// there and not null.
///
/// The tracer neither flushes nor checks the stream: what a failed stream loses is lost; the call is made.
/// When the stream is set to throw, the exception leaves the entry and the call is not made. The tracer takes
/// no lock; lines of threads that call at the same time mix.
class ZLT_OGL_API OpenGLTracer : public OpenGLInterceptorDecorator {
public:
    /// @param out   where to write; not owned, and must outlive the tracer's use
    /// @param next  the next layer; addInterceptor() replaces it. No call may pass while it is null
    OpenGLTracer(std::ostream& out = std::cout, OpenGLInterceptor* next = nullptr);
    /// Neither flushes nor closes the stream.
    ~OpenGLTracer() override;

    /// The stream in use, never null.
    std::ostream* outputStream();
    const std::ostream* outputStream() const;
    /// Writes to `out` from the next call on. The old stream is not flushed.
    void setOutputStream(std::ostream& out);

#include "extensionator/LayerEntries.inl"

private:
    std::ostream* outputStream_;
};

} // namespace ZLT::OGL
