#include "LibraryOGL.h"

#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/win/wglInterceptor.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/internal/ContextBootstrap.h"
#include "zlt/core/Core.h"
#include "zlt/core/Enforce.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <utility>

namespace ZLT::OGL {

bool Library::isInitialized_ = false;
Library::InitOptions Library::initOptions_;

void Library::initialize(const InitOptions& options) {
    ZLT_ASSERT(!isInitialized_);
    ZLT_ASSERT(Core::Library::isInitialized());
    // A client that starts the library with its own context current keeps it.
    const ScopedContextWrapper restore;
    // A start that failed has left one.
    ZLTDeleter<ExtensionManager>()(std::exchange(ExtensionManager::cachedNullExtMgrInstance, nullptr));
    ExtensionManager::cachedNullExtMgrInstance =
        new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) ExtensionManager(nullptr);
    for (std::size_t index = 0; index < Context::numDisplayDevice(); ++index) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(index, device);
        internal::ContextBootstrap bootstrap(device);
        bootstrap.makeCurrent();
        const ExtensionManager* extMan = ExtensionManager::Create(device);
        ZLT_ASSERT(extMan);
        // Asked once while a context of the manager is sure to be current; the answer is not kept.
        extMan->numberOfTextureUnits();
    }
    Context::initializeWglCreateContextAttribsPtr();
    initOptions_ = options;
    isInitialized_ = true;
}

bool Library::isInitialized() { return isInitialized_; }

void Library::terminate() {
    wglInterceptor::destroy();
    OpenGLInterceptor::destroy();
    ZLT_ASSERT(isInitialized_);
    // The text of the start lacks the namespace and this one has it.
    ZLT_ASSERT(ZLT::Core::Library::isInitialized());
    Context::unInitializeWglCreateContextAttribsPtr();
    isInitialized_ = false;
    const ZLTDeleter<ExtensionManager> destroy;
    for (ExtensionManager* manager : ExtensionManager::perDeviceEM_)
        destroy(manager);
    ExtensionManager::perDeviceEM_.clear();
    destroy(ExtensionManager::cachedNullExtMgrInstance);
    ExtensionManager::cachedNullExtMgrInstance = nullptr;
}

} // namespace ZLT::OGL
