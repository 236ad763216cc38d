// A program for Windows that knows nothing of the command: two windows with contexts of different formats,
// functions by wglGetProcAddress, GLU, a library and a thread. Each marked call is wrong.

#include <windows.h>

#include <GL/gl.h>
#include <GL/glext.h>
#include <GL/glu.h>

#include <cstdio>
#include <thread>

#if defined(LIBRARY)
extern "C" __declspec(dllexport) void inLibrary() {
    glEnable(0xDEAD); /* WRONG */
    glFlush();
}
#else

extern "C" __declspec(dllimport) void inLibrary();

namespace {

struct Window {
    HWND window =
        CreateWindowA("STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 64, 64, nullptr, nullptr, nullptr, nullptr);
    HDC device = GetDC(window);
    HGLRC context;

    explicit Window(BYTE depth) {
        PIXELFORMATDESCRIPTOR wanted = {};
        wanted.nSize = sizeof wanted;
        wanted.nVersion = 1;
        wanted.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
        wanted.cColorBits = 24;
        wanted.cDepthBits = depth;
        SetPixelFormat(device, ChoosePixelFormat(device, &wanted), &wanted);
        context = wglCreateContext(device);
    }
    void makeCurrent() const { wglMakeCurrent(device, context); }
};

[[gnu::noinline]] void last() { glEnable(0xDEAD); /* WRONG */ }

inline void inlined(GLenum cap) {
    glEnable(cap); /* WRONG */
    glFlush();
}

void bind() {
    const auto bindBuffer =
        reinterpret_cast<PFNGLBINDBUFFERPROC>(reinterpret_cast<void*>(wglGetProcAddress("glBindBuffer")));
    bindBuffer(0xDEAD, 1); /* WRONG */
    glFlush();
}

} // namespace

int main() {
    glEnable(GL_BLEND); /* WRONG: no context */
    const Window first(0), second(24);
    first.makeCurrent();
    glEnable(0xDEAD); /* WRONG */
    last();
    inlined(0xDEAD);
    inLibrary();
    bind();
    // Begun by a list, and ended by the program.
    glNewList(1, GL_COMPILE);
    glBegin(GL_TRIANGLES);
    glEndList();
    glCallList(1);
    glVertex2f(0, 0);
    glEnd();
    gluBuild1DMipmaps(GL_TEXTURE_1D, 0xDEAD, 4, GL_RGB, GL_UNSIGNED_BYTE, "123456789012"); /* WRONG: by GLU */
    std::thread([&] {
        second.makeCurrent();
        glEnable(0xDEAD); /* WRONG */
        bind();
        for (int frame = 0; frame < 3; ++frame) {
            glClear(GL_COLOR_BUFFER_BIT);
            SwapBuffers(second.device);
        }
        wglMakeCurrent(nullptr, nullptr);
    }).join();
    std::printf("%s, error %x\n", reinterpret_cast<const char*>(glGetString(GL_VENDOR)), glGetError());
    return 5;
}
#endif
