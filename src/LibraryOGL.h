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
    /// fails after the first two checks leaves the library stopped, with what was made so far: call
    /// TextureUnit::terminate() before the next one.
    /// @throws InternalException "!isInitialized_" when it is started already,
    ///         "Core::Library::isInitialized()" when the core is not, "!pavUnits_" after a start that
    ///         failed, and whatever a device's context throws
    static void initialize(const InitOptions& options);
    /// Whether it is started: true when all of initialize() has run.
    static bool isInitialized();
    /// Stops the library. Destroy all contexts and pop all layers before. The chains are destroyed first,
    /// even if the call then fails. A context that is left can be destroyed later, and is unknown to
    /// ExtensionManager::Instance() until then.
    /// @throws InternalException as OpenGLInterceptor::destroy() does while a layer is installed,
    ///         "isInitialized_" when the library is not started, "ZLT::Core::Library::isInitialized()"
    ///         when the core is not
    static void terminate();

    /// @name The older way
    /// For clients that start from a context of their own.
    /// @{

    /// Makes `context` current, as many texture units as it has, and the manager of each display device.
    /// With null: neither units nor managers; the first contexts make the managers.
    /// @param options  ignored
    /// @throws InternalException as initialize(), and "0 == nMaxTextureUnit_" when a start in this way
    ///         failed after it made the units; a start and stop by initialize() and terminate() repairs it
    static void initialize_DEPRECATED_2_5(Context* context, const ExtensionManager::InitOptions& options);
    /// Stops the library, but keeps the chains and the managers: the next start finds them, and the next
    /// terminate() destroys them.
    /// @throws InternalException "isInitialized_" when the library is not started,
    ///         "Core::Library::isInitialized()" when the core is not
    static void terminate_DEPRECATED_2_5();
    /// @}

private:
    static void clearFailedStart();
    static void setInitialized(bool on);

    static bool isInitialized_;
    static InitOptions initOptions_;
};

} // namespace ZLT::OGL
