#include "intercept/ErrorReports.h"

#include "extensionator/DriverMessages.h"
#include "extensionator/OpenGLCall.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/ReporterThread.h"
#include "intercept/Contexts.h"
#include "intercept/Lock.h"
#include "intercept/Program.h"
#include "intercept/RealFunctions.h"
#include "intercept/ReportRecord.h"
#include "intercept/Sites.h"
#include "intercept/Stack.h"
#include "intercept/Thread.h"
#include "platform/GL.h"

#include <locale>
#include <map>
#include <mutex>
#include <sstream>
#include <tuple>
#include <utility>

namespace ZLT::Interception {

namespace {

constinit Lock lock;
OGL::OpenGLErrorReporter* reporter = nullptr;

// What was told past the reporter, by place, entry and check, with the numbers of the reports.
using ToldCalls = std::map<std::tuple<std::uint32_t, unsigned int, std::string_view>, std::uint32_t>;
ToldCalls& toldCalls() {
    static auto& told = *new ToldCalls;
    return told;
}

// The numbers of reports are even for those of the reporter, and odd for the others.
void send(std::uint32_t number, const OGL::OpenGLErrorReport& report) {
    const NoSignals calm;
    ReportRecord record;
    record.number = number;
    record.site = report.line;
    record.report = report;
    for (const void* caller : callersOf(thread.returnAddress))
        record.stack.push_back(siteOf(caller));
    ChannelWriter& writer = program().writer();
    writer.write(RecordKind::Report, encode(record));
    // So that it stands among the program's own output where it belongs.
    writer.waitForReader();
}

void sendAgain(std::uint32_t number) { program().writer().write(RecordKind::Again, bytesOf(number)); }

class ChannelSink : public OGL::OpenGLErrorSink {
public:
    void report(const OGL::OpenGLErrorReport& report) override { send(2 * count_++, report); }
    void repeated(std::size_t index) override { sendAgain(2 * static_cast<std::uint32_t>(index)); }

private:
    std::uint32_t count_ = 0;
};

// Tells a report about the call, or that it came again.
// @return whether it is new
bool tell(const OGL::OpenGLCall& call, std::string_view check, OGL::OpenGLErrorReport report) {
    report.line = call.line();
    const std::lock_guard guard(lock);
    ToldCalls& told = toldCalls();
    const auto [place, isNew] = told.try_emplace({report.line, call.number(), check}, 2 * told.size() + 1);
    if (!isNew) {
        sendAgain(place->second);
        return false;
    }
    report.function = call.name();
    std::ostringstream arguments;
    arguments.imbue(std::locale::classic());
    call.writeReadableArguments(arguments);
    report.arguments = arguments.view();
    send(place->second, report);
    return true;
}

} // namespace

OGL::OpenGLErrorReporter& errorReporter(OGL::OpenGLInterceptor& next) {
    const std::lock_guard guard(lock);
    if (!reporter) {
        reporter = new OGL::OpenGLErrorReporter(&next);
        reporter->addSink(std::make_shared<ChannelSink>());
        if (program().options().trap)
            reporter->addSink(std::make_shared<OGL::OpenGLTrapSink>());
    }
    return *reporter;
}

void forgetReports() {
    lock.unlock();
    reporter = nullptr; // not destroyed: its locks may be held by threads that are not here
    toldCalls().clear();
}

// Such a call has no effect. Where the program made its context by a way that we don't see, the driver knows
// its version, and the context is known from now on.
void tellMissingContext(const OGL::OpenGLCall& call) {
    if (glGetString(GL_VERSION)) {
        static const char unknown = 0;
        setCurrentContext(findOrAddContext(const_cast<char*>(&unknown), true));
        return;
    }
    OGL::OpenGLErrorReport report;
    report.kind = OGL::OpenGLErrorReport::Kind::CallRefused;
    report.reason = "no context is current";
    tell(call, "", std::move(report));
}

void tellFinding(const OGL::OpenGLCall& call, const char* check, std::string_view reason) {
    OGL::OpenGLErrorReport report;
    report.kind = OGL::OpenGLErrorReport::Kind::FoundByCheck;
    report.reason = reason;
    report.check = check;
    if (tell(call, check, std::move(report)) && program().options().trap)
        OGL::OpenGLTrapSink().report({});
}

bool mayAskDriver() {
    return thread.context && !thread.context->balance.isInside() && !reporter->isContextLost();
}

void tellPending(const OGL::OpenGLCall& call) { reporter->reportPending(call.file(), call.line()); }

void dropOwnErrors() {
    for (int flags = 0; flags < 8 && realGetError(); ++flags)
        continue;
    if (OGL::Detail::reporterThread.messages != 0)
        OGL::Detail::takeMessages();
}

void settleBalance() {
    OGL::Detail::reporterThread.insideBeginEnd = thread.context && thread.context->balance.isInside();
}

void tellFailure(const std::exception& failure) noexcept {
    try {
        program().note(failure.what());
    } catch (...) { // NOLINT(bugprone-empty-catch): there is nobody to tell
    }
}

} // namespace ZLT::Interception
