// A window by one of the toolkits, and GL by one of the loaders, as the definitions say.

#if defined(WITH_GLEW)
#include <GL/glew.h>
#elif defined(WITH_EPOXY)
#include <epoxy/gl.h>
#endif
#if defined(WITH_FREEGLUT)
#include <GL/freeglut.h>
#elif defined(WITH_SDL)
#include <SDL2/SDL.h>
#include <SDL2/SDL_opengl.h>
#else
#include <GLFW/glfw3.h>
#endif

#include "Scene.h"

namespace {

void drawFrame(int frame) {
    drawScene(frame);
#if defined(WITH_GLEW) || defined(WITH_EPOXY)
    glUseProgram(0);
    glActiveTexture(GL_TEXTURE0);
    glWindowPos2i(3, frame);
#endif
    if (frame == 2)
        printScene("frame 2");
}

} // namespace

int main(int count, char** arguments) {
    static_cast<void>(count), static_cast<void>(arguments);
#if defined(WITH_FREEGLUT)
    glutInit(&count, arguments);
    glutInitDisplayMode(GLUT_RGBA | GLUT_DOUBLE);
    glutInitWindowSize(64, 64);
    glutSetOption(GLUT_ACTION_ON_WINDOW_CLOSE, GLUT_ACTION_GLUTMAINLOOP_RETURNS);
    glutCreateWindow("window");
    glutDisplayFunc([] {
        static int frame = 0;
        drawFrame(++frame);
        glutSwapBuffers();
        frame < 3 ? glutPostRedisplay() : glutLeaveMainLoop();
    });
    glutMainLoop();
    return 4;
#elif defined(WITH_SDL)
    if (SDL_Init(SDL_INIT_VIDEO) != 0)
        return 77;
    SDL_Window* window = SDL_CreateWindow("window", 0, 0, 64, 64, SDL_WINDOW_OPENGL);
    SDL_GLContext context = SDL_GL_CreateContext(window);
    if (!context)
        return 77;
    for (int frame = 1; frame <= 3; ++frame) {
        drawFrame(frame);
        SDL_GL_SwapWindow(window);
    }
    SDL_GL_DeleteContext(context);
    SDL_Quit();
    return 5;
#else
    if (!glfwInit())
        return 77;
    GLFWwindow* window = glfwCreateWindow(64, 64, "window", nullptr, nullptr);
    if (!window)
        return 77;
    glfwMakeContextCurrent(window);
#if defined(WITH_GLEW)
    if (glewInit() != GLEW_OK)
        return 77;
#endif
    for (int frame = 1; frame <= 3; ++frame) {
        drawFrame(frame);
        glfwSwapBuffers(window);
    }
    glfwTerminate();
    return 6;
#endif
}
