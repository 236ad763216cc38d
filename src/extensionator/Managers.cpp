#include "extensionator/Managers.h"

#include "ogl/Context.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/internal/ContextBootstrap.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <tbb/concurrent_hash_map.h>

#include <cstdint>
#include <sstream>
#include <utility>

namespace ZLT::OGL {

namespace internal {

namespace {

// The handle's value is the hash: handles differ, and a lookup precedes each call.
struct HandleHash {
    static std::size_t hash(HGLRC context) { return reinterpret_cast<std::uintptr_t>(context); }
    static bool equal(HGLRC a, HGLRC b) { return a == b; }
};
// An allocator of its own keeps TBB free of its run-time library.
using PerContextMap = tbb::concurrent_hash_map<HGLRC, ExtensionManager*, HandleHash,
                                               std::allocator<std::pair<const HGLRC, ExtensionManager*>>>;
PerContextMap perContext;
std::vector<ExtensionManager*> perDevice; // owns them, in order of creation
ExtensionManager* withoutContext = nullptr;
// Not by the one above: a start that failed leaves that one.
bool answersWithoutContext = false;

[[noreturn, gnu::noinline, gnu::cold]] void raiseUnknownContext() {
    std::ostringstream message;
    // The sentence has no "or"; clients match on it.
    message << "currentContext either not created with ZLT::OGL";
    throw InternalException(ZLT_SOURCE_FILE, __LINE__, message.str().c_str());
}

} // namespace

void Managers::start(const char* file, int line) {
    pause();
    withoutContext = new (MemoryType(0), file, line) ExtensionManager(nullptr);
}

void Managers::answerWithoutContext(bool on) { answersWithoutContext = on; }

void Managers::pause() { ZLTDeleter<ExtensionManager>()(std::exchange(withoutContext, nullptr)); }

void Managers::stop() {
    for (auto& [context, manager] : perContext)
        manager = nullptr;
    for (ExtensionManager* manager : std::exchange(perDevice, {}))
        ZLTDeleter<ExtensionManager>()(manager);
    pause();
}

ExtensionManager* Managers::make(const DISPLAY_DEVICEA& device) {
    const ScopedContextWrapper restore;
    ContextBootstrap bootstrap(device);
    bootstrap.makeCurrent();
    const String name = bootstrap.deviceName();
    for (ExtensionManager* manager : perDevice)
        if (manager->deviceName_ == name)
            return manager;
    std::unique_ptr<ExtensionManager, ZLTDeleter<ExtensionManager>> made(
        new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) ExtensionManager(&bootstrap));
    if (made)
        perDevice.push_back(made.get());
    return made.release();
}

void Managers::enter(Context& context) {
    ExtensionManager* pInstance = nullptr;
    const String name = context.deviceName();
    // To the end, so that the last match wins.
    for (ExtensionManager* manager : perDevice)
        if (manager->deviceName_ == name)
            pInstance = manager;
    if (!pInstance)
        pInstance = make(context.displayDevice());
    ZLT_ENFORCE(pInstance != NULL); // NOLINT(modernize-use-nullptr): the rule's text is known to clients
    enter(context.renderContext(), pInstance);
}

void Managers::enter(HGLRC context, ExtensionManager* manager) {
    PerContextMap::accessor entry;
    if (perContext.insert(entry, context) || !entry->second)
        entry->second = manager;
}

void Managers::leave(Context& context) {
    const bool found = perContext.erase(context.renderContext());
    ZLT_ASSERT(found);
}

ExtensionManager* Managers::current() {
    const HGLRC context = wglGetCurrentContext();
    if (!context && answersWithoutContext)
        return withoutContext;
    PerContextMap::const_accessor entry;
    if (!perContext.find(entry, context) || !entry->second) [[unlikely]]
        raiseUnknownContext();
    return entry->second;
}

} // namespace internal

// Here, where the compiler sees the lookup: it precedes each call.
ExtensionManager* ExtensionManager::Instance() { return internal::Managers::current(); }

} // namespace ZLT::OGL
