#pragma once

#include "FakeGL.h"
#include "FakeWindowSystem.h"
#include "LibraryOGL.h"
#include "ogl/ContextOffscreen.h"
#include "zlt/core/Core.h"

#include <optional>

/// @file
/// The library, started on the modelled window system.

namespace ZLT::OGL {

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
        System() { devices[0].driver.extensions = FakeGL::extensionNames(); }
    } system;
    StartedLibrary library;
    ContextOffscreen context;

    LibraryWithAllOfGL() {
        context.makeCurrent();
        FakeGL::reset();
    }
    // What can't be destroyed ends the program: the members would throw.
    ~LibraryWithAllOfGL() noexcept = default;
};

} // namespace ZLT::OGL
