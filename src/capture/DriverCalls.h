#pragma once

#include "capture/Export.h"
#include "extensionator/OpenGLInterceptor.h"

#include <memory>

namespace ZLT::OGL {
struct CallPlace;
} // namespace ZLT::OGL

namespace ZLT::Capture {

/// The end of a chain for who plays a capture: every call goes to the driver of the current context, and no
/// error is asked for. A function that the driver lacks does nothing, and is noted.
class ZLT_CAPTURE_API DriverCalls : public OGL::OpenGLInterceptor {
public:
    DriverCalls();
    ~DriverCalls() override;

    /// The calling thread's context changed: its functions may be others.
    void contextChanged();
    /// "glFoo", of the first function that was missing; null for none.
    const char* missing() const;

#include "extensionator/LayerEntries.inl"

private:
    template <class Result, class... Parameters>
    Result called(OGL::CallPlace place, Parameters... arguments);
    void (*functionOf(unsigned int number))();
    struct Functions;
    std::unique_ptr<Functions> functions_;
};

} // namespace ZLT::Capture
