// The scenes of programs, in each of their languages, and of framebuffers.

#include "scenes.h"

#include <cstdio>
#include <cstring>
#include <iterator>
#include <utility>

namespace Scenes {

void assembly() {
    const char* const vertex = "!!ARBvp1.0\nPARAM m[4] = { state.matrix.mvp };\nPARAM c = program.local[3];\n"
                               "DP4 result.position.x, m[0], vertex.position;\n"
                               "DP4 result.position.y, m[1], vertex.position;\n"
                               "DP4 result.position.z, m[2], vertex.position;\n"
                               "DP4 result.position.w, m[3], vertex.position;\n"
                               "MUL result.color, c, vertex.attrib[3];\nEND\n";
    const char* const fragment =
        "!!ARBfp1.0\nPARAM e = program.env[1];\nADD result.color, fragment.color, e;\nEND\n";
    static GLuint names[2];
    if (names[0] == 0) {
        glGenProgramsARB(1, names);
        names[1] = 333; // made up
        glBindProgramARB(GL_VERTEX_PROGRAM_ARB, names[0]);
        glProgramStringARB(GL_VERTEX_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
                           static_cast<int>(std::strlen(vertex)), vertex);
        glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, names[1]);
        glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
                           static_cast<int>(std::strlen(fragment)), fragment);
    }
    glBindProgramARB(GL_VERTEX_PROGRAM_ARB, names[0]);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, names[1]);
    glEnable(GL_VERTEX_PROGRAM_ARB), glEnable(GL_FRAGMENT_PROGRAM_ARB);
    const float color[] = {1, 0.5f, 0.25f * static_cast<float>(frame), 1};
    glProgramLocalParameter4fvARB(GL_VERTEX_PROGRAM_ARB, 3, color);
    glProgramEnvParameter4dARB(GL_FRAGMENT_PROGRAM_ARB, 1, 0, 0.2, 0, 0);
    const std::vector<unsigned char> attribute = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255};
    const auto points = fresh<float>({-0.9f, -0.9f, 0.9f, -0.9f, 0, 0.9f});
    glVertexAttribPointer(3, 4, GL_UNSIGNED_BYTE, 1, 0, attribute.data());
    glVertexAttribPointer(0, 2, GL_FLOAT, 0, 0, points.data());
    glEnableVertexAttribArray(3), glEnableVertexAttribArray(0);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisableVertexAttribArray(3), glDisableVertexAttribArray(0);
    glDisable(GL_VERTEX_PROGRAM_ARB), glDisable(GL_FRAGMENT_PROGRAM_ARB);
}

static GLuint compiled(GLenum type, std::initializer_list<const char*> parts) {
    const GLuint shader = glCreateShader(type);
    std::vector<const char*> texts(parts);
    std::vector<GLint> lengths;
    for (const char* text : texts)
        lengths.push_back(lengths.empty() ? -1 : static_cast<GLint>(std::strlen(text)));
    glShaderSource(shader, static_cast<GLsizei>(texts.size()), texts.data(), lengths.data());
    glCompileShader(shader);
    GLint good = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &good);
    char log[400] = "";
    glGetShaderInfoLog(shader, sizeof log, nullptr, log);
    if (!good)
        std::printf("%s\n", log);
    return shader;
}

void shaders() {
    static GLuint program = 0;
    static GLint places[12];
    const char* const names[] = {"scale",   "tint", "matrix", "offsets[0]", "offsets[1]",
                                 "picture", "wide", "flag",   "count"};
    if (program == 0) {
        program = glCreateProgram();
        const GLuint parts[] = {
            compiled(
                GL_VERTEX_SHADER,
                {"#version 130\n",
                 "uniform float scale; uniform mat3 matrix; uniform mat2x3 wide; uniform vec2 offsets[3];\n",
                 "in vec2 position; in vec4 color; in uvec2 bits; out vec4 shade;\n"
                 "void main() { vec3 p = matrix * vec3(position * scale + offsets[1] + offsets[2], 1.0);\n"
                 "shade = color + vec4(wide * vec2(0.1, 0.2), 0.0) + vec4(float(bits.x) / 10.0);\n"
                 "gl_Position = vec4(p.xy, 0.0, 1.0); }\n"}),
            compiled(GL_FRAGMENT_SHADER,
                     {"#version 130\n",
                      "uniform vec4 tint; uniform sampler2D picture; uniform bool flag; uniform int count;\n",
                      "in vec4 shade; out vec4 result;\n"
                      "void main() { result = shade * tint + texture(picture, vec2(0.3)) * float(count); if "
                      "(flag) result = result.grba; }\n"})};
        for (const GLuint part : parts)
            glAttachShader(program, part), glDeleteShader(part);
        glBindAttribLocation(program, 5, "color");
        glLinkProgram(program);
        for (std::size_t i = 0; i < std::size(names); ++i)
            places[i] = glGetUniformLocation(program, names[i]);
    }
    glUseProgram(program);
    glUniform1f(places[0], 0.8f);
    const float tint[] = {1, 0.5f, 1, 1}, matrix[] = {1, 0, 0, 0, 1, 0, 0.1f, 0.1f, 1},
                wide[] = {1, 2, 3, 4, 5, 6};
    glUniform4fv(places[1], 1, tint);
    glUniformMatrix3fv(places[2], 1, frame % 2 == 0, matrix);
    const float offsets[] = {0.1f, 0, 0, 0.1f, 0.05f, 0.05f};
    glUniform2fv(places[3], 3, offsets);
    glUniform2f(places[4], 0.2f, 0.2f);
    glUniform1i(places[5], 0);
    glUniformMatrix2x3fv(places[6], 1, 0, wide);
    glUniform1i(places[7], frame % 2);
    glUniform1i(places[8], 1);
    glBindTexture(GL_TEXTURE_2D, 40);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, checkered(2, 2, 4).data());
    const auto position = static_cast<GLuint>(glGetAttribLocation(program, "position"));
    const auto bits = static_cast<GLuint>(glGetAttribLocation(program, "bits"));
    const auto points = fresh<float>({-0.9f, -0.9f, 0.9f, -0.9f, 0, 0.9f});
    const auto colors = fresh<short>({32767, 0, 0, 0, 32767, 0, 0, 0, 32767});
    const auto words = fresh<unsigned int>({1, 2, 3, 4, 5, 6});
    glVertexAttribPointer(position, 2, GL_FLOAT, 0, 0, points.data());
    glVertexAttribPointer(5, 3, GL_SHORT, 1, 0, colors.data());
    glVertexAttribIPointer(bits, 2, GL_UNSIGNED_INT, 0, words.data());
    for (const GLuint array : {position, 5u, bits})
        glEnableVertexAttribArray(array);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDrawArraysInstancedARB(GL_LINES, 0, 2, 3);
    for (const GLuint array : {position, 5u, bits})
        glDisableVertexAttribArray(array);
    float back[16] = {};
    glGetUniformfv(program, places[2], back);
    glBindTexture(GL_TEXTURE_2D, 0);
    glUseProgram(0);
    // The older functions.
    static GLhandleARB object = 0;
    if (object == 0) {
        object = glCreateProgramObjectARB();
        const GLhandleARB part = glCreateShaderObjectARB(GL_FRAGMENT_SHADER_ARB);
        const char* text = "uniform float k[2]; void main() { gl_FragColor = vec4(k[0], k[1], 0.0, 1.0); }";
        glShaderSourceARB(part, 1, &text, nullptr);
        glCompileShaderARB(part);
        glAttachObjectARB(object, part);
        glLinkProgramARB(object);
    }
    glUseProgramObjectARB(object);
    const float values[] = {0.5f, 0.2f * static_cast<float>(frame)};
    glUniform1fvARB(glGetUniformLocationARB(object, "k"), 2, values);
    glRectf(-0.9f, 0.5f, -0.5f, 0.9f);
    glUseProgramObjectARB(0);
}

void framebuffers() {
    static GLuint names[2], texture = 0;
    if (texture == 0) {
        glGenFramebuffers(1, names);
        glGenRenderbuffersEXT(1, names + 1);
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 64, 64, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
        glBindRenderbufferEXT(GL_RENDERBUFFER, names[1]);
        glRenderbufferStorageEXT(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, 64, 64);
        glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
        glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
        glFramebufferRenderbufferEXT(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, names[1]);
    }
    glBindFramebuffer(GL_FRAMEBUFFER, names[0]);
    const GLenum buffers[] = {GL_COLOR_ATTACHMENT0};
    glDrawBuffers(1, buffers);
    glViewport(0, 0, 64, 64);
    glClearColor(0, 0, 0.1f * static_cast<float>(frame), 1);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    immediate();
    std::vector<unsigned char> back(64 * 64 * 4);
    glReadPixels(0, 0, 64, 64, GL_RGBA, GL_UNSIGNED_BYTE, back.data());
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDrawBuffer(GL_BACK);
    glReadBuffer(GL_BACK);
    glViewport(0, 0, size, size);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    glGenerateMipmap(GL_TEXTURE_2D);
    quad();
    glDisable(GL_TEXTURE_2D);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, names[0]);
    glBlitFramebuffer(0, 0, 64, 64, 60, 60, 96, 96, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
}

} // namespace Scenes
