#pragma once

#include "FakeGL.h"
#include "FakeWindowSystem.h"
#include "LibraryOGL.h"
#include "ogl/ContextOffscreen.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"

#include <optional>
#include <string>

/// @file
/// The library, started on the modelled window system.

namespace ZLT::OGL {

/// The message of the exception that `body` throws, behind a '!' when it is more than a LogicalException; ""
/// when it throws none.
template <class Body>
std::string failureOf(const Body& body) {
    try {
        body();
    } catch (const InternalException& exception) {
        return std::string("!") + exception.what();
    } catch (const LogicalException& exception) {
        return exception.what();
    }
    return "";
}

/// The same for a body that runs in a destructor, while another exception unwinds the stack.
template <class Body>
std::string failureWhileUnwinding(const Body& body) {
    struct AtEnd {
        const Body& body;
        std::string& failure;
        ~AtEnd() { failure = failureOf(body); }
    };
    std::string failure;
    try {
        const AtEnd end{body, failure};
        throw 0;
    } catch (int) {
        return failure;
    }
}

/// The core and the library, as long as it lives. No context may be left at the end, and no layer.
struct StartedLibrary {
    StartedLibrary() {
        Core::Library::initialize();
        Library::initialize(Library::InitOptions());
    }
    ~StartedLibrary() {
        Library::terminate();
        Core::Library::terminate();
    }
    StartedLibrary(const StartedLibrary&) = delete;
    StartedLibrary& operator=(const StartedLibrary&) = delete;
};

/// With every function of GL loaded, and a context that is current. FakeGL begins anew behind it.
struct LibraryWithAllOfGL {
    struct System : FakeWindowSystem {
        explicit System(const std::string& more) {
            devices[0].driver.extensions = FakeGL::extensionNames() + more;
        }
    } system;
    StartedLibrary library;
    ContextOffscreen context;

    /// @param more  extensions without functions, with blanks between
    explicit LibraryWithAllOfGL(const std::string& more = "") : system(more) {
        context.makeCurrent();
        FakeGL::reset();
    }
    // What can't be destroyed ends the program: the members would throw.
    ~LibraryWithAllOfGL() noexcept = default;
};

inline FakeDriver driverOf(const std::string& version, const std::string& extensions = "") {
    FakeDriver driver;
    driver.version = version;
    driver.extensions = extensions;
    return driver;
}

/// The library on a driver, with a context current.
struct OnDriver {
    explicit OnDriver(const FakeDriver& driver) { system.devices[0].driver = driver; }
    ~OnDriver() noexcept = default;
    /// Starts at the first use.
    ExtensionManager& manager() {
        if (!context) {
            library.emplace();
            context.emplace();
            context->makeCurrent();
        }
        return *ExtensionManager::Instance();
    }
    /// A second display, beside the first.
    DISPLAY_DEVICEA add(const FakeDriver& driver) {
        system.devices.push_back({"second", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 1000, 0, driver});
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(1, device);
        return device;
    }
    FakeWindowSystem system;
    std::optional<StartedLibrary> library;
    std::optional<ContextOffscreen> context;
};

} // namespace ZLT::OGL
