#pragma once

#include <exception>

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
/// Tells the reporter of the balance.
void settleBalance();
/// For what the layers let pass: memory that is short, for example.
void tellFailure(const std::exception& failure) noexcept;
/// In a process that was forked off: nothing was told yet.
void forgetReports();

} // namespace ZLT::Interception
