// A scene with everything that a report tells of: wrong calls, calls that change nothing or wait, costly
// habits, debug groups and labels with hostile names, objects that go and objects that stay.

#include "scenes.h"

namespace Scenes {

namespace {

constexpr const char* vertexSource = "#version 120\nattribute vec2 place;\nvarying vec2 at;\n"
                                     "void main() { at = place; gl_Position = vec4(place, 0, 1); }\n";
constexpr const char* fragmentSource = "#version 120\nuniform sampler2D image;\nvarying vec2 at;\n"
                                       "void main() { gl_FragColor = texture2D(image, at); } // </script>\n";

template <class Function>
Function* later(Function*, const char* name) {
    return reinterpret_cast<Function*>(glfwGetProcAddress(name));
}
#define LATER(name) static auto* const name = later(static_cast<decltype(::name)*>(nullptr), #name)

GLuint kept, gone, buffer, program, list;

GLuint compiled(GLenum kind, const char* source) {
    const GLuint shader = glCreateShader(kind);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    return shader;
}

void makeObjects() {
    LATER(glObjectLabel);
    glGenTextures(1, &kept);
    glGenTextures(1, &gone);
    for (const GLuint texture : {kept, gone}) {
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     checkered(64, 32, 4).data());
    }
    glObjectLabel(GL_TEXTURE, kept, -1, "</script><script>document.title='owned'</script>");
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, 8 * sizeof(float), fresh<float>({-1, -1, 1, -1, 1, 1, -1, 1}).data(),
                 GL_STATIC_DRAW);
    glObjectLabel(GL_BUFFER, buffer, 7, "cornersX");
    program = glCreateProgram();
    for (const GLuint shader :
         {compiled(GL_VERTEX_SHADER, vertexSource), compiled(GL_FRAGMENT_SHADER, fragmentSource)}) {
        glAttachShader(program, shader);
        glDeleteShader(shader);
    }
    glBindAttribLocation(program, 1, "place");
    glLinkProgram(program);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    list = glGenLists(2);
}

// Made anew in each frame, one in the other.
void makeLists() {
    glNewList(list, GL_COMPILE);
    quad();
    glEndList();
    glNewList(list + 1, GL_COMPILE);
    glCallList(list);
    glEndList();
}

void drawShadows() {
    glUseProgram(program);
    glBindTexture(GL_TEXTURE_2D, kept);
    glBindTexture(GL_TEXTURE_2D, kept); // changes nothing
    glUniform1i(glGetUniformLocation(program, "image"), 0);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glVertexAttribPointer(1, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(1);
    glDrawArrays(GL_TRIANGLE_FAN, 0, 4);
    glDisableVertexAttribArray(1);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glUseProgram(0);
}

void drawTrees() {
    glEnable(GL_BLEND);
    glEnable(GL_BLEND); // changes nothing
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glBegin(GL_TRIANGLES);
    for (int corner = 0; corner < 600; ++corner) {
        glColor4f(0, 0.4f + 0.001f * static_cast<float>(corner), 0.1f, 0.5f);
        glVertex2f(static_cast<float>(corner % 30) / 15 - 1, static_cast<float>(corner * 7 % 40) / 20 - 1);
    }
    glEnd();
    glDisable(GL_BLEND);
    makeLists();
    glCallList(list + 1);
}

} // namespace

void reported() {
    LATER(glPushDebugGroup);
    LATER(glPopDebugGroup);
    if (frame == 0)
        makeObjects();
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 1, -1, "Shadows");
    drawShadows();
    glPopDebugGroup();
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 2, -1, "Light");
    glPushDebugGroup(GL_DEBUG_SOURCE_APPLICATION, 3, -1, "Trees <img src=x onerror=document.title='owned'>");
    drawTrees();
    glPopDebugGroup();
    glEnable(0xDEAD);
    glPopDebugGroup();
    // The same bytes each time, and the second texture anew.
    glBindTexture(GL_TEXTURE_2D, kept);
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 64, 32, GL_RGBA, GL_UNSIGNED_BYTE, checkered(64, 32, 4).data());
    if (frame < 3) {
        glBindTexture(GL_TEXTURE_2D, gone);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     checkered(64, 32, 4).data());
    } else {
        glDeleteTextures(1, &gone);
    }
    glFinish();
}

} // namespace Scenes
