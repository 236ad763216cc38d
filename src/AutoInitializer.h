#pragma once

#include "Export.h"
#include "LibraryOGL.h"
#include "extensionator/ExtensionManager.h"

namespace ZLT::OGL {

class Context;

/// Starts the library, and stops it at the end of a scope. The core must be started before, and stopped
/// after; destroy contexts and objects before this object.
///
///     ZLT::Core::Library::initialize();
///     {
///         const AutoInitializer library;
///         ContextOffscreen context;
///         ...
///     }
///     ZLT::Core::Library::terminate(&std::cerr);
class ZLT_OGL_API AutoInitializer {
public:
    /// @throws InternalException as Library::initialize(); nothing is stopped then
    AutoInitializer(const Library::InitOptions& options = Library::InitOptions());
    /// Starts the older way, from a context of the client's.
    /// @throws InternalException as Library::initialize_DEPRECATED_2_5(); nothing is stopped then
    AutoInitializer(Context* context, const ExtensionManager::InitOptions& options);
    AutoInitializer(const AutoInitializer&) = delete;
    AutoInitializer& operator=(const AutoInitializer&) = delete;
    /// Stops the library the way it was started, unless release() was called. A stop that fails is silent.
    ~AutoInitializer();

    /// The library stays started after the end of this object.
    void release();

private:
    bool active_;
    bool deprecated_;
};

} // namespace ZLT::OGL
