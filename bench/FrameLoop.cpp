// What captures and checks are measured with, and nothing in front of GL: FrameLoop
// parameters|arrays|cubes|frames COUNT. With `parameters` as many calls of two arguments and four floats,
// with `arrays` as many frames that read 1 MiB of client arrays, with `cubes` as many draws of 24 vertices by
// 36 indices in client arrays, with `frames` as many frames of a thousand calls, of which most are of
// immediate mode and some set state.

#include <EGL/egl.h>
#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

EGLDisplay display;
EGLSurface surface;

bool makeContext() {
    display = eglGetDisplay(EGL_DEFAULT_DISPLAY);
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_NONE};
    const EGLint size[] = {EGL_WIDTH, 64, EGL_HEIGHT, 64, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglInitialize(display, nullptr, nullptr) || !eglBindAPI(EGL_OPENGL_API) ||
        !eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
        return false;
    surface = eglCreatePbufferSurface(display, config, size);
    const EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
    return eglMakeCurrent(display, surface, surface, context);
}

void setParameters(long count) {
    const auto set = reinterpret_cast<PFNGLPROGRAMLOCALPARAMETER4FARBPROC>(
        eglGetProcAddress("glProgramLocalParameter4fARB"));
    std::mt19937 random(1);
    std::vector<float> values(1 << 16);
    for (float& value : values)
        value = static_cast<float>(random()) / 4294967296.0f;
    for (long i = 0; i < count; ++i) {
        const float* const value = &values[static_cast<std::size_t>(i) * 4 % values.size()];
        set(GL_VERTEX_PROGRAM_ARB, static_cast<GLuint>(i) % 64, value[0], value[1], value[2], value[3]);
    }
}

// Vertices of 256 bytes, of which the driver itself uses little.
void drawArrays(long frames) {
    constexpr int stride = 256, vertices = (1 << 20) / stride;
    std::mt19937 random(1);
    std::vector<float> values(vertices * stride / sizeof(float));
    for (float& value : values)
        value = static_cast<float>(random() % 4096) / 1024 - 2;
    glEnableClientState(GL_VERTEX_ARRAY);
    for (long frame = 0; frame < frames; ++frame) {
        for (std::size_t i = 0; i < values.size(); i += 16)
            values[i] += 0.001f; // no frame is as another one
        glVertexPointer(4, GL_FLOAT, stride, values.data());
        glDrawArrays(GL_POINTS, 0, vertices);
        eglSwapBuffers(display, surface);
    }
}

// Three calls for each: what it costs to look at a draw shows most where draws are small.
void drawCubes(long cubes) {
    std::mt19937 random(1);
    std::vector<float> values(24 * 6);
    for (float& value : values)
        value = static_cast<float>(random() % 4096) / 65536;
    std::vector<GLushort> indices(36);
    for (std::size_t i = 0; i < indices.size(); ++i)
        indices[i] = static_cast<GLushort>(i % 24);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    for (long cube = 0; cube < cubes; ++cube) {
        glVertexPointer(3, GL_FLOAT, 24, values.data());
        glColorPointer(3, GL_FLOAT, 24, values.data() + 3);
        glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices.size()), GL_UNSIGNED_SHORT, indices.data());
        if (cube % 1000 == 999)
            eglSwapBuffers(display, surface);
    }
}

void drawFrames(long frames) {
    GLuint textures[8];
    glGenTextures(8, textures);
    std::vector<GLubyte> texels(std::size_t(64) * 64 * 4);
    for (std::size_t i = 0; i < texels.size(); ++i)
        texels[i] = static_cast<GLubyte>(i * 7);
    for (const GLuint texture : textures) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 64, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, texels.data());
    }
    for (long frame = 0; frame < frames; ++frame) {
        glClear(GL_COLOR_BUFFER_BIT);
        for (int object = 0; object < 40; ++object) {
            glBindTexture(GL_TEXTURE_2D, textures[object / 5]);
            glEnable(GL_TEXTURE_2D);
            glBegin(GL_TRIANGLES);
            for (int corner = 0; corner < 9; ++corner) {
                glTexCoord2f(static_cast<float>(corner % 3), static_cast<float>(corner));
                glVertex2f(static_cast<float>((corner * object + frame) % 17) / 8 - 1,
                           static_cast<float>(corner % 4) / 2 - 1);
            }
            glEnd();
            glDisable(GL_TEXTURE_2D);
            glBlendFunc(GL_ONE, object % 2 == 0 ? GL_ZERO : GL_ONE);
            glColor3ub(static_cast<GLubyte>(frame), static_cast<GLubyte>(object * 6), 255);
        }
        eglSwapBuffers(display, surface);
    }
}

} // namespace

int main(int argc, char** argv) {
    if (argc != 3 || !makeContext()) {
        std::fprintf(stderr, "usage: FrameLoop parameters|arrays|cubes|frames COUNT, with a driver\n");
        return 1;
    }
    const std::string kind = argv[1];
    if (kind == "arrays")
        drawArrays(std::atol(argv[2]));
    else if (kind == "frames")
        drawFrames(std::atol(argv[2]));
    else if (kind == "cubes")
        drawCubes(std::atol(argv[2]));
    else
        setParameters(std::atol(argv[2]));
    glFinish();
}
