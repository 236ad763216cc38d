#include "intercept/Calls.h"

#include "extensionator/DriverMessages.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "intercept/CallCapture.h"
#include "intercept/Contexts.h"
#include "intercept/DriverEnd.h"
#include "intercept/ErrorReports.h"
#include "intercept/Program.h"
#include "intercept/Sites.h"
#include "intercept/Thread.h"
#include "intercept/TraceOutput.h"
#include "intercept/checks/MoreChecks.h"
#include "intercept/checks/ReadPointers.h"

#include <algorithm>
#include <cstddef>

namespace ZLT::Interception {

namespace {

DriverEnd& driverEnd() {
    static auto& end = *new DriverEnd;
    return end;
}

void startThread() {
    ProcessSlot& slot = program().writer().slot();
    slot.reached.store(1, std::memory_order_relaxed);
    thread.number = slot.threads.fetch_add(1) + 1;
    thread.calls = &slot.perThread[std::min<std::size_t>(thread.number, threadSlotCount) - 1].calls;
    if (program().options().mode == Mode::Trace) {
        thread.trace = new TraceOutput(driverEnd());
        thread.chain = thread.trace->head();
    } else if (program().options().mode == Mode::Capture) {
        thread.chain = captureOf(driverEnd());
    } else {
        OGL::OpenGLInterceptor* next = &driverEnd();
        if (program().options().more)
            next = &moreChecks(*next);
        thread.chain = &errorReporter(*next);
    }
}

} // namespace

OGL::OpenGLInterceptor* enterChain(const void* frame) {
    if (thread.inside) {
        // A jump out of a call, by longjmp from a signal handler for example, left the mark behind: what is
        // called from inside of that call lies below it on the stack.
        constexpr std::ptrdiff_t mostStack = 8 << 20;
        const std::ptrdiff_t older = static_cast<const char*>(frame) - static_cast<const char*>(thread.frame);
        if (!thread.frame || older < 0 || older > mostStack)
            return nullptr;
        thread.inside = false;
        program().writer().giveBack();
        TraceOutput::giveBack();
        if (thread.trace)
            thread.trace->dropLine();
    }
    if (!program().isActive() || (thread.context && !thread.context->isDesktop))
        return nullptr;
    if (thread.number == 0) {
        const NoSignals calm; // until we are outside again
        const Inside ours;
        startThread();
    }
    chooseChain();
    return thread.head;
}

void leaveAlone() {
    program().detach();
    thread.head = thread.chain = nullptr;
    thread.number = 0;
    thread.isNew = true;
    thread.calls = nullptr;
    thread.trace = nullptr;
    forgetSites();
    forgetReports();
}

void endFrame() {
    if (!program().isActive() || program().options().mode == Mode::Capture) // which counts for itself
        return;
    if (program().options().more)
        forgetReadable();
    const std::uint64_t frame = program().countFrame();
    if (program().options().mode == Mode::Trace && program().options().markFrames && thread.trace)
        thread.trace->markFrame(frame);
}

void giveUpDriverMessages() {
    if (!program().isActive() || program().options().mode != Mode::Check || !thread.context)
        return;
    const Inside ours;
    OGL::Detail::stopListening();
}

} // namespace ZLT::Interception
