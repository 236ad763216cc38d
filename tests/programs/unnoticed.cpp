// Calls that GL takes without an error, though they are wrong; and others that look like them and are right.
// One case for each argument; those that are wrong have a mark. Each ends with what glGetError and the
// bindings say.

#define GL_GLEXT_PROTOTYPES
#include "Headless.h"

#include <GL/glext.h>
#include <sys/mman.h>

#include <cstddef>
#include <cstring>
#include <map>
#include <string>
#include <thread>
#include <vector>

static EGLContext context;

template <class Function>
static Function function(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

static GLuint makeBuffer(GLenum target, GLsizeiptr size, const void* data) {
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(target, buffer);
    glBufferData(target, size, data, GL_STATIC_DRAW);
    return buffer;
}

// Vertices in a buffer, of three floats each.
static void makeVertices(int count) {
    const std::vector<GLfloat> vertices(static_cast<std::size_t>(count) * 3);
    makeBuffer(GL_ARRAY_BUFFER, GLsizeiptr(vertices.size() * sizeof(GLfloat)), vertices.data());
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
}

// Two pages, of which the second can't be read: the end of the first one.
static char* endOfMemory() {
    static char* const pages = static_cast<char*>(
        mmap(nullptr, 2 * 4096, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
    mprotect(pages + 4096, 4096, PROT_NONE);
    return pages + 4096;
}

static GLuint makeTexture(int size, GLint filter, int levels = 1) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    for (int level = 0; level < levels; ++level)
        glTexImage2D(GL_TEXTURE_2D, level, GL_RGBA, size >> level, size >> level, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, nullptr);
    return texture;
}

static void makeCube(int sizeOfOne) {
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_CUBE_MAP, texture);
    glTexParameteri(GL_TEXTURE_CUBE_MAP, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    for (GLenum face = 0; face < 6; ++face) {
        const int size = face == 4 ? sizeOfOne : 4;
        glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA, size, size, 0, GL_RGBA,
                     GL_UNSIGNED_BYTE, nullptr);
    }
}

static GLuint makeProgram(const char* fragment) {
    const auto compile = [](GLenum type, const char* text) {
        const GLuint shader = glCreateShader(type);
        glShaderSource(shader, 1, &text, nullptr);
        glCompileShader(shader);
        return shader;
    };
    const GLuint program = glCreateProgram();
    glAttachShader(
        program,
        compile(GL_VERTEX_SHADER, "attribute vec4 extra; void main() { gl_Position = gl_Vertex + extra; }"));
    glAttachShader(program, compile(GL_FRAGMENT_SHADER, fragment));
    glBindAttribLocation(program, 5, "extra");
    glLinkProgram(program);
    glUseProgram(program);
    return program;
}

static GLuint makeFramebuffer(int width, int height) {
    GLuint framebuffer = 0, color = 0;
    glGenFramebuffers(1, &framebuffer);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glGenRenderbuffers(1, &color);
    glBindRenderbuffer(GL_RENDERBUFFER, color);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color);
    return framebuffer;
}

static void drawSquare() { glRecti(0, 0, 1, 1); }

static const char* const twoSamplers = "uniform sampler2D flat; uniform samplerCube cube;"
                                       "void main() { gl_FragColor = texture2D(flat, vec2(0.0))"
                                       " + textureCube(cube, vec3(1.0)); }";
static const char* const plain = "void main() { gl_FragColor = vec4(1.0); }";
constexpr GLushort indices[] = {0, 1, 2, 9, 0xFFFF};

static const std::map<std::string, void (*)()> cases = {
    {"arrays in buffer", [] { makeVertices(3), glDrawArrays(GL_POINTS, 0, 3); }},
    {"arrays beyond buffer",
     [] {
         makeVertices(3);
         glDrawArrays(GL_POINTS, 1, 3); /* WRONG arrays beyond buffer */
     }},
    {"strided to the last byte",
     [] {
         makeVertices(4);
         glVertexPointer(3, GL_FLOAT, 18, reinterpret_cast<void*>(0));
         glDrawArrays(GL_POINTS, 0, 3);
     }},
    {"grown buffer",
     [] {
         makeVertices(1);
         glDrawArrays(GL_POINTS, 0, 1);
         glBufferData(GL_ARRAY_BUFFER, 120, nullptr, GL_STATIC_DRAW);
         glDrawArrays(GL_POINTS, 0, 10);
     }},
    {"shrunk buffer",
     [] {
         makeVertices(10);
         glDrawArrays(GL_POINTS, 0, 10);
         glBufferData(GL_ARRAY_BUFFER, 60, nullptr, GL_STATIC_DRAW);
         glDrawArrays(GL_POINTS, 0, 10); /* WRONG shrunk buffer */
     }},
    {"many arrays",
     [] {
         makeVertices(3);
         const GLint first[] = {0, 2};
         const GLsizei count[] = {2, 2};
         glMultiDrawArrays(GL_POINTS, first, count, 1);
         glMultiDrawArrays(GL_POINTS, first, count, 2); /* WRONG many arrays */
     }},
    {"elements in buffer",
     [] {
         makeVertices(3);
         makeBuffer(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices);
         glDrawElements(GL_POINTS, 3, GL_UNSIGNED_SHORT, nullptr);
         // Others in the same place.
         const GLushort last = 2;
         glBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 6, sizeof last, &last);
         glDrawElements(GL_POINTS, 4, GL_UNSIGNED_SHORT, nullptr);
     }},
    {"elements written later",
     [] {
         makeVertices(3);
         makeBuffer(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices);
         glDrawElements(GL_POINTS, 3, GL_UNSIGNED_SHORT, nullptr);
         void* const memory = glMapBuffer(GL_ELEMENT_ARRAY_BUFFER, GL_WRITE_ONLY);
         std::memcpy(memory, indices + 3, sizeof *indices);
         glUnmapBuffer(GL_ELEMENT_ARRAY_BUFFER);
         glDrawElements(GL_POINTS, 3, GL_UNSIGNED_SHORT, nullptr); /* WRONG elements written later */
     }},
    {"elements beyond their buffer",
     [] {
         makeVertices(10);
         makeBuffer(GL_ELEMENT_ARRAY_BUFFER, 6, indices);
         glDrawElements(GL_POINTS, 4, GL_UNSIGNED_SHORT, nullptr); /* WRONG elements beyond their buffer */
     }},
    {"range",
     [] {
         makeVertices(10);
         glDrawRangeElements(GL_POINTS, 0, 9, 4, GL_UNSIGNED_SHORT, indices);
         glDrawRangeElements(GL_POINTS, 0, 8, 4, GL_UNSIGNED_SHORT, indices); /* WRONG range */
     }},
    {"restart",
     [] {
         makeVertices(10);
         glEnable(GL_PRIMITIVE_RESTART);
         glPrimitiveRestartIndex(0xFFFF);
         glDrawElements(GL_LINES, 5, GL_UNSIGNED_SHORT, indices);
     }},
    {"array element",
     [] {
         makeVertices(3);
         glBegin(GL_POINTS);
         glArrayElement(2);
         glEnd();
         glDrawArrays(GL_POINTS, 0, 1);
         glBegin(GL_POINTS);
         glArrayElement(3); /* WRONG array element */
         glEnd();
     }},
    {"compiled arrays",
     [] {
         makeVertices(3);
         makeTexture(4, GL_LINEAR_MIPMAP_LINEAR);
         glEnable(GL_TEXTURE_2D); // a list that is compiled samples nothing
         glNewList(1, GL_COMPILE);
         glDrawArrays(GL_POINTS, 0, 3);
         drawSquare();
         glEndList();
     }},
    {"unused attribute",
     [] {
         makeProgram(plain);
         makeVertices(3);
         makeBuffer(GL_ARRAY_BUFFER, 4, nullptr);
         glVertexAttribPointer(6, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
         glEnableVertexAttribArray(6);
         glDrawArrays(GL_POINTS, 0, 3);
     }},
    {"short attribute",
     [] {
         makeProgram(plain);
         makeVertices(3);
         makeBuffer(GL_ARRAY_BUFFER, 32, nullptr);
         glVertexAttribPointer(5, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
         glEnableVertexAttribArray(5);
         glDrawArrays(GL_POINTS, 0, 3); /* WRONG short attribute */
     }},
    {"instanced attribute",
     [] {
         makeProgram(plain);
         makeVertices(3);
         makeBuffer(GL_ARRAY_BUFFER, 32, nullptr);
         glVertexAttribPointer(5, 4, GL_FLOAT, GL_FALSE, 0, nullptr);
         function<PFNGLVERTEXATTRIBDIVISORARBPROC>("glVertexAttribDivisorARB")(5, 2);
         const auto draw = function<PFNGLDRAWARRAYSINSTANCEDARBPROC>("glDrawArraysInstancedARB");
         glEnableVertexAttribArray(5);
         draw(GL_POINTS, 0, 3, 4);
         draw(GL_POINTS, 0, 3, 5); /* WRONG instanced attribute */
     }},
    {"memory to its end",
     [] {
         glVertexPointer(3, GL_FLOAT, 0, endOfMemory() - 36);
         glEnableClientState(GL_VERTEX_ARRAY);
         glDrawArrays(GL_POINTS, 0, 3);
         glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
         glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 3, 2, 0, GL_RGB, GL_UNSIGNED_BYTE, endOfMemory() - 18);
         makeBuffer(GL_ARRAY_BUFFER, 12, endOfMemory() - 12);
         glTexImage2D(GL_PROXY_TEXTURE_2D, 0, GL_RGB, 4, 4, 0, GL_RGB, GL_UNSIGNED_BYTE, endOfMemory() - 18);
     }},
    {"memory beyond its end",
     [] {
         glVertexPointer(3, GL_FLOAT, 0, endOfMemory() - 24);
         glEnableClientState(GL_VERTEX_ARRAY);
         glDrawArrays(GL_POINTS, 0, 3); /* WRONG memory beyond its end */
     }},
    {"indices beyond their memory",
     [] {
         makeVertices(3);
         const void* const from = endOfMemory() - 4;
         glDrawElements(GL_POINTS, 3, GL_UNSIGNED_SHORT, from); /* WRONG indices beyond their memory */
     }},
    {"pixels beyond their memory",
     [] {
         const void* const from = endOfMemory() - 18;
         const GLenum flat = GL_TEXTURE_2D, bytes = GL_UNSIGNED_BYTE;
         glTexImage2D(flat, 0, GL_RGB, 3, 2, 0, GL_RGB, bytes, from); /* WRONG pixels beyond their memory */
     }},
    {"data beyond its memory",
     [] {
         makeBuffer(GL_ARRAY_BUFFER, 16, nullptr);
         glBufferSubData(GL_ARRAY_BUFFER, 0, 16, endOfMemory() - 12); /* WRONG data beyond its memory */
     }},
    {"names of nothing",
     [] {
         glBindTexture(GL_TEXTURE_2D, 0);
         glBindBuffer(GL_ARRAY_BUFFER, 0);
         GLuint texture = makeTexture(4, GL_NEAREST);
         glDeleteTextures(1, &texture);
         glDeleteTextures(1, &texture);
         glGenTextures(1, &texture);
         glBindTexture(GL_TEXTURE_2D, texture);
         glNewList(77, GL_COMPILE);
         glEndList();
         glCallList(78);
     }},
    {"name of another context",
     [] {
         const GLuint texture = makeTexture(4, GL_NEAREST);
         std::thread([texture] {
             makeContext(context);
             glBindTexture(GL_TEXTURE_2D, texture);
             glDeleteTextures(1, &texture);
         }).join();
     }},
    {"made-up texture",
     [] {
         glBindTexture(GL_TEXTURE_2D, 5); /* WRONG made-up texture */
         glBindTexture(GL_TEXTURE_2D, 0);
         glBindTexture(GL_TEXTURE_2D, 5);
     }},
    {"deleted texture",
     [] {
         const GLuint texture = makeTexture(4, GL_NEAREST);
         glDeleteTextures(1, &texture);
         glBindTexture(GL_TEXTURE_2D, texture); /* WRONG deleted texture */
     }},
    {"made-up buffer",
     [] {
         glBindBuffer(GL_ARRAY_BUFFER, 9); /* WRONG made-up buffer */
     }},
    {"deleted buffer",
     [] {
         const GLuint buffer = makeBuffer(GL_ARRAY_BUFFER, 4, nullptr);
         glDeleteBuffers(1, &buffer);
         glBindBuffer(GL_ARRAY_BUFFER, buffer); /* WRONG deleted buffer */
     }},
    {"framebuffer", [] { makeFramebuffer(8, 8), drawSquare(), glClear(GL_COLOR_BUFFER_BIT); }},
    {"incomplete and not drawn to",
     [] {
         const GLuint framebuffer = makeFramebuffer(0, 0);
         glBindFramebuffer(GL_FRAMEBUFFER, 0);
         drawSquare();
         glDeleteFramebuffers(1, &framebuffer);
     }},
    {"framebuffer without image",
     [] {
         makeFramebuffer(0, 0);
         glRecti(0, 0, 1, 1); /* WRONG framebuffer without image */
     }},
    {"framebuffer of nothing",
     [] {
         GLuint framebuffer = 0;
         glGenFramebuffers(1, &framebuffer);
         glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
         glRecti(0, 0, 1, 1); /* WRONG framebuffer of nothing */
     }},
    {"linked program", [] { makeProgram(plain), drawSquare(); }},
    {"two units",
     [] {
         const GLuint program = makeProgram(twoSamplers);
         glUniform1i(glGetUniformLocation(program, "cube"), 1);
         makeTexture(4, GL_NEAREST);
         glActiveTexture(GL_TEXTURE1);
         makeCube(4);
         drawSquare();
     }},
    {"one unit for two samplers",
     [] {
         makeProgram(twoSamplers);
         makeTexture(4, GL_NEAREST);
         glRecti(0, 0, 1, 1); /* WRONG one unit for two samplers */
     }},
    {"failed link",
     [] {
         const GLuint program = makeProgram(plain);
         const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER); // which was never compiled
         glAttachShader(program, shader);
         glLinkProgram(program);
         glRecti(0, 0, 1, 1); /* WRONG failed link */
     }},
    {"textures that are complete",
     [] {
         glEnable(GL_TEXTURE_2D);
         makeTexture(4, GL_LINEAR);
         drawSquare();
         makeTexture(4, GL_LINEAR_MIPMAP_LINEAR, 3);
         drawSquare();
         makeTexture(8, GL_LINEAR_MIPMAP_LINEAR, 2);
         glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAX_LEVEL, 1);
         drawSquare();
         // Not complete, but the other target is stronger.
         makeTexture(8, GL_LINEAR_MIPMAP_LINEAR);
         glEnable(GL_TEXTURE_3D);
         GLuint texture = 0;
         glGenTextures(1, &texture);
         glBindTexture(GL_TEXTURE_3D, texture);
         glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
         glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA, 4, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
         drawSquare();
         glDisable(GL_TEXTURE_3D);
         glGenerateMipmap(GL_TEXTURE_2D);
         drawSquare();
         glDisable(GL_TEXTURE_2D);
         makeTexture(4, GL_LINEAR_MIPMAP_LINEAR);
         drawSquare();
     }},
    {"nameless texture", // with it the unit samples nothing
     [] {
         glEnable(GL_TEXTURE_2D);
         drawSquare();
     }},
    {"list that is executed as it is made", // and has no calls but the program's
     [] {
         makeTexture(4, GL_LINEAR);
         glEnable(GL_TEXTURE_2D);
         glNewList(1, GL_COMPILE_AND_EXECUTE);
         drawSquare();
         glEndList();
         glActiveTexture(GL_TEXTURE1);
         glCallList(1); // the unit is told in the end
     }},
    {"later storage",
     [] {
         glEnable(GL_TEXTURE_2D);
         GLuint texture = 0;
         glGenTextures(1, &texture);
         glBindTexture(GL_TEXTURE_2D, texture);
         glTexStorage2D(GL_TEXTURE_2D, 2, GL_RGBA8, 4, 4);
         drawSquare();
     }},
    {"missing level",
     [] {
         glEnable(GL_TEXTURE_2D);
         makeTexture(4, GL_LINEAR_MIPMAP_LINEAR, 2);
         glRecti(0, 0, 1, 1); /* WRONG missing level */
     }},
    {"other format",
     [] {
         glEnable(GL_TEXTURE_2D);
         makeTexture(2, GL_LINEAR_MIPMAP_LINEAR, 2);
         drawSquare();
         glTexImage2D(GL_TEXTURE_2D, 1, GL_ALPHA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
         glRecti(0, 0, 1, 1); /* WRONG other format */
     }},
    {"unequal faces",
     [] {
         glEnable(GL_TEXTURE_CUBE_MAP);
         makeCube(2);
         glRecti(0, 0, 1, 1); /* WRONG unequal faces */
     }},
    {"sampled without image",
     [] {
         makeProgram("uniform sampler2D flat; void main() { gl_FragColor = texture2D(flat, vec2(0.0)); }");
         glActiveTexture(GL_TEXTURE2); // which stays
         glRecti(0, 0, 1, 1);          /* WRONG sampled without image */
     }},
    {"offset from null",
     [] {
         makeProgram(plain);
         const auto* const value = reinterpret_cast<const GLfloat*>(0x40);
         glUniform4fv(-1, 1, value); /* WRONG offset from null */
     }},
    {"thread without context",
     [] {
         std::thread([] {
             glEnable(GL_LIGHTING); /* WRONG thread without context */
         }).join();
     }},
};

int main(int, char** arguments) {
    context = makeContext();
    if (!context)
        return 77;
    cases.at(arguments[1])();
    std::printf("%x\n", glGetError());
    for (const GLenum binding : {GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_CUBE_MAP, GL_ARRAY_BUFFER_BINDING,
                                 GL_ELEMENT_ARRAY_BUFFER_BINDING, GL_ACTIVE_TEXTURE, GL_CLIENT_ACTIVE_TEXTURE,
                                 GL_CURRENT_PROGRAM, GL_FRAMEBUFFER_BINDING, GL_RENDERBUFFER_BINDING}) {
        GLint value = 0;
        glGetIntegerv(binding, &value);
        std::printf("%d ", value);
    }
    std::printf("%x\n", glGetError());
}
