#include "intercept/CallCapture.h"

#include "capture/CaptureOutput.h"
#include "capture/CaptureState.h"
#include "capture/OpenGLCapture.h"
#include "intercept/Contexts.h"
#include "intercept/Lock.h"
#include "intercept/Program.h"
#include "intercept/Sites.h"
#include "intercept/Thread.h"

#include <atomic>

namespace ZLT::Interception {

namespace {

// Everything goes to the command, which writes the file: whatever becomes of the program, it is there.
class ChannelOutput final : public Capture::CaptureOutput {
public:
    void record(std::uint32_t number, std::string_view bytes) override {
        program().writer().write(callOf(number), bytes);
    }
    std::uint32_t siteOf(const char*, unsigned int line) override { return line; }
    std::uint32_t store(std::string_view bytes) override {
        const NoSignals calm; // it allocates, and has a lock
        return CaptureOutput::store(bytes);
    }
    void frameEnded() override;

protected:
    void data(std::uint32_t number, std::string_view bytes) override {
        constexpr std::size_t longest = ringSize / 8;
        const DataRecord head = {number, 0, bytes.size()};
        do {
            program().writer().write(RecordKind::Data, bytesOf(head), bytes.substr(0, longest));
            bytes.remove_prefix(std::min(longest, bytes.size()));
        } while (!bytes.empty());
    }
};

class ProgramSurroundings final : public Capture::CaptureSurroundings {
public:
    std::uint64_t drawSurface() override { return thread.drawSurface; }
    std::uint64_t readSurface() override { return thread.readSurface; }
    Size sizeOf(std::uint64_t surface) override {
        Size size;
        return sizeOfSurface(surface, size.width, size.height) ? size : Size();
    }
    std::uint64_t shareGroupOf(void*) override {
        return thread.context ? reinterpret_cast<std::uintptr_t>(thread.context->lists.get()) : 0;
    }
};

std::atomic<Capture::OpenGLCapture*> theCapture = nullptr;

// Null while nothing is captured.
Capture::OpenGLCapture* capture() {
    return program().isActive() ? theCapture.load(std::memory_order_acquire) : nullptr;
}

void ChannelOutput::frameEnded() {
    if (program().countFrame() - 1 < program().options().lastFrame)
        return;
    theCapture.load()->end();
    program().stop();
}

} // namespace

OGL::OpenGLInterceptor* captureOf(OGL::OpenGLInterceptor& end) {
    // Never destroyed: programs call GL while they end.
    static Capture::OpenGLCapture* const made = [&end] {
        auto* const output = new ChannelOutput;
        Capture::OpenGLCapture::Options options;
        options.hashPictures = program().options().hashPictures;
        auto* const layer = new Capture::OpenGLCapture(*output, options, new ProgramSurroundings);
        layer->setInterceptor(&end);
        return layer;
    }();
    theCapture.store(made, std::memory_order_release);
    return made;
}

bool isCaptured() { return capture() && !thread.inside; }

void captureCurrent(std::uint64_t draw, std::uint64_t read, void* display, bool isEgl) {
    thread.drawSurface = draw;
    thread.readSurface = read;
    thread.display = display;
    thread.isEgl = isEgl;
    if (Capture::OpenGLCapture* const layer = capture()) {
        const NoSignals calm;
        layer->contextChanged();
    }
}

namespace {

// From the program's functions, in which it must see nothing of this.
template <class Work>
void captured(const Work& work) {
    if (Capture::OpenGLCapture* const layer = capture();
        layer && !thread.inside && !(thread.context && !thread.context->isDesktop)) {
        const NoSignals calm;
        const Inside ours;
        work(*layer);
    }
}

} // namespace

void captureDestroyed(void* context) {
    if (Capture::OpenGLCapture* const layer = capture(); layer && context) {
        const NoSignals calm;
        const Inside ours;
        layer->contextDestroyed(context);
    }
}

void captureSwap(std::uint64_t surface) {
    if (Capture::OpenGLCapture* const layer = capture()) {
        const NoSignals calm;
        const Inside ours;
        layer->swapping(surface);
    }
}

void captureCalls(const std::function<void(OGL::OpenGLInterceptor&)>& work) { captured(work); }

void captureTexels(unsigned int target, const char* what, const void* returnAddress) {
    captured([&](Capture::OpenGLCapture& layer) {
        layer.texelsGiven(siteFile, siteOf(returnAddress), target, what);
    });
}

void captureIncomplete(const char* what) {
    if (Capture::OpenGLCapture* const layer = capture()) {
        const NoSignals calm;
        const Inside ours;
        layer->incomplete(what);
    }
}

void captureGroup(const char* name, std::size_t length) {
    captured([&](Capture::OpenGLCapture& layer) {
        if (name)
            layer.groupBegun({name, length});
        else
            layer.groupEnded();
    });
}

void captureMarker(const char* text, std::size_t length) {
    captured([&](Capture::OpenGLCapture& layer) { layer.marked({text, length}); });
}

void captureLabel(unsigned int kind, unsigned int name, const char* label, std::size_t length) {
    captured([&](Capture::OpenGLCapture& layer) { layer.labelled(kind, name, {label, length}); });
}

} // namespace ZLT::Interception

namespace ZLT::Capture {

// The program's are given to the layer.
std::unique_ptr<CaptureSurroundings> platformSurroundings() { return nullptr; }

} // namespace ZLT::Capture
