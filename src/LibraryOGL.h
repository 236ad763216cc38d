#pragma once

#include "Export.h"
#include "extensionator/ExtensionManager.h"

namespace ZLT::OGL {

class Context;

/// Starts and stops the library. Start the core first and stop it last. Start and stop are for one thread,
/// while no other uses the library; it can be started again after a stop.
class ZLT_OGL_API Library {
public:
    class ZLT_OGL_API InitOptions : public StartOptions {};

    Library& operator=(const Library&) { return *this; }

    /// Starts the library: makes the extension manager of each display device, and as many texture units
    /// as the best of them has. The calling thread's current context is again what it was. A start that
    /// fails behind the first two tests leaves the library stopped, with what was made so far: call
    /// TextureUnit::terminate() before the next one.
    /// @throws InternalException "!isInitialized_" when it is started already,
    ///         "Core::Library::isInitialized()" when the core is not, "!pavUnits_" behind a start that
    ///         failed, and whatever a device's context raises
    static void initialize(const InitOptions& options);
    /// Whether it is started: true when all of initialize() has run.
    static bool isInitialized();
    /// Stops the library. Destroy all contexts and pop all layers first. The chains go first, even if the
    /// call then fails.
    /// @throws InternalException as OpenGLInterceptor::destroy() does while a layer is installed,
    ///         "isInitialized_" when the library is not started, "ZLT::Core::Library::isInitialized()"
    ///         when the core is not
    static void terminate();

    /// @name The older route
    /// For clients that start from a context of their own.
    /// @{

    /// Makes `context` current, as many texture units as it has, and the manager of each display device.
    /// With null: neither units nor managers, which the first contexts make.
    /// @param options  not looked at
    /// @throws InternalException as initialize(), and "0 == nMaxTextureUnit_" when a start by this route
    ///         failed behind the units; a start and stop by initialize() and terminate() sets that right
    static void initialize_DEPRECATED_2_5(Context* context, const ExtensionManager::InitOptions& options);
    /// Stops the library, but leaves the chains and the managers: the next start finds these, and the next
    /// terminate() takes them.
    /// @throws InternalException "isInitialized_" when the library is not started,
    ///         "Core::Library::isInitialized()" when the core is not
    static void terminate_DEPRECATED_2_5();
    /// @}

private:
    static void clearFailedStart();
    static void createNullExtensionManager();
    static void destroyNullExtensionManager();
    static void setInitialized(bool on);

    static bool isInitialized_;
    static InitOptions initOptions_;
};

} // namespace ZLT::OGL
