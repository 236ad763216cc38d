// OpenGL ES, which is none of ours.

#include <GLES2/gl2.h>

#include "Headless.h"

int main() {
    if (!makeContext(EGL_NO_CONTEXT, EGL_OPENGL_ES_API))
        return 77;
    glClearColor(0, 1, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glEnable(0xDEAD);
    GLubyte pixel[4] = {};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
    std::printf("%d %d %d %x\n", pixel[0], pixel[1], pixel[2], glGetError());
    return 9;
}
