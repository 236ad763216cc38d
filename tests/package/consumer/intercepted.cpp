// Compiled through the installed gl_intercept.h: all its macros and declarations must stand on their own, and
// so must the headers that main.cpp has no use for.

#include <ExceptionOGL.h>
#include <InternalWindow.h>
#include <extensionator/FunctionTable.h>
#include <extensionator/OpenGLErrorChecker.h>
#include <extensionator/OpenGLRekorder.h>
#include <ogl/ScopedContextWrapper.h>
#include <platform/WglTokens.h>
// Behind those that declare or call GL functions.
#include <extensionator/gl_intercept.h>
#include <extensionator/gl_tokens.h>
#include <extensionator/win/wglErrorChecker.h>
#include <extensionator/win/wglRekorder.h>
#include <zlt/core/Enforce.h>
#include <zlt/core/Math.h>
#include <zlt/core/memory/ZLTDeleter.h>

extern "C" void intercepted() {
    const GLfloat identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glLoadMatrixf(identity);
    glActiveTexture(GL_TEXTURE0);
}
