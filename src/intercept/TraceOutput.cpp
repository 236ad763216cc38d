#include "intercept/TraceOutput.h"

#include "extensionator/OpenGLCall.h"
#include "intercept/Contexts.h"
#include "intercept/Lock.h"
#include "intercept/Program.h"
#include "intercept/Thread.h"

#include <algorithm>
#include <mutex>
#include <string>

namespace ZLT::Interception {

namespace {

// Longer lines, of shaders for example, go in pieces.
constexpr std::size_t longestPiece = ringSize / 8;

// Of which thread and context the last line was.
constinit Lock lastLock;
std::uint32_t lastThread = 0;
std::uint32_t lastContext = 0;

void write(std::uint32_t site, std::string_view text) {
    ChannelWriter& writer = program().writer();
    for (; text.size() > longestPiece; text.remove_prefix(longestPiece))
        writer.write(RecordKind::Text, bytesOf(site), text.substr(0, longestPiece));
    writer.write(RecordKind::Line, bytesOf(site), text);
}

bool isWanted() {
    const std::uint64_t frame = program().writer().slot().frames.load(std::memory_order_relaxed) + 1;
    return frame >= program().options().firstFrame && frame <= program().options().lastFrame;
}

// The tracer's place is "@:17: ", in front of the function.
std::string_view withoutPlace(std::string_view text) {
    const std::size_t colon = text.find(':', 2);
    return colon == std::string_view::npos ? text : text.substr(std::min(colon + 2, text.size()));
}

} // namespace

TraceOutput::TraceOutput(OGL::OpenGLInterceptor& end) {
    stream_.imbue(std::locale::classic());
    tracer_.setInterceptor(&sender_.layer());
    sender_.layer().setInterceptor(&end);
}

bool TraceOutput::Sender::before(const OGL::OpenGLCall& call) {
    output_->send(call);
    return true;
}

void TraceOutput::send(const OGL::OpenGLCall& call) {
    stream_.clear(); // whatever failed in a line, the next one is written
    const std::uint32_t context = thread.context ? thread.context->number : 0;
    if (isWanted()) {
        const std::lock_guard guard(lastLock);
        if (lastThread != thread.number || lastContext != context) {
            lastThread = thread.number;
            lastContext = context;
            write(0, "// thread " + std::to_string(thread.number) +
                         (context ? ", context " + std::to_string(context) : ", no context") + "\n");
        }
        write(call.line(), withoutPlace(line_.text()));
    }
    line_.clear();
}

void TraceOutput::giveBack() { lastLock.giveBack(); }

void TraceOutput::markFrame(std::uint64_t frame) {
    if (isWanted())
        write(0, "// frame " + std::to_string(frame) + "\n");
}

void TraceOutput::Line::grow(std::size_t size) {
    const NoSignals calm;
    const std::size_t used = text().size();
    room_.resize(std::max(room_.size() * 2, used + size));
    clear();
    pbump(static_cast<int>(used));
}

TraceOutput::Line::int_type TraceOutput::Line::overflow(int_type letter) {
    if (traits_type::eq_int_type(letter, traits_type::eof()))
        return traits_type::not_eof(letter);
    grow(1);
    return sputc(traits_type::to_char_type(letter));
}

std::streamsize TraceOutput::Line::xsputn(const char* text, std::streamsize size) {
    if (epptr() - pptr() < size)
        grow(static_cast<std::size_t>(size));
    std::copy_n(text, size, pptr());
    pbump(static_cast<int>(size));
    return size;
}

} // namespace ZLT::Interception
