#pragma once

#include "extensionator/OpenGLTracer.h"
#include "extensionator/OpenGLWatcher.h"

#include <ostream>
#include <streambuf>
#include <string>
#include <string_view>

namespace ZLT::Interception {

/// The trace of one thread: the tracer writes a line into memory, and a watcher behind it sends the line
/// before the call is made.
class TraceOutput {
public:
    explicit TraceOutput(OGL::OpenGLInterceptor& end);

    OGL::OpenGLInterceptor* head() { return &tracer_; }
    /// A comment: from here on, this is the frame.
    void markFrame(std::uint64_t frame);
    /// After a jump out of a call.
    static void giveBack();
    void dropLine() { line_.clear(); }

private:
    // Characters that are dropped when they were sent.
    class Line : public std::streambuf {
    public:
        Line() { clear(); }
        void clear() { setp(room_.data(), room_.data() + room_.size()); }
        std::string_view text() const { return {pbase(), static_cast<std::size_t>(pptr() - pbase())}; }

    protected:
        int_type overflow(int_type letter) override;
        std::streamsize xsputn(const char* text, std::streamsize size) override;

    private:
        void grow(std::size_t size);
        std::string room_ = std::string(1024, '\0');
    };
    class Sender : public OGL::OpenGLWatcher {
    public:
        explicit Sender(TraceOutput& output) : output_(&output) {}

    protected:
        bool before(const OGL::OpenGLCall& call) override;

    private:
        TraceOutput* output_;
    };

    void send(const OGL::OpenGLCall& call);

    Line line_;
    std::ostream stream_{&line_};
    OGL::OpenGLTracer tracer_{stream_};
    Sender sender_{*this};
};

} // namespace ZLT::Interception
