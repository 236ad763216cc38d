#pragma once

#include "capture/Bytes.h"
#include "capture/CaptureOutput.h"
#include "capture/CaptureSurroundings.h"
#include "capture/CapturedContext.h"
#include "capture/IndexRange.h"
#include "capture/Records.h"

#include <array>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace ZLT::Capture {

class CaptureState;

/// What the threads of one capture share.
struct CaptureShared {
    CaptureOutput* output = nullptr;
    CaptureOptions options;
    CaptureSurroundings* surroundings = nullptr;
    std::unique_ptr<CaptureSurroundings> ownSurroundings;
    std::uint64_t id = 0; ///< of all captures of the process
    std::atomic<std::uint32_t> threads = 0;
    std::atomic<std::int64_t> start = 0; ///< when the first context was met, by the steady clock; 0 before

    std::mutex lock; ///< of all that follows
    std::map<void*, std::unique_ptr<CapturedContext>> contexts;
    std::vector<std::unique_ptr<CapturedContext>> formerContexts; ///< which a thread may still have
    std::vector<std::unique_ptr<CaptureState>> states;
    struct KnownSurface {
        std::uint32_t number;
        int width, height;
    };
    std::map<std::uint64_t, KnownSurface> surfaces;
    std::map<std::uint64_t, std::uint32_t> groups; ///< their numbers, from 1
    std::map<void*, std::uint64_t> sharing;        ///< groups of contexts that were told to share

    std::uint64_t groupOf(void* context) const {
        const auto told = sharing.find(context);
        return told == sharing.end() ? surroundings->shareGroupOf(context) : told->second;
    }
    std::set<std::string> told;
    std::uint32_t contextCount = 0;
};

/// A record that is no call.
class EventRecord {
public:
    explicit EventRecord(Event event) { value(static_cast<std::uint32_t>(event)); }
    template <class Value>
    EventRecord& value(Value number) {
        appendValue(bytes_, number);
        return *this;
    }
    EventRecord& text(std::string_view bytes) {
        appendValue(bytes_, bytes.size());
        bytes_ += bytes;
        return *this;
    }
    const std::string& bytes() const { return bytes_; }

private:
    std::string bytes_;
};

/// The capture of one thread: its number, its context, and what happens around its calls.
class CaptureState {
public:
    CaptureState(CaptureShared& shared, std::uint32_t thread) : shared_(&shared), thread_(thread) {}

    CapturedContext& context() { return *context_; }
    CaptureShared& shared() { return *shared_; }
    void* handle() const { return handle_; }

    void send(std::string_view record) { shared_->output->record(thread_, record); }
    void send(const EventRecord& event) { send(event.bytes()); }
    std::uint32_t store(std::string_view bytes) { return shared_->output->store(bytes); }
    std::uint32_t siteOf(const char* file, unsigned int line) {
        return file ? shared_->output->siteOf(file, line) : 0;
    }

    /// The context that is current is another one, or has other surfaces.
    void noticeContext();
    void forgetContext() { handle_ = unknownHandle(); }
    /// For who captures nothing, and asks Sizes.h: about this context, which somebody else has learned.
    void useContext(CapturedContext& context) { context_ = &context; }
    void noticeSize(std::uint64_t id, CaptureSurroundings::Size size);
    void swapping(std::uint64_t surface);
    void incomplete(std::string_view what);

    // What the entries call: see the generator.
    void arraysChanged() { context_->areArraysKnown = false; }
    void beginning() { context_->learnArrays(); }
    void begun(unsigned int mode);
    void ended() { context_->isInside = false; }
    void listBegun();
    void listEnded() { context_->isCompiling = false; }
    void drawArrays(int first, int count, int instances = 1);
    void drawElements(int count, unsigned int type, const void* indices, int instances = 1);
    void drawManyArrays(const int* first, const int* count, int draws);
    void drawManyElements(const int* count, unsigned int type, const void* const* indices, int draws);
    void drawElement(int index);
    void drawElementArray(int first, int count);
    void drawManyElementArrays(const int* first, const int* count, int draws);
    void unmapping(unsigned int target);
    void unmappingNamed(unsigned int buffer);
    void unmappingObject(unsigned int buffer);
    void mappedObject(unsigned int buffer, const void* pointer);
    void flushed(unsigned int target, long long offset, long long length);
    void lent(const float* buffer, int size);
    void lent(const unsigned int* buffer, int size);
    void leavingMode();
    void leftMode(int result);
    void linked(unsigned int program);
    void symbolsMade(unsigned int first, unsigned int type);
    void viewportSet();
    void shown();

private:
    static void* unknownHandle();
    void drawRange(IndexRange range, int instances);
    bool addRange(unsigned int type, const void* indices, int count, IndexRange& range);
    void written(const void* address, std::uint64_t offset, std::uint64_t size);
    void endFrame(std::uint64_t id);
    void tellTime();
    std::uint32_t noticeSurface(std::uint64_t id);
    void tellCurrent(std::uint32_t draw, std::uint32_t read);

    CaptureShared* shared_;
    void* handle_ = unknownHandle();
    CapturedContext none_; // without anything
    CapturedContext* context_ = &none_;
    std::uint32_t thread_;
    std::array<std::uint32_t, 3> told_ = {}; // context and surfaces
};

/// Those that the platform layer knows.
std::unique_ptr<CaptureSurroundings> platformSurroundings();

/// What the calling thread last captured, and for which capture.
struct CaptureThread {
    std::uint64_t capture = 0;
    CaptureState* state = nullptr;
};
#if defined(_WIN32)
extern constinit thread_local CaptureThread captureThread;
#else
[[gnu::tls_model("initial-exec")]] extern constinit thread_local CaptureThread captureThread;
#endif
/// The context that the calling thread captures; one without anything where it has none.
CapturedContext& capturedContext();

} // namespace ZLT::Capture
