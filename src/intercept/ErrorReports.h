#pragma once

#include <exception>

namespace ZLT::OGL {
class OpenGLErrorReporter;
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// The layer that finds errors, for all threads: it reports into the channel, and in a debugger where that is
/// asked for. Made with the first call.
OGL::OpenGLErrorReporter& errorReporter(OGL::OpenGLInterceptor& next);
/// After each call, still inside: tells the reporter of the balance, and the user of a context that is not
/// there.
void afterCall(unsigned int number);
/// For what the layers let pass: memory that is short, for example.
void tellFailure(const std::exception& failure) noexcept;
/// In a process that was forked off: nothing was told yet.
void forgetReports();

} // namespace ZLT::Interception
