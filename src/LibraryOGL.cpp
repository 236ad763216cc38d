#include "LibraryOGL.h"

#include "extensionator/Managers.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/win/wglInterceptor.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/TextureUnit.h"
#include "ogl/internal/ContextBootstrap.h"
#include "zlt/core/Core.h"
#include "zlt/core/Enforce.h"

#include <algorithm>

namespace ZLT::OGL {

bool Library::isInitialized_ = false;
Library::InitOptions Library::initOptions_;

// What a start that failed has left behind, but for the managers of the devices, which are found again, and
// the texture units, which are the client's to take down.
void Library::clearFailedStart() {
    internal::Managers::pause();
    if (Context::isWglCreateContextAttribsSupportKnown_)
        Context::unInitializeWglCreateContextAttribsPtr();
}

void Library::setInitialized(bool on) {
    isInitialized_ = on;
    internal::Managers::answerWithoutContext(on);
}

void Library::initialize(const InitOptions& options) {
    ZLT_ASSERT(!isInitialized_);
    ZLT_ASSERT(Core::Library::isInitialized());
    // A client that starts the library with its own context current keeps it.
    const ScopedContextWrapper restore;
    TextureUnit::initialize();
    clearFailedStart();
    internal::Managers::start(ZLT_SOURCE_FILE, __LINE__);
    unsigned int maxUnits = 0;
    for (std::size_t index = 0; index < Context::numDisplayDevice(); ++index) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(index, device);
        internal::ContextBootstrap bootstrap(device);
        bootstrap.makeCurrent();
        const ExtensionManager* extMan = internal::Managers::make(device);
        ZLT_ASSERT(extMan);
        maxUnits = std::max(maxUnits, extMan->numberOfTextureUnits());
    }
    Context::initializeWglCreateContextAttribsPtr();
    TextureUnit::Create(maxUnits);
    initOptions_ = options;
    setInitialized(true);
}

void Library::initialize_DEPRECATED_2_5(Context* context, const ExtensionManager::InitOptions&) {
    ZLT_ASSERT(!isInitialized_);
    ZLT_ASSERT(Core::Library::isInitialized());
    TextureUnit::initialize();
    clearFailedStart();
    internal::Managers::start(ZLT_SOURCE_FILE, __LINE__);
    if (context) {
        context->makeCurrent();
        TextureUnit::Create(context);
        for (std::size_t index = 0; index < Context::numDisplayDevice(); ++index) {
            DISPLAY_DEVICEA device = {};
            Context::displayDevice(index, device);
            const ContextOffscreen makesTheManager(device);
        }
    }
    Context::initializeWglCreateContextAttribsPtr();
    setInitialized(true);
}

bool Library::isInitialized() { return isInitialized_; }

void Library::terminate() {
    wglInterceptor::destroy();
    OpenGLInterceptor::destroy();
    ZLT_ASSERT(isInitialized_);
    // The text of the start lacks the namespace and this one has it.
    ZLT_ASSERT(ZLT::Core::Library::isInitialized());
    if (TextureUnit::isInitialized())
        TextureUnit::Destroy();
    Context::unInitializeWglCreateContextAttribsPtr();
    TextureUnit::terminate();
    setInitialized(false);
    internal::Managers::stop();
}

void Library::terminate_DEPRECATED_2_5() {
    ZLT_ASSERT(isInitialized_);
    ZLT_ASSERT(Core::Library::isInitialized());
    if (TextureUnit::isInitialized())
        TextureUnit::Destroy();
    Context::unInitializeWglCreateContextAttribsPtr();
    internal::Managers::pause();
    TextureUnit::terminate();
    setInitialized(false);
}

} // namespace ZLT::OGL
