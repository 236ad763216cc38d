// A program that draws what its arguments name, and knows nothing of captures: each scene is a corner of GL
// that programs use. It reads back what it drew, so that a replay has something to compare.

#define GLFW_EXPOSE_NATIVE_GLX
#define GLFW_EXPOSE_NATIVE_X11
#include "scenes.h"

#include <GLFW/glfw3native.h>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

int Scenes::frame = 0;

namespace Scenes {

std::vector<unsigned char> checkered(int width, int height, int components, int rowLength) {
    std::vector<unsigned char> pixels(
        static_cast<std::size_t>((rowLength ? rowLength : width) * height * components));
    for (std::size_t i = 0; i < pixels.size(); ++i)
        pixels[i] = static_cast<unsigned char>(i * 37 + static_cast<std::size_t>(frame) * 11);
    return pixels;
}

void immediate() {
    glBegin(GL_TRIANGLES);
    glColor3f(1, 0, 0), glVertex2f(-1, -1);
    glColor3ub(0, 255, 0), glVertex2i(1, -1);
    const float blue[] = {0, 0, 1, 1};
    const double top[] = {0, 0.1 * frame, 0, 1};
    glColor4fv(blue), glVertex4dv(top);
    glEnd();
    glRectf(-0.2f, -0.2f, 0.2f, 0.2f);
    const short corner[] = {0, 0}, other[] = {1, 1};
    glRectsv(corner, other);
    glBegin(GL_LINE_LOOP);
    for (int i = 0; i < 8; ++i) {
        glMultiTexCoord2f(GL_TEXTURE0, 0, 1);
        glSecondaryColor3f(0.5f, 0, 0);
        glFogCoordf(0.5f);
        glEdgeFlag(i % 2 == 0);
        glVertex3f(std::cos(i * 0.8f) * 0.7f, std::sin(i * 0.8f) * 0.7f, 0);
    }
    glEnd();
    const float light[] = {1, 1, 1, 0}, material[] = {0.2f, 0.4f, 0.9f, 1};
    glPushAttrib(GL_ALL_ATTRIB_BITS);
    glEnable(GL_LIGHTING), glEnable(GL_LIGHT0);
    glLightfv(GL_LIGHT0, GL_POSITION, light);
    glMaterialfv(GL_FRONT, GL_AMBIENT_AND_DIFFUSE, material);
    glNormal3b(0, 0, 127);
    glRectf(0.3f, -0.9f, 0.9f, -0.3f);
    glPopAttrib();
}

void quad() {
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair(0, 0), std::pair(1, 0), std::pair(1, 1), std::pair(0, 1)}) {
        glTexCoord3f(static_cast<float>(x), static_cast<float>(y), 0.5f);
        glVertex2f(static_cast<float>(x) - 0.5f, static_cast<float>(y) - 0.5f);
    }
    glEnd();
}

} // namespace Scenes

namespace {

using namespace Scenes;

GLFWwindow* window = nullptr;

void readBack() {
    std::vector<unsigned char> pixels(static_cast<std::size_t>(size * size * 4));
    glReadPixels(0, 0, size, size, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
    unsigned int sum = 0;
    for (const unsigned char value : pixels)
        sum = 31 * sum + value;
    std::printf("%u\n", sum);
}

void lists() {
    static GLuint first = 0;
    if (first == 0) {
        first = glGenLists(4);
        const auto points = fresh<float>({-0.5f, -0.5f, 0.5f, -0.5f, 0, 0.5f});
        glEnableClientState(GL_VERTEX_ARRAY);
        glVertexPointer(2, GL_FLOAT, 0, points.data());
        glNewList(first, GL_COMPILE);
        glDrawArrays(GL_TRIANGLES, 0, 3);
        glEndList();
        glNewList(first + 1, GL_COMPILE);
        const unsigned char indices[] = {2, 0, 1};
        glDrawElements(GL_LINE_LOOP, 3, GL_UNSIGNED_BYTE, indices);
        glBegin(GL_POINTS);
        glArrayElement(1);
        glEnd();
        glEndList();
        glDisableClientState(GL_VERTEX_ARRAY);
        glNewList(first + 2, GL_COMPILE_AND_EXECUTE);
        const auto pixels = checkered(8, 8, 3);
        glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
        glRasterPos2f(-0.9f, -0.9f);
        glDrawPixels(8, 8, GL_RGB, GL_UNSIGNED_BYTE, pixels.data());
        const unsigned char bits[] = {0xF0, 0x0F, 0xAA, 0x55, 0xFF, 0x81, 0x18, 0x3C, 0x42, 0x24, 0x66};
        glBitmap(8, 8, 0, 0, 10, 0, bits);
        glEndList();
        glNewList(first + 3, GL_COMPILE);
        glCallList(first);
        glColor3f(1, 1, 0);
        glCallList(first + 1);
        glEndList();
        // A name that the program made up, as fonts have them.
        for (unsigned int letter = 'a'; letter < 'f'; ++letter) {
            glNewList(1000 + letter, GL_COMPILE);
            glBitmap(8, 8, 0, 0, 9, 0, bits + (letter - 'a') % 4);
            glEndList();
        }
    }
    glColor3f(0, 1, static_cast<float>(frame) / 4);
    glCallList(first + 3);
    const unsigned short offsets[] = {0, 2};
    glListBase(first);
    glCallLists(2, GL_UNSIGNED_SHORT, offsets);
    glListBase(1000);
    glRasterPos2f(-0.5f, 0.6f);
    glCallLists(5, GL_UNSIGNED_BYTE, "abcde");
    glPushAttrib(GL_LIST_BIT);
    glListBase(900);
    const unsigned char far[] = {100 + 'a', 100 + 'c'};
    glCallLists(2, GL_UNSIGNED_BYTE, far);
    glPopAttrib();
}

void arrays() {
    struct Vertex {
        float texture[2];
        unsigned char color[4];
        float position[3];
    };
    std::vector<Vertex> vertices;
    for (int i = 0; i < 12; ++i)
        vertices.push_back({{i * 0.1f, 1 - i * 0.1f},
                            {static_cast<unsigned char>(i * 20), static_cast<unsigned char>(255 - i * 20),
                             static_cast<unsigned char>(frame * 60), 255},
                            {std::cos(i * 0.5f), std::sin(i * 0.5f), 0}});
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glInterleavedArrays(GL_T2F_C4UB_V3F, 0, vertices.data());
    glDrawArrays(GL_TRIANGLE_FAN, 0, 6);
    glClientActiveTexture(GL_TEXTURE1);
    const auto other = fresh<short>({0, 0, 1, 0, 1, 1, 0, 1, 0, 0, 1, 0, 1, 1, 0, 1, 0, 0, 1, 1, 0, 0, 1, 1});
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    glTexCoordPointer(2, GL_SHORT, 0, other.data());
    glClientActiveTexture(GL_TEXTURE0);
    const auto indices = fresh<unsigned short>({7, 3, 9, 10, 11, 8});
    glDrawElements(GL_TRIANGLES, 6, GL_UNSIGNED_SHORT, indices.data());
    glDrawRangeElements(GL_LINES, 3, 11, 6, GL_UNSIGNED_SHORT, indices.data());
    int first[] = {0, 4, 8}, count[] = {3, 3, 4};
    glMultiDrawArrays(GL_LINE_STRIP, first, count, 3);
    const unsigned int more[] = {1, 5, 9};
    const void* both[] = {indices.data(), more};
    const unsigned int wide[] = {7, 3, 9};
    both[0] = wide;
    int counts[] = {3, 3};
    glMultiDrawElements(GL_TRIANGLES, counts, GL_UNSIGNED_INT, both, 2);
    glBegin(GL_LINE_STRIP);
    for (int i = 0; i < 12; i += 2)
        glArrayElement(i);
    glEnd();
    glPopClientAttrib();
    // Columns of their own, in types of their own.
    const auto normals = fresh<signed char>({0, 0, 127, 0, 127, 0, 127, 0, 0});
    const auto colors = fresh<double>({1, 0, 1, 0, 1, 1, 1, 1, 0});
    const auto positions = fresh<int>({-1, -1, 0, 1, 1, -1});
    const auto fog = fresh<float>({0, 0.5f, 1});
    const auto secondary = fresh<unsigned short>({0, 65535, 0, 0, 0, 0, 65535, 0, 0});
    const unsigned char edges[] = {1, 0, 1};
    glEnableClientState(GL_NORMAL_ARRAY), glNormalPointer(GL_BYTE, 0, normals.data());
    glEnableClientState(GL_COLOR_ARRAY), glColorPointer(3, GL_DOUBLE, 0, colors.data());
    glEnableClientState(GL_VERTEX_ARRAY), glVertexPointer(2, GL_INT, 0, positions.data());
    glEnableClientState(GL_FOG_COORD_ARRAY), glFogCoordPointer(GL_FLOAT, 0, fog.data());
    glEnableClientState(GL_SECONDARY_COLOR_ARRAY);
    glSecondaryColorPointer(3, GL_UNSIGNED_SHORT, 0, secondary.data());
    glEnableClientState(GL_EDGE_FLAG_ARRAY), glEdgeFlagPointer(0, edges);
    glEnable(GL_COLOR_SUM);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glBegin(GL_TRIANGLES);
    glArrayElement(2), glArrayElement(1), glArrayElement(0);
    glEnd();
    glDisable(GL_COLOR_SUM);
    for (const GLenum array : {GL_NORMAL_ARRAY, GL_COLOR_ARRAY, GL_VERTEX_ARRAY, GL_FOG_COORD_ARRAY,
                               GL_SECONDARY_COLOR_ARRAY, GL_EDGE_FLAG_ARRAY})
        glDisableClientState(array);
}

void buffers() {
    static GLuint names[3];
    if (names[0] == 0)
        glGenBuffers(2, names);
    names[2] = 77; // made up
    std::vector<float> points;
    for (int i = 0; i < 6; ++i)
        points.insert(points.end(), {std::cos(i + frame * 0.3f), std::sin(i + frame * 0.3f)});
    glBindBuffer(GL_ARRAY_BUFFER, names[0]);
    glBufferData(GL_ARRAY_BUFFER, 48, nullptr, GL_STREAM_DRAW);
    std::memcpy(glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY), points.data(), 48);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(2, GL_FLOAT, 0, nullptr);
    glColor3f(1, 0.5f, 0);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    auto* const both = static_cast<float*>(glMapBuffer(GL_ARRAY_BUFFER, GL_READ_WRITE));
    both[0] = -both[0];
    glUnmapBuffer(GL_ARRAY_BUFFER);
    auto* const range = static_cast<float*>(
        glMapBufferRange(GL_ARRAY_BUFFER, 24, 24, GL_MAP_WRITE_BIT | GL_MAP_FLUSH_EXPLICIT_BIT));
    range[0] = 0.9f, range[1] = 0.9f, range[4] = -0.9f;
    glFlushMappedBufferRange(GL_ARRAY_BUFFER, 0, 8);
    glFlushMappedBufferRange(GL_ARRAY_BUFFER, 16, 4);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    const unsigned char indices[] = {3, 4, 5, 0, 1, 2};
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, names[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, 6, indices, GL_STATIC_DRAW);
    glDrawElements(GL_TRIANGLES, 3, GL_UNSIGNED_BYTE, nullptr);
    // The indices in a buffer, and the array not.
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glVertexPointer(2, GL_FLOAT, 0, points.data());
    glColor3f(0, 0.5f, 1);
    glDrawElements(GL_LINE_STRIP, 4, GL_UNSIGNED_BYTE, reinterpret_cast<const void*>(2));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glDisableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, names[2]);
    glBufferData(GL_ARRAY_BUFFER, 48, points.data(), GL_STATIC_DRAW);
    glBufferSubData(GL_ARRAY_BUFFER, 4, 8, points.data() + 4);
    float back[12];
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, 48, back);
    const auto* const read = static_cast<const float*>(glMapBuffer(GL_ARRAY_BUFFER, GL_READ_ONLY));
    glColor3f(read[0], read[1], 1);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glDeleteBuffers(1, &names[2]);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glRectf(-0.1f, -0.1f, 0.1f, 0.1f);
}

void pixels() {
    glRasterPos2f(-0.9f, -0.9f);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 2);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 20);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 3);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 5);
    glDrawPixels(9, 7, GL_RGB, GL_UNSIGNED_BYTE, checkered(20, 11, 3).data());
    glRasterPos2f(-0.5f, -0.9f);
    glDrawPixels(9, 7, GL_RGBA, GL_UNSIGNED_SHORT_4_4_4_4, checkered(20, 11, 2).data());
    glPixelStorei(GL_UNPACK_LSB_FIRST, 1);
    glRasterPos2f(0, -0.9f);
    glBitmap(12, 7, 0, 0, 0, 0, checkered(4, 12, 1).data());
    glPixelStorei(GL_UNPACK_LSB_FIRST, 0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
    glPixelStorei(GL_UNPACK_SWAP_BYTES, 1); // which Mesa gets wrong with the parameters above
    glRasterPos2f(-0.2f, -0.9f);
    glDrawPixels(4, 7, GL_RGBA, GL_UNSIGNED_SHORT, checkered(8, 7, 4).data());
    glPixelStorei(GL_UNPACK_SWAP_BYTES, 0);
    glPixelTransferf(GL_RED_SCALE, 0.5f);
    const float map[] = {0, 1, 0.5f, 1};
    glPixelMapfv(GL_PIXEL_MAP_R_TO_R, 4, map);
    glPixelTransferi(GL_MAP_COLOR, 1);
    glPixelZoom(2, 3);
    glRasterPos2f(-0.9f, 0);
    glDrawPixels(8, 8, GL_RGB, GL_UNSIGNED_BYTE, checkered(8, 8, 3).data());
    glPixelZoom(1, 1);
    glPixelTransferi(GL_MAP_COLOR, 0);
    glPixelTransferf(GL_RED_SCALE, 1);
    glRasterPos2f(0.2f, 0.2f);
    glCopyPixels(0, 0, 30, 30, GL_COLOR);
    glPixelStorei(GL_PACK_ALIGNMENT, 8);
    glPixelStorei(GL_PACK_ROW_LENGTH, 30);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 2);
    std::vector<unsigned char> back(30 * 3 * 20 + 100);
    glReadPixels(3, 3, 21, 13, GL_BGR, GL_UNSIGNED_BYTE, back.data());
    glPixelStorei(GL_PACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_ROW_LENGTH, 0);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    std::vector<float> depth(100);
    glReadPixels(0, 0, 10, 10, GL_DEPTH_COMPONENT, GL_FLOAT, depth.data());
    unsigned char stipple[128];
    std::memcpy(stipple, checkered(8, 16, 1).data(), 128);
    glPolygonStipple(stipple);
    glEnable(GL_POLYGON_STIPPLE);
    glRectf(-0.4f, 0.3f, 0, 0.9f);
    glDisable(GL_POLYGON_STIPPLE);
    // From and to buffers.
    static GLuint buffers[2];
    if (buffers[0] == 0)
        glGenBuffers(2, buffers);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffers[0]);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 300, checkered(10, 10, 3).data(), GL_STREAM_DRAW);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glRasterPos2f(0.6f, 0.6f);
    glDrawPixels(10, 9, GL_RGB, GL_UNSIGNED_BYTE, reinterpret_cast<const void*>(30));
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, buffers[1]);
    glBufferData(GL_PIXEL_PACK_BUFFER, 1600, nullptr, GL_STREAM_READ);
    glReadPixels(0, 0, 20, 20, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    std::vector<unsigned char> copy(1600);
    glGetBufferSubData(GL_PIXEL_PACK_BUFFER, 0, 1600, copy.data());
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

void textures() {
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glTexEnvi(GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_REPLACE);
    const auto with = [](GLenum target, GLuint name, const std::function<void()>& fill) {
        glBindTexture(target, name);
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
        const float border[] = {1, 0, 0, 1};
        if (target != GL_TEXTURE_2D_ARRAY)
            glTexParameterfv(target, GL_TEXTURE_BORDER_COLOR, border);
        fill();
        if (target == GL_TEXTURE_2D_ARRAY) {
            glBindTexture(target, 0);
            return;
        }
        glEnable(target);
        glPushMatrix();
        glRotatef(static_cast<float>(name) * 17, 0, 0, 1);
        glScalef(0.8f, 0.8f, 1);
        quad();
        glPopMatrix();
        glDisable(target);
        glBindTexture(target, 0);
    };
    GLuint name = 0;
    glGenTextures(1, &name);
    with(GL_TEXTURE_1D, 4711, [] { // made up
        glTexImage1D(GL_TEXTURE_1D, 0, GL_RGB, 16, 0, GL_RGB, GL_UNSIGNED_BYTE, checkered(16, 1, 3).data());
        glTexSubImage1D(GL_TEXTURE_1D, 0, 3, 5, GL_RED, GL_UNSIGNED_BYTE, checkered(5, 1, 1).data());
    });
    with(GL_TEXTURE_2D, name, [] {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, 16, 16, 0, GL_BGRA, GL_UNSIGNED_INT_8_8_8_8_REV,
                     checkered(16, 16, 4).data());
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 13);
        glTexSubImage2D(GL_TEXTURE_2D, 0, 2, 3, 7, 5, GL_LUMINANCE_ALPHA, GL_UNSIGNED_BYTE,
                        checkered(13, 5, 2).data());
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
        std::vector<unsigned char> back(16 * 16 * 4);
        glGetTexImage(GL_TEXTURE_2D, 0, GL_RGBA, GL_UNSIGNED_BYTE, back.data());
        glCopyTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, 20, 20, 4, 4);
    });
    with(GL_TEXTURE_3D, 5, [] {
        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 6);
        glPixelStorei(GL_UNPACK_SKIP_IMAGES, 1);
        glTexImage3D(GL_TEXTURE_3D, 0, GL_RGB, 4, 4, 4, 0, GL_RGB, GL_UNSIGNED_BYTE,
                     checkered(4, 6 * 5, 3).data());
        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 0);
        glPixelStorei(GL_UNPACK_SKIP_IMAGES, 0);
        glTexSubImage3D(GL_TEXTURE_3D, 0, 1, 1, 1, 2, 2, 2, GL_RGB, GL_FLOAT,
                        std::vector<float>(24, 0.3f).data());
    });
    with(GL_TEXTURE_RECTANGLE_ARB, 6, [] {
        glTexImage2D(GL_TEXTURE_RECTANGLE_ARB, 0, GL_RGB, 5, 3, 0, GL_RGB, GL_UNSIGNED_SHORT_5_6_5,
                     checkered(5, 3, 2).data());
    });
    with(GL_TEXTURE_CUBE_MAP, 7, [] {
        for (unsigned int face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGB, 4, 4, 0, GL_RGB, GL_UNSIGNED_BYTE,
                         checkered(4, 4, 3).data() + 0);
    });
    with(GL_TEXTURE_2D_ARRAY, 8, [] {
        glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA, 4, 4, 3, 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     checkered(4, 12, 4).data());
        std::vector<unsigned char> back(4 * 12 * 4);
        glGetTexImage(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA, GL_UNSIGNED_BYTE, back.data());
    });
    with(GL_TEXTURE_2D, 9, [] {
        glCompressedTexImage2D(GL_TEXTURE_2D, 0, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 8, 8, 0, 32,
                               checkered(32, 1, 1).data());
        glCompressedTexSubImage2D(GL_TEXTURE_2D, 0, 4, 4, 4, 4, GL_COMPRESSED_RGBA_S3TC_DXT1_EXT, 8,
                                  checkered(8, 1, 1).data());
        unsigned char back[32];
        glGetCompressedTexImage(GL_TEXTURE_2D, 0, back);
    });
    glDeleteTextures(1, &name);
    if (glIsTexture(9))
        glRectf(0.8f, 0.8f, 1, 1);
}

void evaluators() {
    const float points[4][2][3] = {{{-0.9f, -0.9f, 0}, {9, 9, 9}},
                                   {{-0.5f, 0.9f, 0}, {9, 9, 9}},
                                   {{0.5f, -0.9f, 0}, {9, 9, 9}},
                                   {{0.9f, 0.1f * frame, 0}, {9, 9, 9}}};
    glMap1f(GL_MAP1_VERTEX_3, 0, 1, 6, 4, &points[0][0][0]);
    glEnable(GL_MAP1_VERTEX_3);
    glMapGrid1f(20, 0, 1);
    glEvalMesh1(GL_LINE, 0, 20);
    std::vector<double> surface;
    for (int u = 0; u < 3; ++u)
        for (int v = 0; v < 4; ++v)
            surface.insert(surface.end(), {u * 0.3 - 0.3, v * 0.2 - 0.3, 0.1, 1});
    glMap2d(GL_MAP2_VERTEX_4, 0, 1, 16, 3, 0, 1, 4, 4, surface.data());
    const std::vector<float> colors = {1, 0, 0, 1, 0, 1, 0, 1, 0, 0, 1, 1, 1, 1, 0, 1};
    glMap2f(GL_MAP2_COLOR_4, 0, 1, 8, 2, 0, 1, 4, 2, colors.data());
    glEnable(GL_MAP2_VERTEX_4), glEnable(GL_MAP2_COLOR_4);
    glMapGrid2d(5, 0, 1, 5, 0, 1);
    glEvalMesh2(GL_FILL, 0, 5, 0, 5);
    float order[1], back[12];
    glGetMapfv(GL_MAP1_VERTEX_3, GL_ORDER, order);
    glGetMapfv(GL_MAP1_VERTEX_3, GL_COEFF, back);
    glDisable(GL_MAP2_VERTEX_4), glDisable(GL_MAP2_COLOR_4), glDisable(GL_MAP1_VERTEX_3);
}

void modes() {
    unsigned int hits[64];
    glSelectBuffer(64, hits);
    glRenderMode(GL_SELECT);
    glInitNames();
    glPushName(3);
    glRectf(-0.5f, -0.5f, 0.5f, 0.5f);
    glLoadName(static_cast<GLuint>(frame) + 8);
    glRectf(0, 0, 1, 1);
    const int found = glRenderMode(GL_RENDER);
    std::vector<float> feedback(200);
    glFeedbackBuffer(200, GL_3D_COLOR, feedback.data());
    glRenderMode(GL_FEEDBACK);
    glBegin(GL_TRIANGLES);
    glColor3f(1, 0, 0), glVertex2f(0, 0), glVertex2f(1, 0), glVertex2f(0, 1);
    glEnd();
    glPassThrough(7);
    const int values = glRenderMode(GL_RENDER);
    glColor3f(static_cast<float>(found) / 4, static_cast<float>(values) / 100,
              static_cast<float>(hits[3]) / 16);
    glRectf(-0.9f, -0.9f, 0.9f, 0.9f);
}

void accumulation() {
    glClearAccum(0.1f, 0, 0, 0);
    glClear(GL_ACCUM_BUFFER_BIT);
    for (int pass = 0; pass < 4; ++pass) {
        glClear(GL_COLOR_BUFFER_BIT);
        glColor3f(1, 0.3f * static_cast<float>(pass), 0);
        glRectf(-0.8f + 0.1f * static_cast<float>(pass), -0.5f, 0.3f, 0.5f);
        glAccum(pass == 0 ? GL_LOAD : GL_ACCUM, 0.25f);
    }
    glAccum(GL_ADD, 0.05f);
    glAccum(GL_MULT, 0.9f);
    glAccum(GL_RETURN, 1);
}

void queries() {
    static GLuint query = 0;
    if (query == 0)
        glGenQueries(1, &query);
    glBeginQuery(GL_SAMPLES_PASSED, query);
    glRectf(-0.5f, -0.5f, 0.1f * static_cast<float>(frame), 0.5f);
    glEndQuery(GL_SAMPLES_PASSED);
    GLuint samples = 0;
    glGetQueryObjectuiv(query, GL_QUERY_RESULT, &samples);
    const GLsync sync = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    glClientWaitSync(sync, GL_SYNC_FLUSH_COMMANDS_BIT, 1000000000);
    glWaitSync(sync, 0, GL_TIMEOUT_IGNORED);
    glDeleteSync(sync);
    glBeginConditionalRender(query, GL_QUERY_WAIT);
    glColor3f(static_cast<float>(samples % 100) / 100, 0.5f, 0);
    glRectf(0.2f, 0.2f, 0.9f, 0.9f);
    glEndConditionalRender();
}

void stacks() {
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_PIXEL_MODE_BIT | GL_TEXTURE_BIT);
    glBlendColor(1, 0, 0, 0.5f);
    glEnable(GL_BLEND);
    glBlendFuncSeparate(GL_CONSTANT_COLOR, GL_ONE, GL_ONE, GL_ZERO);
    glColor3f(1, 1, 1);
    glRectf(-0.8f, -0.8f, 0.2f, 0.2f);
    glPopAttrib();
    glPushClientAttrib(GL_CLIENT_ALL_ATTRIB_BITS);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 10);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glRasterPos2f(0, 0);
    glDrawPixels(5, 5, GL_RGB, GL_UNSIGNED_BYTE, checkered(10, 5, 3).data());
    glPopClientAttrib();
    glMatrixMode(GL_PROJECTION), glPushMatrix();
    const double scale[] = {0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 1, 0, 0.1, 0.1, 0, 1};
    glMultMatrixd(scale);
    const double plane[] = {1, 0.1 * frame, 0, 0.2};
    glClipPlane(GL_CLIP_PLANE0, plane);
    glEnable(GL_CLIP_PLANE0);
    immediate();
    glDisable(GL_CLIP_PLANE0);
    glPopMatrix(), glMatrixMode(GL_MODELVIEW);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glScissor(viewport[0], viewport[1], viewport[2] / 2, viewport[3] / 2);
    glEnable(GL_SCISSOR_TEST);
    glEnable(0x1234); // an error is one again
    glColor3f(static_cast<float>(glGetError() == GL_INVALID_ENUM), 0, 1);
    glRectf(-0.3f, -1, 0.1f, 1);
    glDisable(GL_SCISSOR_TEST);
}

void imaging() {
    // Where the driver has none of it these are errors, and so they are in the replay.
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glColorTable(GL_COLOR_TABLE, GL_RGB, 256, GL_RGB, GL_UNSIGNED_BYTE, checkered(256, 1, 3).data());
    glConvolutionFilter2D(GL_CONVOLUTION_2D, GL_LUMINANCE, 3, 3, GL_LUMINANCE, GL_UNSIGNED_BYTE,
                          checkered(3, 3, 1).data());
    glSeparableFilter2D(GL_SEPARABLE_2D, GL_RGB, 3, 5, GL_RGB, GL_UNSIGNED_BYTE, checkered(3, 1, 3).data(),
                        checkered(5, 1, 3).data());
    immediate();
}

// Lists that GLX makes past everybody.
void fonts() {
    Display* const display = glfwGetX11Display();
    XFontStruct* const font = XLoadQueryFont(display, "fixed");
    if (!font)
        return;
    const GLuint first = glGenLists(96);
    glXUseXFont(font->fid, 32, 96, static_cast<int>(first));
    glRasterPos2f(-0.9f, 0.1f * static_cast<float>(frame));
    glListBase(first - 32);
    glCallLists(11, GL_UNSIGNED_BYTE, "Hello, GLX!");
    glListBase(0);
    glDeleteLists(first, 96);
    XFreeFont(display, font);
}

// What comes to a texture by the window system, while the program has its pixels otherwise than the pixmap.
void pixmap() {
    Display* const display = glfwGetX11Display();
    const auto bind = reinterpret_cast<PFNGLXBINDTEXIMAGEEXTPROC>(glfwGetProcAddress("glXBindTexImageEXT"));
    const auto release =
        reinterpret_cast<PFNGLXRELEASETEXIMAGEEXTPROC>(glfwGetProcAddress("glXReleaseTexImageEXT"));
    const int wanted[] = {GLX_BIND_TO_TEXTURE_RGB_EXT, True, GLX_DRAWABLE_TYPE,
                          GLX_PIXMAP_BIT | GLX_WINDOW_BIT, None};
    int count = 0;
    GLXFBConfig* const configs = glXChooseFBConfig(display, DefaultScreen(display), wanted, &count);
    if (!bind || !release || count == 0)
        return;
    XVisualInfo* const visual = glXGetVisualFromFBConfig(display, configs[0]);
    const Pixmap pixels =
        XCreatePixmap(display, DefaultRootWindow(display), 20, 12, static_cast<unsigned int>(visual->depth));
    const bool isRectangle = frame % 2 == 1;
    const int attributes[] = {GLX_TEXTURE_TARGET_EXT,
                              isRectangle ? GLX_TEXTURE_RECTANGLE_EXT : GLX_TEXTURE_2D_EXT,
                              GLX_TEXTURE_FORMAT_EXT, GLX_TEXTURE_FORMAT_RGB_EXT, None};
    const GLXPixmap drawable = glXCreatePixmap(display, configs[0], pixels, attributes);
    const GC gc = XCreateGC(display, pixels, 0, nullptr);
    XSetForeground(display, gc, 0x3060C0);
    XFillRectangle(display, pixels, gc, 0, 0, 20, 12);
    const unsigned int target = isRectangle ? GL_TEXTURE_RECTANGLE : GL_TEXTURE_2D;
    GLuint texture = 0, buffer = 0;
    glGenTextures(1, &texture);
    glBindTexture(target, texture);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_PIXEL_UNPACK_BUFFER, buffer);
    glBufferData(GL_PIXEL_UNPACK_BUFFER, 16, nullptr, GL_STATIC_DRAW);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 7);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 3);
    glPixelTransferf(GL_RED_SCALE, 0.5f);
    glEnable(target);
    for (int i = 0; i < 2; ++i) { // and again, with others
        XSetForeground(display, gc, i == 0 ? 0xE0A010 : 0x20F020);
        XFillRectangle(display, pixels, gc, 2 * frame, 3 + 4 * i, 9, 5);
        XSync(display, False);
        bind(display, drawable, GLX_FRONT_LEFT_EXT, nullptr);
        glBegin(GL_QUADS);
        for (const auto& [x, y] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
            glTexCoord2i(isRectangle ? 20 * x : x, isRectangle ? 12 * y : y);
            glVertex2f(static_cast<float>(x - i), static_cast<float>(y) - 0.5f);
        }
        glEnd();
        glFinish(); // or Mesa draws with the next ones
        release(display, drawable, GLX_FRONT_LEFT_EXT);
    }
    glDisable(target);
    glPixelTransferf(GL_RED_SCALE, 1);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
    glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
    glDeleteBuffers(1, &buffer);
    glDeleteTextures(1, &texture);
    XFreeGC(display, gc);
    glXDestroyPixmap(display, drawable);
    XFreePixmap(display, pixels);
    XFree(visual);
    XFree(configs);
}

// What another context has made is there, for those that share.
void contexts() {
    static GLFWwindow* other = nullptr;
    static GLFWwindow* alone = nullptr;
    if (!other) {
        glfwWindowHint(GLFW_VISIBLE, GLFW_FALSE);
        other = glfwCreateWindow(size, size, "other", nullptr, window);
        glfwWindowHint(GLFW_ALPHA_BITS, 0);
        glfwWindowHint(GLFW_STENCIL_BITS, 8);
        alone = glfwCreateWindow(size / 2, size, "alone", nullptr, nullptr);
    }
    GLuint texture = 0;
    glGenTextures(1, &texture);
    std::thread([&] {
        glfwMakeContextCurrent(other);
        glBindTexture(GL_TEXTURE_2D, texture);
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 8, 8, 0, GL_RGB, GL_UNSIGNED_BYTE, checkered(8, 8, 3).data());
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glFinish();
        immediate();
        readBack();
        glfwSwapBuffers(other);
        glfwMakeContextCurrent(nullptr);
    }).join();
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, texture);
    quad();
    glDisable(GL_TEXTURE_2D);
    glDeleteTextures(1, &texture);
    glfwMakeContextCurrent(alone);
    glClearColor(0.3f, 0.1f * static_cast<float>(frame), 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    lists();
    // A map and a fence of the group that shares with none; one fence is there from frame to frame.
    static GLsync fence = nullptr;
    const GLsync old = fence;
    fence = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    if (old)
        glClientWaitSync(old, 0, 1000), glDeleteSync(old);
    const float corners[] = {-0.9f, 0.5f, -0.5f, 0.5f, -0.9f, 0.9f};
    static GLuint buffer = 0;
    if (buffer == 0)
        glGenBuffers(1, &buffer);
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, sizeof corners, nullptr, GL_STREAM_DRAW);
    std::memcpy(glMapBuffer(GL_ARRAY_BUFFER, GL_WRITE_ONLY), corners, sizeof corners);
    glUnmapBuffer(GL_ARRAY_BUFFER);
    glVertexPointer(2, GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
    glDrawArrays(GL_TRIANGLES, 0, 3);
    glDisableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glfwSwapBuffers(alone);
    glfwMakeContextCurrent(window);
    if (frame == 2) {
        glfwDestroyWindow(other);
        glfwDestroyWindow(alone);
        other = alone = nullptr;
        fence = nullptr, buffer = 0; // which went with their context
    }
}

void resize() {
    static int now = size;
    int width = 0, height = 0;
    glfwGetFramebufferSize(window, &width, &height);
    if (width != now) {
        glViewport(0, 0, width, height);
        now = width;
    }
    immediate();
    std::vector<unsigned char> pixels(static_cast<std::size_t>(width * height * 4));
    glReadPixels(0, 0, width, height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
}

const std::map<std::string, void (*)()> scenes = {{"immediate", immediate},
                                                  {"lists", lists},
                                                  {"arrays", arrays},
                                                  {"buffers", buffers},
                                                  {"pixels", pixels},
                                                  {"textures", textures},
                                                  {"evaluators", evaluators},
                                                  {"modes", modes},
                                                  {"accumulation", accumulation},
                                                  {"queries", queries},
                                                  {"assembly", assembly},
                                                  {"shaders", shaders},
                                                  {"fonts", fonts},
                                                  {"pixmap", pixmap},
                                                  {"framebuffers", framebuffers},
                                                  {"stacks", stacks},
                                                  {"imaging", imaging},
                                                  {"once", once},
                                                  {"core", core},
                                                  {"reported", reported},
                                                  {"contexts", contexts},
                                                  {"resize", resize},
                                                  {"samples", immediate}};

} // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        for (const auto& [name, draw] : scenes)
            std::printf("%s\n", name.c_str());
        return 0;
    }
    if (!glfwInit())
        return 77;
    for (const int hint :
         {GLFW_ACCUM_RED_BITS, GLFW_ACCUM_GREEN_BITS, GLFW_ACCUM_BLUE_BITS, GLFW_ACCUM_ALPHA_BITS})
        glfwWindowHint(hint, std::string(argv[1]) == "accumulation" ? 16 : 0);
    glfwWindowHint(GLFW_DECORATED, GLFW_FALSE);
    glfwWindowHint(GLFW_SAMPLES, std::string(argv[1]) == "samples" ? 4 : 0);
    if (std::string(argv[1]) == "core") {
        glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, 3), glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, 3);
        glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
        glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, GLFW_TRUE);
    }
    window = glfwCreateWindow(size, size, argv[1], nullptr, nullptr);
    if (!window)
        return 77;
    glfwMakeContextCurrent(window);
    const auto scene = scenes.find(argv[1]);
    if (scene == scenes.end())
        return 2;
    for (frame = 0; frame < 4; ++frame) {
        glClearColor(0.2f, 0.2f, 0.2f, 1);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        scene->second();
        if (argc > 2 && std::atoi(argv[2]) == frame)
            raise(SIGKILL);
        if (std::string(argv[1]) != "resize")
            readBack();
        glfwSwapBuffers(window);
        if (std::string(argv[1]) == "resize") {
            glfwSetWindowSize(window, size + 40 * (frame + 1), size + 10);
            for (int i = 0; i < 20; ++i)
                glfwWaitEventsTimeout(0.01);
        }
    }
    glfwTerminate();
    return 0;
}
