#include "capture/CapturePlayer.h"

#include "capture/CapturePlay.h"

namespace ZLT::Capture {

void CapturePlay::playRecord() {
    callTime = 0;
    if (options.follows)
        listener.playing(call);
    if (call.function->number < eventCount)
        playEvent();
    else if (call.function->number != UINT32_MAX)
        playCall();
    else
        listener.incomplete(call.function->name + ", which is not known here, was left out");
    if (options.follows)
        listener.played(call, callTime);
}

bool CapturePlay::read() {
    if (!isRead)
        isRead = file.next(call);
    return isRead;
}

void CapturePlay::playThread(std::uint32_t thread, std::uint64_t frame) {
    while (frames == frame && read() && call.thread == thread) {
        isRead = false;
        playRecord();
    }
}

bool CapturePlay::playFrame() {
    const std::uint64_t frame = frames;
    while (frames == frame && read()) {
        const std::uint32_t thread = call.thread;
        threads.run(thread, [&] { playThread(thread, frame); });
    }
    return frames != frame;
}

CapturePlayer::CapturePlayer(CaptureFile& file, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                             PlayListener& listener, const Options& options)
    : play_(std::make_unique<CapturePlay>(file, system, gl, listener, options)) {}
CapturePlayer::~CapturePlayer() = default;

bool CapturePlayer::playFrame() { return play_->playFrame(); }

std::uint64_t CapturePlayer::callCount() const { return play_->calls; }
std::uint64_t CapturePlayer::frameCount() const { return play_->frames; }
std::uint64_t CapturePlayer::comparedCount() const { return play_->compared; }

} // namespace ZLT::Capture
