// Wrong calls, one for each argument, and the line of each marked by its name.

#include "Headless.h"

#include <GL/glu.h>

#include <string>
#include <thread>

#ifdef LIBRARY
extern "C" void wrongInLibrary() {
    glEnable(0xDEAD); /* WRONG library */
    glFlush();
}
#else
extern "C" void wrongInLibrary();

static inline void inlined(GLenum what) { glEnable(what); /* WRONG inlined */ }

[[gnu::noinline]] static void last() { glEnable(0xDEAD); /* WRONG last */ }

[[gnu::noinline]] static void mipmaps() {
    const GLubyte pixels[16] = {};
    gluBuild1DMipmaps(GL_TEXTURE_2D, GL_RGBA, 4, GL_RGBA, GL_UNSIGNED_BYTE, pixels); /* WRONG mipmaps */
    glFlush();
}

int main(int, char** arguments) {
    const std::string way = arguments[1];
    if (way == "early")
        glEnable(GL_LIGHTING); /* WRONG early */
    const EGLContext context = makeContext();
    if (!context)
        return 77;
    if (way == "own")
        glEnable(0xDEAD); /* WRONG own */
    if (way == "last")
        last();
    if (way == "inlined")
        inlined(0xDEAD);
    if (way == "list") {
        glNewList(1, GL_COMPILE);
        glEnable(0xDEAD);
        glEndList();
        glCallList(1); /* WRONG list */
    }
    if (way == "mipmaps")
        mipmaps();
    if (way == "library")
        wrongInLibrary();
    if (way == "thread")
        std::thread([&] {
            makeContext(context);
            glEnable(0xDEAD); /* WRONG thread */
            glFlush();
        }).join();
    glFinish();
    std::printf("%x\n", glGetError());
}
#endif
