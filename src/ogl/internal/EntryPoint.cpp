#include "ogl/internal/EntryPoint.h"

#include "ogl/internal/Composed.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL::internal {

void raiseMissing(const char* function) {
    ZLT_RAISE(composed("The current context has no ", function).c_str());
}

} // namespace ZLT::OGL::internal
