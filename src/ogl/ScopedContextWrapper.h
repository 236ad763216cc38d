#pragma once

#include "Export.h"
#include "platform/Platform.h"

namespace ZLT::OGL {

/// Saves what is current on the calling thread and puts it back at the end of a scope, also when nothing was
/// current. Destroy it on the thread that made it. A restore that fails is silent.
class ZLT_OGL_API ScopedContextWrapper {
public:
    ScopedContextWrapper();
    ScopedContextWrapper(const ScopedContextWrapper&) = delete;
    ScopedContextWrapper& operator=(const ScopedContextWrapper&) = delete;
    virtual ~ScopedContextWrapper();

private:
    HDC savedDeviceContext_;
    HGLRC savedRenderContext_;
};

} // namespace ZLT::OGL
