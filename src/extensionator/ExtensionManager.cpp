#include "extensionator/ExtensionManager.h"

#include "ogl/ScopedContextWrapper.h"
#include "ogl/internal/ContextBootstrap.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <tbb/concurrent_hash_map.h>

#include <cstdint>
#include <sstream>

namespace ZLT::OGL {

namespace {

// The handle's value is the hash: handles differ, and a lookup stands in front of each call.
struct HandleHash {
    static std::size_t hash(HGLRC context) { return reinterpret_cast<std::uintptr_t>(context); }
    static bool equal(HGLRC a, HGLRC b) { return a == b; }
};
// An allocator of its own keeps TBB free of its run-time library.
using PerContextMap = tbb::concurrent_hash_map<HGLRC, ExtensionManager*, HandleHash,
                                               std::allocator<std::pair<const HGLRC, ExtensionManager*>>>;
PerContextMap perContextMap_;

[[noreturn, gnu::noinline, gnu::cold]] void raiseUnknownContext() {
    std::ostringstream message;
    // The sentence has no "or"; clients match on it.
    message << "currentContext either not created with ZLT::OGL";
    throw InternalException(ZLT_SOURCE_FILE, __LINE__, message.str().c_str());
}

} // namespace

std::vector<ExtensionManager*> ExtensionManager::perDeviceEM_;
ExtensionManager* ExtensionManager::cachedNullExtMgrInstance = nullptr;
bool ExtensionManager::answersWithoutContext_ = false;
const ExtensionManager::InitOptions ExtensionManager::oInitOptions_;

// Contexts that outlive it stay on record without a manager, so that their own end finds them.
ExtensionManager::~ExtensionManager() {
    for (auto& [context, manager] : perContextMap_)
        if (manager == this)
            manager = nullptr;
}

ExtensionManager* ExtensionManager::Instance() {
    const HGLRC context = wglGetCurrentContext();
    if (!context && answersWithoutContext_)
        return nullExtensionManager();
    PerContextMap::const_accessor entry;
    if (!perContextMap_.find(entry, context) || !entry->second) [[unlikely]]
        raiseUnknownContext();
    return entry->second;
}

ExtensionManager* ExtensionManager::Create(const DISPLAY_DEVICEA& device) {
    const ScopedContextWrapper restore;
    internal::ContextBootstrap bootstrap(device);
    bootstrap.makeCurrent();
    const String name = bootstrap.deviceName();
    for (ExtensionManager* manager : perDeviceEM_)
        if (manager->deviceName_ == name)
            return manager;
    std::unique_ptr<ExtensionManager, ZLTDeleter<ExtensionManager>> made(
        new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) ExtensionManager(&bootstrap));
    if (made)
        perDeviceEM_.push_back(made.get());
    return made.release();
}

void ExtensionManager::RegisterContext(Context& context) {
    ExtensionManager* pInstance = nullptr;
    const String name = context.deviceName();
    // To the end, so that the last match wins.
    for (ExtensionManager* manager : perDeviceEM_)
        if (manager->deviceName_ == name)
            pInstance = manager;
    if (!pInstance)
        pInstance = Create(context.displayDevice());
    ZLT_ENFORCE(pInstance != NULL); // NOLINT(modernize-use-nullptr): the rule's text is known to clients
    file(context.renderContext(), pInstance);
}

void ExtensionManager::file(HGLRC context, ExtensionManager* manager) {
    PerContextMap::accessor entry;
    if (perContextMap_.insert(entry, context) || !entry->second)
        entry->second = manager;
}

void ExtensionManager::UnRegisterContext(Context& context) {
    const bool found = perContextMap_.erase(context.renderContext());
    ZLT_ASSERT(found);
}

ExtensionManager* ExtensionManager::nullExtensionManager() { return cachedNullExtMgrInstance; }

const FunctionTable& ExtensionManager::table() const {
    ZLT_ASSERT(tableExt_.get() != 0); // NOLINT(modernize-use-nullptr): as above
    return *tableExt_;
}

bool ExtensionManager::isSupported(teExtension extension) const { return extensions_.contains(extension); }

unsigned int ExtensionManager::majorVersion() const { return nMajorVersion_; }
unsigned int ExtensionManager::minorVersion() const { return nMinorVersion_; }
bool ExtensionManager::hasReleaseVersion() const { return nReleaseVersion_ != -1; }

unsigned int ExtensionManager::releaseVersion() const {
    ZLT_ASSERT(nReleaseVersion_ != -1);
    return static_cast<unsigned int>(nReleaseVersion_);
}

String ExtensionManager::additionalVersionInfo() const { return additionalVersionInfo_; }
ExtensionManager::teVendor ExtensionManager::vendor() const { return vendor_; }

const ExtensionManager::InitOptions& ExtensionManager::initOptions() { return oInitOptions_; }

} // namespace ZLT::OGL
