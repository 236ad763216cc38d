#include "StartedLibrary.h"
#include "extensionator/OpenGLInterceptor.h"

#include <gtest/gtest.h>

#include <stddef.h>

// In the manner of a C program, compiled with gl_intercept.h in front.

static struct {
    GLenum target;
    GLuint textures[2];
    GLfloat vertices[2][3];
} mesh = {GL_TEXTURE_2D, {7, 8}, {{0, 0, 0}, {1.5f, 2.5f, 3.5f}}};

#define V3(p) p[0], p[1], p[2]
#define NAMES(m) 2, m.textures
#define TWICE(call) (call) + (call)

// clang-format off
// NOLINTBEGIN(modernize-use-nullptr)
static void drawFrame(void* memory, const char* const* sources)
{
    GLuint list;
    glBindTexture(mesh.target, mesh.textures[1]);
    glVertexPointer(3, GL_FLOAT, sizeof(mesh.vertices[0]), mesh.vertices);
    glColor3fv(memory); glFogfv(GL_FOG_COLOR, 0);
    glBitmap(0, 0, 0, 0, 8.0, 'a' - 96, NULL);
    glCallLists(1, GL_UNSIGNED_BYTE, glGetString(GL_VENDOR));
    list = glGenLists(1) + glGenLists(3);
    if (!glIsTexture(list) && glIsEnabled(GL_FOG) == GL_FALSE) glDeleteLists(((void)list, 4), 2);
    for (list = 0; list < 2; ++list) glVertex3fv(mesh.vertices[list]);
    glMultiDrawElements(GL_QUADS, (const GLint*)memory, GL_UNSIGNED_INT, (const void* const*)memory, 1);
    glShaderSource(5, 2, sources, NULL);
    glNormal3f(V3(mesh.vertices[1])); glDeleteTextures(NAMES(mesh)); glGenTextures(1, memory);
    list = TWICE(glGenLists(5)); if (list == 0) glFlush(); else glFinish();
    {
        void (APIENTRY *flush)(void) = glFlush;
        flush();
    }
}
// NOLINTEND(modernize-use-nullptr)
// clang-format on

using namespace ZLT::OGL;
using FakeGL::Call;

namespace {

int numbers[2];
const char* const sources[] = {"void main()", "{}"};
const unsigned char vendor[] = "vendor";
const std::nullptr_t null = nullptr;
const Call getError{"glGetError", {}};

TEST(InterceptTest, aProgramGoesThroughTheChainAsItStands) {
    const LibraryWithAllOfGL library;
    FakeGL::setResult("glGetString", static_cast<const unsigned char*>(vendor));
    FakeGL::setResult("glGenLists", 17u);
    drawFrame(numbers, sources);
    const Call calls[] = {{"glBindTexture", {0x0DE1u, 8u}},
                          {"glVertexPointer", {3, 0x1406u, 12, mesh.vertices}},
                          {"glColor3fv", {numbers}},
                          {"glFogfv", {0x0B66u, null}},
                          {"glBitmap", {0, 0, 0.0f, 0.0f, 8.0f, 1.0f, null}},
                          {"glGetString", {0x1F00u}},
                          {"glCallLists", {1, 0x1401u, vendor}},
                          {"glGenLists", {1}},
                          {"glGenLists", {3}},
                          {"glIsTexture", {34u}},
                          {"glIsEnabled", {0x0B60u}},
                          {"glDeleteLists", {4u, 2}},
                          {"glVertex3fv", {mesh.vertices[0]}},
                          {"glVertex3fv", {mesh.vertices[1]}},
                          {"glMultiDrawElements", {0x0007u, numbers, 0x1405u, numbers, 1}},
                          {"glShaderSource", {5u, 2, sources, null}},
                          {"glNormal3f", {1.5f, 2.5f, 3.5f}},
                          {"glDeleteTextures", {2, mesh.textures}},
                          {"glGenTextures", {1, numbers}},
                          {"glGenLists", {5}},
                          {"glGenLists", {5}},
                          {"glFinish", {}}};
    std::vector<Call> expected;
    for (const Call& call : calls)
        expected.insert(expected.end(), {call, getError});
    expected.push_back({"glFlush", {}}); // through an address: GL itself
    EXPECT_EQ(expected, FakeGL::calls());
    OpenGLInterceptor::destroy();
}

} // namespace
