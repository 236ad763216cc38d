#pragma once

#include "ogl/ContextOffscreen.h"

namespace Bench {

/// The library, started on Linux without an X server whatever DISPLAY says, and a context of it that is
/// current in the calling thread, for as long as this lives. One at a time.
class LibraryContext {
public:
    ZLT::OGL::ContextOffscreen& context() { return context_; }

private:
    struct Started {
        Started();
        ~Started();
    };
    struct CurrentContext : ZLT::OGL::ContextOffscreen {
        CurrentContext();
    };

    Started started_;
    CurrentContext context_;
};

} // namespace Bench
