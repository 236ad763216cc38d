#pragma once

namespace ZLT::OGL {
class OpenGLInterceptor;
} // namespace ZLT::OGL

/// @file
/// Checks that GL itself does not make, of `zlt_ogl check --more`: what a draw reads, where pointers point,
/// which names there are, whether framebuffers, programs and textures are complete.

namespace ZLT::Interception {

/// The layer that makes them, for all threads. It stands behind the one that finds errors. Made with the
/// first call.
OGL::OpenGLInterceptor& moreChecks(OGL::OpenGLInterceptor& next);

} // namespace ZLT::Interception
