#include "extensionator/OpenGLErrorChecker.h"

#include "ExceptionOGL.h"
#include "extensionator/OpenGLErrorChecker.inl"

#include <GL/glu.h>

namespace ZLT::OGL {

void Detail::raiseGLError(const char* file, unsigned int line, unsigned int code) {
    throw ExceptionOGL(file, line, reinterpret_cast<const char*>(gluErrorString(code)), code);
}

OpenGLErrorChecker::OpenGLErrorChecker() : insideBeginEnd_(false) {}
OpenGLErrorChecker::~OpenGLErrorChecker() = default;

void OpenGLErrorChecker::cgmBegin(const char* file, unsigned int line, unsigned int mode) {
    if (insideBeginEnd_)
        throw ExceptionOGL(file, line, "Unbalanced glBegin()!", 0);
    insideBeginEnd_ = true;
    glBegin(mode);
}

void OpenGLErrorChecker::cgmEnd(const char* file, unsigned int line) {
    if (!insideBeginEnd_)
        throw ExceptionOGL(file, line, "Unbalanced glEnd()!", 0);
    insideBeginEnd_ = false;
    glEnd();
    check(file, line);
}

// Checked like every other entry, and existing clients rely on it: the first error is the caller's, a second
// one is thrown.
unsigned int OpenGLErrorChecker::cgmGetError(const char* file, unsigned int line) {
    const GLenum code = glGetError();
    check(file, line);
    return code;
}

} // namespace ZLT::OGL
