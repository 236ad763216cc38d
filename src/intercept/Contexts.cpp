#include "intercept/Contexts.h"

#include "extensionator/OpenGLCall.h"
#include "extensionator/ReporterThread.h"
#include "intercept/Program.h"
#include "intercept/Thread.h"

#include <deque>
#include <mutex>
#include <unordered_map>

namespace ZLT::Interception {

namespace {

struct Known {
    std::mutex lock;
    std::deque<ContextRecord> records; // which stay where they are
    std::unordered_map<NativeContext, ContextRecord*> byAddress;
};
// Never destroyed: programs call GL while they end.
Known& known() {
    static auto& all = *new Known;
    return all;
}

ContextRecord* add(Known& all, NativeContext context, ContextRecord* share, bool isDesktop) {
    ContextRecord& record = all.records.emplace_back();
    record.number = static_cast<std::uint32_t>(all.records.size());
    record.isDesktop = isDesktop;
    record.lists = share ? share->lists : std::make_shared<DisplayLists>();
    all.byAddress[context] = &record;
#if defined(_WIN32)
    record.functions.resize(OGL::openGLEntryCount());
#endif
    if (isDesktop)
        program().countContext();
    return &record;
}

ContextRecord* find(const Known& all, NativeContext context) {
    const auto found = all.byAddress.find(context);
    return found == all.byAddress.end() ? nullptr : found->second;
}

} // namespace

ContextRecord* addContext(NativeContext context, NativeContext share, bool isDesktop) {
    Known& all = known();
    const std::lock_guard guard(all.lock);
    ContextRecord* const shared = find(all, share);
    ContextRecord* const added = add(all, context, shared, isDesktop);
    added->isKnownFromStart = !share || shared;
    return added;
}

ContextRecord* removeContext(NativeContext context) {
    Known& all = known();
    const std::lock_guard guard(all.lock);
    ContextRecord* const found = find(all, context);
    all.byAddress.erase(context);
    return found;
}

ContextRecord* findContext(NativeContext context) {
    Known& all = known();
    const std::lock_guard guard(all.lock);
    return find(all, context);
}

ContextRecord* findOrAddContext(NativeContext context, bool isDesktop) {
    if (!context)
        return nullptr;
    Known& all = known();
    const std::lock_guard guard(all.lock);
    if (ContextRecord* const found = find(all, context))
        return found;
    ContextRecord* const added = add(all, context, nullptr, isDesktop);
    added->isKnownFromStart = false;
    return added;
}

void chooseChain() {
    const bool isOurs = !thread.context || thread.context->isDesktop;
    if (!thread.inside)
        thread.head = program().isActive() && isOurs ? thread.chain : nullptr;
}

void shareLists(NativeContext from, NativeContext to) {
    Known& all = known();
    const std::lock_guard guard(all.lock);
    const ContextRecord* source = find(all, from);
    if (ContextRecord* target = find(all, to); source && target)
        target->lists = source->lists;
}

void setCurrentContext(ContextRecord* context) {
    if (thread.context == context)
        return;
    thread.context = context;
    thread.isNew = true;
#if defined(_WIN32)
    thread.functions = context ? context->functions.data() : functionsWithoutContext;
#endif
    OGL::Detail::noticeContextChange();
    chooseChain();
}

} // namespace ZLT::Interception
