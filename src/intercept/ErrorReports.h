#pragma once

namespace ZLT::OGL {
class OpenGLErrorReporter;
class OpenGLInterceptor;
} // namespace ZLT::OGL

namespace ZLT::Interception {

/// The layer that finds errors, for all threads: it reports into the channel, and in a debugger where that is
/// asked for. Made with the first call.
OGL::OpenGLErrorReporter& errorReporter(OGL::OpenGLInterceptor& next);
/// In a process that was forked off: nothing was told yet.
void forgetReports();

} // namespace ZLT::Interception
