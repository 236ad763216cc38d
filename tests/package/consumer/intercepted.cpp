// Compiled through the installed gl_intercept.h: all its macros and declarations must stand on their own.

#include <extensionator/FunctionTable.h>
#include <extensionator/gl_intercept.h>

extern "C" void intercepted() {
    const GLfloat identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    glLoadMatrixf(identity);
    glActiveTexture(GL_TEXTURE0);
}
