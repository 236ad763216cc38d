#include "LibraryContext.h"

#include "LibraryOGL.h"
#include "zlt/core/Core.h"

#include <cstdlib>

namespace Bench {

LibraryContext::Started::Started() {
#if !defined(_WIN32)
    setenv("ZLT_OGL_PLATFORM", "headless", 1);
#endif
    ZLT::Core::Library::initialize();
    ZLT::OGL::Library::initialize(ZLT::OGL::Library::InitOptions());
}

LibraryContext::Started::~Started() {
    ZLT::OGL::Library::terminate();
    ZLT::Core::Library::terminate();
}

LibraryContext::CurrentContext::CurrentContext() { makeCurrent(); }

} // namespace Bench
