// A scene that makes its objects and sets its state in its first frame alone. Later frames only switch and
// draw.

#include "scenes.h"

#include <cstring>

namespace Scenes {

namespace {

constexpr const char* environmentProgram =
    "!!ARBfp1.0\nPARAM e = program.env[2];\nPARAM l = program.local[1];\nADD result.color, e, l;\nEND\n";
GLuint texture, target, framebuffer, renderbuffer, buffer, array, query, program, assembly;
void* mapped;

void setLights() {
    const float position[] = {1, 2, 3, 1}, direction[] = {0.1f, 0.2f, -1}, red[] = {0.9f, 0.1f, 0.2f, 1},
                green[] = {0.1f, 0.8f, 0.2f, 1};
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glRotatef(30, 1, 0, 0);
    glLightfv(GL_LIGHT0, GL_POSITION, position);
    glLightfv(GL_LIGHT1, GL_POSITION, position);
    glLightfv(GL_LIGHT1, GL_SPOT_DIRECTION, direction);
    glLightf(GL_LIGHT1, GL_SPOT_CUTOFF, 70);
    glLightfv(GL_LIGHT1, GL_DIFFUSE, green);
    const double plane[] = {1, 0.5, 0, 0.4};
    glClipPlane(GL_CLIP_PLANE1, plane);
    const float eye[] = {0.5f, 0.3f, 0, 0.2f};
    glTexGenfv(GL_S, GL_EYE_PLANE, eye);
    glPopMatrix();
    glEnable(GL_LIGHT0), glEnable(GL_LIGHT1);
    glLightModelfv(GL_LIGHT_MODEL_AMBIENT, red);
    glMaterialfv(GL_FRONT, GL_DIFFUSE, green);
    glMaterialfv(GL_BACK, GL_DIFFUSE, red);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, 20);
    glColorMaterial(GL_FRONT, GL_SPECULAR);
    glEnable(GL_COLOR_MATERIAL);
}

void setFragments() {
    const float color[] = {0.1f, 0.5f, 0.9f, 1};
    glFogi(GL_FOG_MODE, GL_LINEAR);
    glFogfv(GL_FOG_COLOR, color);
    glFogf(GL_FOG_END, 0.4f);
    glAlphaFunc(GL_LESS, 0.3f);
    glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ZERO);
    glBlendEquation(GL_FUNC_REVERSE_SUBTRACT);
    glBlendColor(0.1f, 0.2f, 0.3f, 0.4f);
    glLogicOp(GL_XOR);
    glStencilFunc(GL_NOTEQUAL, 3, 0x7);
    glStencilOp(GL_KEEP, GL_INCR, GL_REPLACE);
    glStencilFuncSeparate(GL_BACK, GL_LESS, 2, 0xF);
    glDepthFunc(GL_GEQUAL);
    glDepthRange(0.1, 0.9);
    glPolygonOffset(1, 2);
    glPolygonMode(GL_BACK, GL_LINE);
    glFrontFace(GL_CW);
    glCullFace(GL_BACK);
    glLineStipple(3, 0x5A5A);
    glLineWidth(3);
    glPointSize(7);
    unsigned char stipple[128];
    for (std::size_t i = 0; i < sizeof stipple; ++i)
        stipple[i] = static_cast<unsigned char>(i * 37);
    glPolygonStipple(stipple);
    glShadeModel(GL_FLAT);
    glScissor(10, 20, 37, 50);
    glPixelZoom(2, -1.5f);
    glPixelTransferf(GL_RED_BIAS, 0.25f);
    glPixelTransferi(GL_MAP_COLOR, GL_TRUE);
    const float map[] = {0, 0.9f, 0.1f, 0.7f};
    glPixelMapfv(GL_PIXEL_MAP_G_TO_G, 4, map);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 9);
    glWindowPos2i(15, 80);
    glHint(GL_FOG_HINT, GL_NICEST);
}

void setUnits() {
    glActiveTexture(GL_TEXTURE1);
    const float constant[] = {0.3f, 0.9f, 0.6f, 1};
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_COMBINE);
    glTexEnvi(GL_TEXTURE_ENV, GL_COMBINE_RGB, GL_INTERPOLATE);
    glTexEnvi(GL_TEXTURE_ENV, GL_SRC1_RGB, GL_CONSTANT);
    glTexEnvi(GL_TEXTURE_ENV, GL_OPERAND2_RGB, GL_ONE_MINUS_SRC_ALPHA);
    glTexEnvf(GL_TEXTURE_ENV, GL_RGB_SCALE, 2);
    glTexEnvfv(GL_TEXTURE_ENV, GL_TEXTURE_ENV_COLOR, constant);
    glMatrixMode(GL_TEXTURE);
    glPushMatrix();
    glScalef(2, 3, 1);
    // The texture without a name.
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_LUMINANCE_ALPHA, 8, 8, 0, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE,
                 checkered(8, 8, 2, 9).data());
    glMultiTexCoord2f(GL_TEXTURE1, 0.7f, 0.2f);
    glActiveTexture(GL_TEXTURE0);
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_3D, texture);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_3D, GL_TEXTURE_WRAP_R, GL_MIRRORED_REPEAT);
    glTexImage3D(GL_TEXTURE_3D, 0, GL_RGBA16F_ARB, 4, 4, 4, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 checkered(4, 16, 4, 9).data());
    glTexGeni(GL_S, GL_TEXTURE_GEN_MODE, GL_EYE_LINEAR);
    glEnable(GL_TEXTURE_GEN_S);
    glMatrixMode(GL_MODELVIEW);
}

void setObjects() {
    glGenTextures(1, &target);
    glBindTexture(GL_TEXTURE_2D, target);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 32, 32, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenFramebuffers(1, &framebuffer), glGenRenderbuffers(1, &renderbuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 32, 32);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, target, 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_RENDERBUFFER, renderbuffer);
    const GLenum both[] = {GL_COLOR_ATTACHMENT0, GL_COLOR_ATTACHMENT1};
    glDrawBuffers(2, both);
    glClearColor(0.7f, 0.3f, 0.5f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawBuffer(GL_COLOR_ATTACHMENT0);
    glClearColor(0.1f, 0.3f, 0.5f, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    glDrawBuffers(2, both);
    glReadBuffer(GL_COLOR_ATTACHMENT1);
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    const float corners[] = {-0.9f, -0.9f, -0.6f, -0.9f, -0.9f, -0.6f};
    glGenVertexArrays(1, &array), glGenBuffers(1, &buffer);
    glBindVertexArray(array);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
    glVertexPointer(2, GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
    glBindVertexArray(0);
    mapped = glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glGenQueries(1, &query);
    glGenProgramsARB(1, &assembly);
    glBindProgramARB(GL_FRAGMENT_PROGRAM_ARB, assembly);
    glProgramStringARB(GL_FRAGMENT_PROGRAM_ARB, GL_PROGRAM_FORMAT_ASCII_ARB,
                       static_cast<int>(std::strlen(environmentProgram)), environmentProgram);
    glProgramEnvParameter4fARB(GL_FRAGMENT_PROGRAM_ARB, 2, 0.1f, 0.2f, 0.3f, 1);
    glProgramLocalParameter4fARB(GL_FRAGMENT_PROGRAM_ARB, 1, 0.4f, 0.1f, 0, 0);
    // Its shader is no more, and its variable has a value.
    program = glCreateProgram();
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    const char* const text =
        "uniform vec4 tint[2]; void main() { gl_FragColor = tint[0] + tint[1] * gl_Color; }";
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glLinkProgram(program);
    glDetachShader(program, shader), glDeleteShader(shader);
    glUseProgram(program);
    const float tints[] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f, 0.6f, 0.7f, 0.8f};
    glUniform4fv(glGetUniformLocation(program, "tint"), 2, tints);
    glUniform4f(glGetUniformLocation(program, "tint[1]"), 0.9f, 0.1f, 0.4f, 1);
    glUseProgram(0);
    // With what is in the client's memory when it is compiled.
    const auto points = fresh<float>({0.6f, 0.6f, 0.9f, 0.6f, 0.9f, 0.9f});
    glNewList(77, GL_COMPILE);
    glBindTexture(GL_TEXTURE_3D, texture);
    glEndList();
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, points.data());
    glNewList(78, GL_COMPILE);
    glColor3f(0.9f, 0.9f, 0.1f);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glBitmap(16, 2, 0, 0, 20, 0,
             fresh<unsigned char>({0xF0, 0x0F, 0xAA, 0x55, 0xFF, 0x81, 0x18, 0x3C}).data());
    glEndList();
    glDisableClientState(GL_VERTEX_ARRAY);
    glListBase(70);
}

void push() {
    glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT | GL_CURRENT_BIT);
    glDisable(GL_BLEND);
    glShadeModel(GL_SMOOTH);
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0), glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
}

void setStacks() {
    glMatrixMode(GL_PROJECTION);
    glOrtho(-1.1, 1.2, -1.3, 1, -2, 2);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glTranslatef(0.05f, 0.1f, 0.2f);
    glPushMatrix();
    glRotatef(10, 0, 0, 1);
    glColor4f(0.8f, 0.6f, 0.4f, 0.5f);
    glNormal3f(0.3f, 0.2f, 0.9f);
    glSecondaryColor3f(0.2f, 0.3f, 0.1f);
    glEnable(GL_BLEND), glEnable(GL_NORMALIZE);
    const float points[] = {-0.5f, 0, 0, 0, 0.9f, 0.1f, 0.5f, -0.4f, 0};
    glMap1f(GL_MAP1_VERTEX_3, 0, 2, 3, 3, points);
    glEnable(GL_MAP1_VERTEX_3);
    glMapGrid1f(12, 0, 2);
    push();
}

void drawWith(std::initializer_list<GLenum> states, float x, float y) {
    for (const GLenum state : states)
        glEnable(state);
    glPushMatrix();
    glTranslatef(x, y, 0.1f * static_cast<float>(frame));
    glScalef(0.4f, 0.4f, 1);
    glBegin(GL_TRIANGLE_STRIP);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(0, 1), std::pair(1, 0), std::pair(1, 1)}) {
        glColor4f(0.8f, 0.3f * static_cast<float>(x), 0.7f * static_cast<float>(y), 0.6f);
        glTexCoord3f(static_cast<float>(x), static_cast<float>(y), 0.5f);
        glVertex2f(static_cast<float>(x) - 0.5f, static_cast<float>(y) - 0.5f);
    }
    glEnd();
    glPopMatrix();
    for (const GLenum state : states)
        glDisable(state);
}

} // namespace

void once() {
    if (frame == 0) {
        glClearStencil(3);
        glClear(GL_STENCIL_BUFFER_BIT);
        setLights(), setFragments(), setUnits(), setObjects(), setStacks();
    }
    drawWith({GL_LIGHTING, GL_CLIP_PLANE1}, -0.7f, 0.6f);
    drawWith({GL_FOG}, -0.2f, 0.6f);
    drawWith({GL_ALPHA_TEST}, -0.2f, 0.7f);
    drawWith({GL_COLOR_LOGIC_OP}, 0.3f, 0.6f);
    drawWith({GL_STENCIL_TEST}, -0.7f, 0.1f);
    drawWith({GL_DEPTH_TEST, GL_POLYGON_OFFSET_FILL}, -0.2f, 0.1f);
    drawWith({GL_POLYGON_STIPPLE}, 0.3f, 0.1f);
    drawWith({GL_TEXTURE_3D}, -0.7f, -0.4f);
    drawWith({GL_SCISSOR_TEST, GL_FRAGMENT_PROGRAM_ARB}, -0.2f, -0.4f);
    drawWith({GL_CULL_FACE}, 0.3f, -0.4f);
    glEnable(GL_LINE_STIPPLE);
    glBegin(GL_LINES), glVertex2f(-1, -0.7f), glVertex2f(1, -0.8f), glEnd();
    glDisable(GL_LINE_STIPPLE);
    glBegin(GL_POINTS), glVertex2f(0.2f, -0.9f), glEnd();
    glActiveTexture(GL_TEXTURE1);
    drawWith({GL_TEXTURE_2D}, 0.7f, -0.4f);
    glActiveTexture(GL_TEXTURE0);
    glUseProgram(program);
    drawWith({}, 0.7f, 0.1f);
    glUseProgram(0);
    glEvalMesh1(GL_LINE, 0, 12);
    const unsigned char lists[] = {7, 8};
    glCallLists(2, GL_UNSIGNED_BYTE, lists);
    glDrawPixels(9, 7, GL_RGB, GL_UNSIGNED_BYTE, checkered(9, 7, 3).data());
    // What the frames before left on the stacks.
    glPopClientAttrib();
    glDrawPixels(6, 7, GL_RGB, GL_UNSIGNED_BYTE, checkered(9, 9, 4).data());
    glPopAttrib();
    glPopMatrix();
    drawWith({GL_COLOR_SUM}, 0, 0.5f);
    glPushMatrix();
    glRotatef(10, 0, 0, 1);
    push();
    glBeginQuery(GL_SAMPLES_PASSED, query);
    glBindVertexArray(array);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glBindVertexArray(0);
    glEndQuery(GL_SAMPLES_PASSED);
    if (frame == 2) { // it was mapped all the time
        glBindBuffer(GL_ARRAY_BUFFER, buffer);
        const float corners[] = {-0.9f, -0.9f, -0.3f, -0.9f, -0.9f, -0.3f};
        std::memcpy(mapped, corners, sizeof corners);
        glUnmapBuffer(GL_ARRAY_BUFFER);
        glBindBuffer(GL_ARRAY_BUFFER, 0);
    }
    // Both are drawn to, the second one is seen, and then what the first one has.
    glBindTexture(GL_TEXTURE_2D, target);
    drawWith({GL_TEXTURE_2D}, 0.7f, 0.5f);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer);
    drawWith({}, 0, 0.2f * static_cast<float>(frame));
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, 0);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer);
    glBlitFramebuffer(0, 0, 32, 32, 70, 70, 90, 90, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
}

// The same of a core profile: an array, a program and a texture of another unit, bound once.
void core() {
    static GLint matrix = 0, tint = 0;
    if (frame == 0) {
        const float corners[] = {-1, -1, 1, -1, 0, 1, 0.5f, 0.2f};
        const unsigned short indices[] = {0, 1, 2, 1, 3, 2};
        GLuint names[3];
        glGenVertexArrays(1, names), glGenBuffers(2, names + 1);
        glBindVertexArray(names[0]);
        glBindBuffer(GL_ARRAY_BUFFER, names[1]);
        glBufferData(GL_ARRAY_BUFFER, sizeof corners, corners, GL_STATIC_DRAW);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[2]);
        glBufferData(GL_ELEMENT_ARRAY_BUFFER, sizeof indices, indices, GL_STATIC_DRAW);
        program = glCreateProgram();
        for (const auto& [type, text] :
             {std::pair(GL_VERTEX_SHADER,
                        "#version 330\nin vec2 place; out vec2 at; uniform mat4 matrix;\n"
                        "void main() { at = place * 0.5 + 0.5; gl_Position = matrix * vec4(place, 0, 1); }"),
              std::pair(
                  GL_FRAGMENT_SHADER,
                  "#version 330\nin vec2 at; out vec4 color; uniform sampler2D image; uniform vec4 tint;\n"
                  "void main() { color = texture(image, at) * tint; }")}) {
            const GLuint shader = glCreateShader(static_cast<GLenum>(type));
            glShaderSource(shader, 1, &text, nullptr);
            glCompileShader(shader);
            glAttachShader(program, shader), glDeleteShader(shader);
        }
        glLinkProgram(program);
        glUseProgram(program);
        const auto place = static_cast<GLuint>(glGetAttribLocation(program, "place"));
        glVertexAttribPointer(place, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
        glEnableVertexAttribArray(place);
        glGenTextures(1, &texture);
        glActiveTexture(GL_TEXTURE3);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_SRGB8_ALPHA8, 16, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     checkered(16, 16, 4).data());
        glGenerateMipmap(GL_TEXTURE_2D);
        glUniform1i(glGetUniformLocation(program, "image"), 3);
        matrix = glGetUniformLocation(program, "matrix"), tint = glGetUniformLocation(program, "tint");
        glEnable(GL_BLEND), glBlendFunc(GL_ONE, GL_ONE);
    }
    const float shift = 0.1f * static_cast<float>(frame);
    const float values[16] = {1 - shift, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, shift / 2, 0, 0, 1};
    glUniformMatrix4fv(matrix, 1, GL_FALSE, values);
    if (frame != 2)
        glUniform4f(tint, 1, shift, 1 - shift, 1);
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, nullptr);
}

} // namespace Scenes
