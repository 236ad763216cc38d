#pragma once

#include "extensionator/ExtensionManager.h"

/// @file
/// The extension managers of the process: who makes and keeps them, and which one a context has.

namespace ZLT::OGL::internal {

/// Used by the library's start and stop, and by contexts as they come and go, one thread at a time. current()
/// is for any thread at any time.
class Managers {
public:
    /// Makes the manager that supports nothing, in place of one that a failed start has left. The block
    /// carries the caller's site.
    static void start(const char* file, int line);
    /// Whether that manager answers where no context is current: from the end of a start to the stop.
    static void answerWithoutContext(bool on);
    /// Destroys it. The managers of devices stay for the next start.
    static void pause();
    /// Destroys all. Contexts that are left stay on record without a manager, so that their own end finds
    /// them.
    static void stop();

    /// The manager of the device, made if there is none yet.
    static ExtensionManager* make(const DISPLAY_DEVICEA& device);
    /// Puts the context on record with the manager of its device; one that is on record keeps its manager.
    static void enter(Context& context);
    /// The same with this manager.
    static void enter(HGLRC context, ExtensionManager* manager);
    /// @throws InternalException "found" for a context that is not on record
    static void leave(Context& context);

    /// One that supports nothing by name, for whoever has the entry points already.
    static ExtensionManager* makeOf(std::shared_ptr<FunctionTable> table) {
        return new ExtensionManager(std::move(table));
    }

    /// What ExtensionManager::Instance() gives.
    static ExtensionManager* current();
};

} // namespace ZLT::OGL::internal
