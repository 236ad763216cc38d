#pragma once

#include <exception>
#include <string_view>

namespace ZLT::OGL {
class OpenGLCall;
class OpenGLErrorReporter;
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// The layer that finds errors, for all threads: it reports into the channel, and in a debugger where that is
/// asked for. Made with the first call.
OGL::OpenGLErrorReporter& errorReporter(OGL::OpenGLInterceptor& next);
/// After a call without a context that is known.
void tellMissingContext(const OGL::OpenGLCall& call);
/// Something that GL itself does not report. It may be told before the call or after it.
/// @param check  its rule, constant: "out-of-bounds"
void tellFinding(const OGL::OpenGLCall& call, const char* check, std::string_view reason);
/// Whether a layer may ask the driver about the state of the thread's context now: there is one, it is not
/// lost, and not between glBegin and glEnd.
bool mayAskDriver();
/// In front of what a layer asks the driver: errors that are there are told, as somebody else's.
void tellPending(const OGL::OpenGLCall& call);
/// Afterwards: whatever that raised or had the driver say is gone.
void dropOwnErrors();
/// Tells the reporter of the balance.
void settleBalance();
/// For what the layers let pass: memory that is short, for example.
void tellFailure(const std::exception& failure) noexcept;
/// In a process that was forked off: nothing was told yet.
void forgetReports();

} // namespace ZLT::Interception
