#include "extensionator/OpenGLErrorReporter.h"

#include "ExceptionOGL.h"
#include "extensionator/DriverMessages.h"
#include "extensionator/NextLayer.h"
#include "extensionator/OpenGLEntry.h"
#include "extensionator/OpenGLErrorReporter.inl"
#include "platform/GL.h"
#include "platform/Platform.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <mutex>
#include <sstream>
#include <string_view>
#include <tuple>
#include <utility>

namespace ZLT::OGL {

using Detail::reporterThread;

namespace {

constexpr unsigned int contextLost = 0x0507; // GL_CONTEXT_LOST, of GL_KHR_robustness

// More than GL has flags: a context that still reports errors is lost, or was never there.
constexpr int mostFlags = 32;

unsigned int newSerial() {
    static std::atomic<unsigned int> last = 0;
    return ++last;
}

bool isEntry(unsigned int number) { return number < openGLEntryCount(); }

} // namespace

// Everything that is locked. `tellLock` is held while sinks work, in the order of the reports; it can be
// taken again by a sink that makes GL calls. `lock` is never held while somebody else's code runs.
struct OpenGLErrorReporter::State : Detail::MessageReceiver {
    State() { addReceiver(*this); }
    virtual ~State() { removeReceiver(*this); }

    struct KnownContext {
        unsigned int codeForProgram = 0; // what the program's own glGetError is still due
        bool lost = false;
    };

    bool wants(const OpenGLDriverMessage& message) override {
        return message.isError() || !filter || filter(message);
    }
    bool dropsNotifications() const override { return !filter; }

    // Whether nothing is to be said about the context any more.
    bool isLost(HGLRC context) {
        const std::lock_guard guard(lock);
        const auto found = contexts.find(context);
        return found != contexts.end() && found->second.lost;
    }
    void markLost(HGLRC context) {
        const std::lock_guard guard(lock);
        contexts[context].lost = true;
    }
    // GL keeps the first error until it is asked for.
    void keepForProgram(HGLRC context, unsigned int code) {
        const std::lock_guard guard(lock);
        unsigned int& kept = contexts[context].codeForProgram;
        if (kept == 0) {
            kept = code;
            codesForProgram.fetch_add(1, std::memory_order_relaxed);
        }
    }
    unsigned int takeForProgram(HGLRC context) {
        if (codesForProgram.load(std::memory_order_relaxed) == 0)
            return 0;
        const std::lock_guard guard(lock);
        const auto found = contexts.find(context);
        if (found == contexts.end() || found->second.codeForProgram == 0)
            return 0;
        codesForProgram.fetch_sub(1, std::memory_order_relaxed);
        return std::exchange(found->second.codeForProgram, 0);
    }

    // Counts the report, and tells it to the sinks if it is the first of its kind.
    void tell(OpenGLErrorReport report);
    // The same for a report that has the place of `call`.
    OpenGLErrorReport at(OpenGLErrorReport::Kind kind, unsigned int number, const char* file,
                         unsigned int line) const;
    void tellBefore(unsigned int code, unsigned int number, const char* file, unsigned int line,
                    std::vector<OpenGLDriverMessage> messages);
    void tellLost(HGLRC context, std::string_view reason, unsigned int number, const char* file,
                  unsigned int line);
    void tellMessages(std::vector<OpenGLDriverMessage> messages, unsigned int number, const char* file,
                      unsigned int line);
    // Reads all error flags, and reports each by `report`; false for a context that has no end of them.
    template <class Report>
    bool drain(HGLRC context, unsigned int number, const char* file, unsigned int line, const Report& report);

    MessageFilter filter;
    bool listens = true;
    std::recursive_mutex tellLock;
    std::vector<std::shared_ptr<OpenGLErrorSink>> sinks;
    // By file, line, function, kind and what else makes two reports differ: where in `totals` it is.
    std::map<std::tuple<String, unsigned int, std::string_view, int, String>, std::size_t, std::less<>> known;
    std::vector<OpenGLErrorTotal> totals;
    std::atomic<unsigned long long> errors = 0;
    bool finished = false; // and nothing was told since

    std::mutex lock;
    std::map<HGLRC, KnownContext> contexts;
    std::atomic<int> codesForProgram = 0;
};

void OpenGLErrorReporter::State::tell(OpenGLErrorReport report) {
    const std::lock_guard guard(tellLock);
    finished = false;
    const bool isMessage = report.kind == OpenGLErrorReport::Kind::DriverMessage;
    if (!isMessage)
        errors.fetch_add(1, std::memory_order_relaxed);
    // Of messages the text counts, since one line may be told several things.
    const String what = isMessage ? report.messages.front().text : report.reason;
    const auto [place, isNew] = known.try_emplace(
        {report.file, report.line, report.function, static_cast<int>(report.kind), what}, totals.size());
    // A sink may add one, or cause another report.
    const auto told = sinks;
    if (!isNew) {
        const std::size_t number = place->second;
        ++totals[number].count;
        for (const std::shared_ptr<OpenGLErrorSink>& sink : told)
            sink->repeated(number);
        return;
    }
    totals.push_back({report, 1});
    for (const std::shared_ptr<OpenGLErrorSink>& sink : told)
        sink->report(report);
}

OpenGLErrorReport OpenGLErrorReporter::State::at(OpenGLErrorReport::Kind kind, unsigned int number,
                                                 const char* file, unsigned int line) const {
    OpenGLErrorReport report;
    report.kind = kind;
    report.file = file ? file : "";
    report.line = line;
    report.function = isEntry(number) ? openGLEntryName(number) : "";
    return report;
}

void OpenGLErrorReporter::State::tellBefore(unsigned int code, unsigned int number, const char* file,
                                            unsigned int line, std::vector<OpenGLDriverMessage> messages) {
    OpenGLErrorReport report = at(OpenGLErrorReport::Kind::RaisedBefore, number, file, line);
    report.code = code;
    report.reason = openGLErrorName(code);
    report.messages = std::move(messages);
    tell(std::move(report));
}

void OpenGLErrorReporter::State::tellLost(HGLRC context, std::string_view reason, unsigned int number,
                                          const char* file, unsigned int line) {
    markLost(context);
    OpenGLErrorReport report = at(OpenGLErrorReport::Kind::ContextLost, number, file, line);
    report.reason = reason;
    tell(std::move(report));
}

void OpenGLErrorReporter::State::tellMessages(std::vector<OpenGLDriverMessage> messages, unsigned int number,
                                              const char* file, unsigned int line) {
    for (OpenGLDriverMessage& message : messages) {
        // Errors among them were kept for the calls that failed, and this is none.
        if (filter && !filter(message))
            continue;
        OpenGLErrorReport report = at(OpenGLErrorReport::Kind::DriverMessage, number, file, line);
        report.messages.push_back(std::move(message));
        tell(std::move(report));
    }
}

template <class Report>
bool OpenGLErrorReporter::State::drain(HGLRC context, unsigned int number, const char* file,
                                       unsigned int line, const Report& report) {
    for (int flags = 0; flags < mostFlags; ++flags) {
        const GLenum code = glGetError();
        if (code == GL_NO_ERROR)
            return true;
        if (code == contextLost) {
            tellLost(context, "GL_CONTEXT_LOST: the context is lost", number, file, line);
            return false;
        }
        report(code);
    }
    tellLost(context, context ? "the context reports errors without end" : "no context is current", number,
             file, line);
    return false;
}

OpenGLErrorReporter::OpenGLErrorReporter(OpenGLInterceptor* next)
    : OpenGLInterceptorDecorator(next), serial_(newSerial()), state_(std::make_unique<State>()) {}

OpenGLErrorReporter::OpenGLErrorReporter(std::ostream& out, OpenGLInterceptor* next)
    : OpenGLErrorReporter(next) {
    addSink(std::make_shared<OpenGLTextSink>(out));
}

OpenGLErrorReporter::~OpenGLErrorReporter() {
    try {
        if (!state_->finished)
            finish();
        if (reporterThread.settledFor == serial_ && wglGetCurrentContext())
            Detail::stopListening();
    } catch (...) { // NOLINT(bugprone-empty-catch): a sink's exception has nowhere to go
    }
}

void OpenGLErrorReporter::addSink(std::shared_ptr<OpenGLErrorSink> sink) {
    const std::lock_guard guard(state_->tellLock);
    state_->sinks.push_back(std::move(sink));
}

void OpenGLErrorReporter::setMessageFilter(MessageFilter filter) { state_->filter = std::move(filter); }
void OpenGLErrorReporter::setDriverMessages(bool on) { state_->listens = on; }

unsigned long long OpenGLErrorReporter::errorCount() const {
    return state_->errors.load(std::memory_order_relaxed);
}

bool OpenGLErrorReporter::isContextLost() const { return state_->isLost(wglGetCurrentContext()); }

void OpenGLErrorReporter::finish() {
    const std::lock_guard guard(state_->tellLock);
    const std::vector<OpenGLErrorTotal> totals = std::exchange(state_->totals, {});
    state_->known.clear();
    state_->finished = true;
    const auto told = state_->sinks;
    for (const std::shared_ptr<OpenGLErrorSink>& sink : told)
        sink->finish(totals);
}

void OpenGLErrorReporter::reportPending(const char* file, unsigned int line) {
    const HGLRC context = wglGetCurrentContext();
    if (!context || reporterThread.insideBeginEnd || state_->isLost(context))
        return;
    std::vector<OpenGLDriverMessage> messages = Detail::takeMessages();
    const unsigned int none = openGLEntryCount();
    state_->drain(context, none, file, line, [&](unsigned int code) {
        state_->keepForProgram(context, code);
        state_->tellBefore(code, none, file, line, std::exchange(messages, {}));
    });
    state_->tellMessages(std::move(messages), none, file, line);
}

void OpenGLErrorReporter::settle(const char* file, unsigned int line) {
    if (reporterThread.insideBeginEnd)
        return;
    reporterThread.settledFor = serial_;
    const HGLRC context = wglGetCurrentContext();
    if (!context || state_->isLost(context))
        return;
    reportPending(file, line);
    if (state_->listens && !state_->isLost(context))
        Detail::listenToDriver();
}

void OpenGLErrorReporter::failed(const LogicalException& failure, const OpenGLCall& call) {
    using Kind = OpenGLErrorReport::Kind;
    reporterThread.inCall = false;
    const HGLRC context = wglGetCurrentContext();
    if (state_->isLost(context)) {
        Detail::takeMessages();
        return;
    }
    const auto* error = dynamic_cast<const ExceptionOGL*>(&failure);
    const unsigned int code = error ? error->errorNumber() : 0;
    if (code == contextLost) {
        state_->tellLost(context, "GL_CONTEXT_LOST: the context is lost", call.number(), call.file(),
                         call.line());
        return;
    }

    // The call was not made: what is pending is somebody else's.
    if (code == 0)
        reportPending(call.file(), call.line());
    // An error that the driver spoke of between two calls, and not in this one, is not this one's.
    std::vector<OpenGLDriverMessage> messages = Detail::takeMessages();
    const auto isOf = [](bool inside) {
        return [=](const OpenGLDriverMessage& message) {
            return message.isError() && message.insideCall == inside;
        };
    };
    const auto firstInside = std::stable_partition(messages.begin(), messages.end(), isOf(false));
    std::vector<OpenGLDriverMessage> outside(std::make_move_iterator(messages.begin()),
                                             std::make_move_iterator(firstInside));
    messages.erase(messages.begin(), firstInside);
    const bool blamesCall = code == 0 || outside.empty() || std::ranges::any_of(messages, isOf(true));
    if (code != 0 && !outside.empty())
        state_->tellBefore(code, call.number(), call.file(), call.line(), std::move(outside));

    OpenGLErrorReport report =
        state_->at(code ? Kind::CallFailed : Kind::CallRefused, call.number(), call.file(), call.line());
    std::ostringstream arguments;
    arguments.imbue(std::locale::classic());
    call.writeReadableArguments(arguments);
    report.arguments = arguments.view();
    report.code = code;
    report.reason = code ? openGLErrorName(code) : failure.what();
    report.messages = messages;
    if (blamesCall)
        state_->tell(report);
    if (error)
        state_->keepForProgram(context, code ? code : GL_INVALID_OPERATION); // GL's own for a lost balance
    if (code == 0)
        return;
    // The checker read one flag. The others are the call's too, and would else be a later call's.
    report.messages.clear();
    state_->drain(context, call.number(), call.file(), call.line(), [&](unsigned int more) {
        report.code = more;
        report.reason = openGLErrorName(more);
        state_->tell(report);
    });
}

void OpenGLErrorReporter::tellMessages(unsigned int number, const char* file, unsigned int line) {
    if (reporterThread.insideBeginEnd)
        return; // they go with what cgmEnd finds
    std::vector<OpenGLDriverMessage> messages = Detail::takeMessages();
    // The driver speaks of an error between two calls, and the flag is not there: foreign code asked for it
    // itself.
    std::erase_if(messages, [](const OpenGLDriverMessage& message) {
        return message.isError() && !message.insideCall;
    });
    if (!state_->isLost(wglGetCurrentContext()))
        state_->tellMessages(std::move(messages), number, file, line);
}

// The three that are special.

void OpenGLErrorReporter::cgmBegin(const char* file, unsigned int line, unsigned int mode) {
    enter(file, line);
    try {
        NextLayer::of(*this)->cgmBegin(file, line, mode);
        reporterThread.insideBeginEnd = true;
    } catch (const LogicalException& failure) {
        const CallValue values[] = {mode};
        failed(failure, OpenGLCall(OpenGLEntry::Begin, file, line, values));
    }
    if (leave())
        tellMessages(OpenGLEntry::Begin, file, line);
}

void OpenGLErrorReporter::cgmEnd(const char* file, unsigned int line) {
    enter(file, line);
    reporterThread.insideBeginEnd = false;
    try {
        NextLayer::of(*this)->cgmEnd(file, line);
    } catch (const LogicalException& failure) {
        failed(failure, OpenGLCall(OpenGLEntry::End, file, line, nullptr));
    }
    if (leave())
        tellMessages(OpenGLEntry::End, file, line);
}

// A program that asks gets the errors that were reported, as if nobody had read them. One that GL still holds
// was raised outside of the chain, and is the program's as well.
unsigned int OpenGLErrorReporter::cgmGetError(const char* file, unsigned int line) {
    enter(file, line);
    const HGLRC context = wglGetCurrentContext();
    unsigned int code = reporterThread.insideBeginEnd ? 0 : state_->takeForProgram(context);
    if (code == 0) {
        try {
            code = NextLayer::of(*this)->cgmGetError(file, line);
        } catch (const ExceptionOGL& second) {
            code = second.errorNumber();
        }
        if (code == contextLost && !state_->isLost(context))
            state_->tellLost(context, "GL_CONTEXT_LOST: the context is lost", OpenGLEntry::GetError, file,
                             line);
        else if (code != 0 && !reporterThread.insideBeginEnd && !state_->isLost(context))
            state_->tellBefore(code, OpenGLEntry::GetError, file, line, Detail::takeMessages());
    }
    if (leave())
        tellMessages(OpenGLEntry::GetError, file, line);
    return code;
}

} // namespace ZLT::OGL
