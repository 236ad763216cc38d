#pragma once

#include "extensionator/OpenGLErrorChecker.h"

#include "platform/GL.h"

/// @file
/// The check behind each call, in one place and inline: with no error it costs a test and `glGetError`.

namespace ZLT::OGL {

namespace Detail {
/// Throws ExceptionOGL with GLU's text for `code`.
[[noreturn]] void raiseGLError(const char* file, unsigned int line, unsigned int code);
} // namespace Detail

inline void OpenGLErrorChecker::check(const char* file, unsigned int line) const {
    if (insideBeginEnd_)
        return;
    if (const GLenum code = glGetError()) [[unlikely]]
        Detail::raiseGLError(file, line, code);
}

} // namespace ZLT::OGL
