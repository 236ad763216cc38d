#include "intercept/Program.h"

#include "extensionator/DriverMessages.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/ReporterThread.h"
#include "intercept/Contexts.h"
#include "intercept/DriverEnd.h"
#include "intercept/ErrorReports.h"
#include "intercept/Intercepted.h"
#include "intercept/Sites.h"
#include "intercept/Thread.h"
#include "intercept/TraceOutput.h"

#include <algorithm>
#include <cstddef>
#include <new>

namespace ZLT::Interception {

constinit thread_local Thread thread;

namespace {

// Storage without an end: nothing of it may be destroyed while threads still call.
template <class Value>
union Endless {
    Value value;
    constexpr Endless() : value() {}
    ~Endless() {} // NOLINT(modernize-use-equals-default): of a union with a member that has one
};
#if !defined(_WIN32) // where a mutex has a constructor, which runs before the library attaches
constinit
#endif
    Endless<Program>
        theProgram;

DriverEnd& driverEnd() {
    static auto& end = *new DriverEnd;
    return end;
}

} // namespace

Program& program() { return theProgram.value; }

std::uint32_t currentSite() { return siteOf(thread.returnAddress); }

void Program::attach(Channel& channel) {
    if (writer_.attach(channel))
        active_.store(true, std::memory_order_release);
}

void Program::leaveAlone() {
    active_.store(false, std::memory_order_relaxed);
    writer_.abandon();
    thread.head = thread.chain = nullptr;
    thread.number = 0;
    thread.calls = nullptr;
    thread.trace = nullptr; // which is the parent's, as are the numbers of all that was told
    forgetSites();
    forgetReports();
}

OGL::OpenGLInterceptor* Program::enter(const void* frame) {
    if (thread.inside) {
        // A jump out of a call, by longjmp from a signal handler for example, left the mark behind: what is
        // called from inside of that call lies below it on the stack.
        constexpr std::ptrdiff_t mostStack = 8 << 20;
        const std::ptrdiff_t older = static_cast<const char*>(frame) - static_cast<const char*>(thread.frame);
        if (!thread.frame || older < 0 || older > mostStack)
            return nullptr;
        thread.inside = false;
        thread.frame = nullptr;
        writer_.giveBack();
        TraceOutput::giveBack();
        if (thread.trace)
            thread.trace->dropLine();
    }
    if (!isActive() || (thread.context && !thread.context->isDesktop))
        return nullptr;
    if (thread.number == 0) {
        const NoSignals calm; // until we are outside again
        const Inside ours;
        startThread(thread);
    }
    chooseChain();
    return thread.head;
}

void Program::startThread(Thread& thread) {
    ProcessSlot& slot = writer_.slot();
    slot.reached.store(1, std::memory_order_relaxed);
    thread.number = slot.threads.fetch_add(1) + 1;
    thread.calls = &slot.perThread[std::min<std::size_t>(thread.number, threadSlotCount) - 1].calls;
    if (options().mode == Mode::Trace) {
        thread.trace = new TraceOutput(driverEnd());
        thread.chain = thread.trace->head();
    } else {
        thread.chain = &errorReporter(driverEnd());
    }
}

void Program::chooseChain() {
    const bool isOurs = !thread.context || thread.context->isDesktop;
    if (!thread.inside)
        thread.head = isActive() && isOurs ? thread.chain : nullptr;
}

void Program::countContext() {
    if (isActive())
        writer_.slot().contexts.fetch_add(1, std::memory_order_relaxed);
}

void Program::countFrame() {
    if (!isActive())
        return;
    const std::uint64_t frame = writer_.slot().frames.fetch_add(1, std::memory_order_relaxed) + 2;
    if (options().mode == Mode::Trace && options().markFrames && thread.trace)
        thread.trace->markFrame(frame);
}

unsigned int errorForLayers() {
    const bool isInside = thread.context && thread.context->balance.isInside();
    return program().options().mode == Mode::Check && !isInside ? realGetError() : 0;
}

void Program::note(std::string_view text) {
    if (isActive())
        writer_.write(RecordKind::Note, text);
}

void Program::giveUpDriverMessages() {
    if (!program().isActive() || program().options().mode != Mode::Check || !thread.context)
        return;
    const Inside ours;
    OGL::Detail::stopListening();
}

} // namespace ZLT::Interception
