#include "capture/OpenGLCapture.h"

#include "capture/OpenGLCapture.inl"
#include "platform/Platform.h"

#include <algorithm>

namespace ZLT::Capture {

namespace {

std::atomic<std::uint64_t> captures = 0;

} // namespace

CaptureState& attachThread(CaptureShared& shared) {
    thread_local std::map<std::uint64_t, CaptureState*> known;
    CaptureState*& state = known[shared.id];
    if (!state) {
        const std::lock_guard guard(shared.lock);
        shared.states.push_back(std::make_unique<CaptureState>(shared, ++shared.threads));
        state = shared.states.back().get();
    }
    captureThread = {shared.id, state};
    return *state;
}

OpenGLCapture::OpenGLCapture(CaptureOutput& output) : OpenGLCapture(output, Options()) {}

OpenGLCapture::OpenGLCapture(CaptureOutput& output, Options options)
    : OpenGLCapture(output, options, nullptr) {}

OpenGLCapture::OpenGLCapture(CaptureOutput& output, Options options, CaptureSurroundings* surroundings)
    : OpenGLInterceptorDecorator(nullptr), shared_(std::make_unique<CaptureShared>()) {
    shared_->output = &output;
    shared_->options = options;
    if (!surroundings)
        shared_->ownSurroundings = platformSurroundings();
    shared_->surroundings = surroundings ? surroundings : shared_->ownSurroundings.get();
    shared_->id = ++captures;
}

OpenGLCapture::~OpenGLCapture() = default;

void OpenGLCapture::contextChanged() {
    CaptureState& state =
        captureThread.capture == shared_->id ? *captureThread.state : attachThread(*shared_);
    state.forgetContext();
}

void OpenGLCapture::contextDestroyed(void* context) {
    {
        const std::lock_guard guard(shared_->lock);
        if (!shared_->contexts.contains(context))
            return;
    }
    // While it is known: the thread may have made it current anew, and called nothing since.
    CaptureState& state = stateOf(*shared_);
    std::uint32_t number = 0;
    {
        const std::lock_guard guard(shared_->lock);
        if (auto known = shared_->contexts.extract(context)) {
            number = known.mapped()->number;
            shared_->formerContexts.push_back(std::move(known.mapped()));
        }
    }
    if (number != 0)
        state.send(EventRecord(Event::Destroyed).value(number));
}

void OpenGLCapture::contextsShare(void* first, void* second) {
    const std::lock_guard guard(shared_->lock);
    const std::uint64_t group = shared_->groupOf(first);
    shared_->sharing[first] = shared_->sharing[second] = group;
}

void OpenGLCapture::swapping(std::uint64_t surface) { stateOf(*shared_).swapping(surface); }

void OpenGLCapture::incomplete(std::string_view what) { stateOf(*shared_).incomplete(what); }

void OpenGLCapture::groupBegun(std::string_view name) {
    stateOf(*shared_).send(EventRecord(Event::Group).text(name));
}

void OpenGLCapture::groupEnded() { stateOf(*shared_).send(EventRecord(Event::GroupEnd)); }

void OpenGLCapture::marked(std::string_view text) {
    stateOf(*shared_).send(EventRecord(Event::Marker).text(text));
}

void OpenGLCapture::labelled(unsigned int kind, unsigned int name, std::string_view label) {
    stateOf(*shared_).send(EventRecord(Event::Label).value(kind).value(name).text(label));
}

void OpenGLCapture::end() { stateOf(*shared_).send(EventRecord(Event::End)); }

} // namespace ZLT::Capture
