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

    /// Starts the library: makes the extension manager of each display device. The calling thread's current
    /// context is again what it was. A failure leaves it stopped,
    /// with what was made so far.
    /// @throws InternalException "!isInitialized_" when it is started already,
    ///         "Core::Library::isInitialized()" when the core is not, and whatever a device's context raises
    static void initialize(const InitOptions& options);
    static bool isInitialized();
    /// Stops the library. Destroy all contexts and pop all layers first. The chains go first, even if the
    /// call then fails.
    /// @throws InternalException as OpenGLInterceptor::destroy() does while a layer is installed,
    ///         "isInitialized_" when the library is not started, "ZLT::Core::Library::isInitialized()" when
    ///         the core is not
    static void terminate();

private:
    static bool isInitialized_;
    static InitOptions initOptions_;
};

} // namespace ZLT::OGL
