#include "ExpectError.h"
#include "FakeGL.h"
#include "extensionator/OpenGLInterceptor.h"

#include <gmock/gmock.h>

#include <stddef.h>

// In the manner of a C program, compiled with gl_intercept.h in front.

typedef unsigned int Name;

typedef struct {
    GLfloat position[3];
    GLubyte colour[4];
} Vertex;

static struct {
    GLenum target;
    GLuint textures[2];
    GLfloat colours[2][4];
    Vertex vertices[3];
} mesh = {GL_TEXTURE_2D, {7, 8}, {{0}}, {{{0}, {0}}}};

static int lineBeforeTheCalls;

// The table below knows on which line each call stands.
// clang-format off
// NOLINTBEGIN(modernize-use-nullptr)
static void drawFrame(void* memory, const char* const* sources)
{
    Name list;
    Name lists[2] = {3, 4};
    lineBeforeTheCalls = __LINE__;
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glBindTexture(mesh.target, mesh.textures[1]);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 2, 2, 0, GL_RGBA, GL_UNSIGNED_BYTE, NULL);
    glTexParameterfv(GL_TEXTURE_2D, GL_TEXTURE_BORDER_COLOR, mesh.colours[1]);
    glVertexPointer(3, GL_FLOAT, sizeof(Vertex), mesh.vertices);
    glColor3fv(memory); glGenTextures(2, memory);
    glFogfv(GL_FOG_COLOR, 0);
    glBitmap(0, 0, 0, 0, 8.0, 'a' - 96, NULL);
    glCallLists(1, GL_UNSIGNED_BYTE, glGetString(GL_VENDOR));
    list = glGenLists(1) + glGenLists(lists[0]);
    glNewList(list, GL_COMPILE), glEndList();
    if (!glIsTexture(list) && glIsEnabled(GL_FOG) == GL_FALSE) glDeleteLists(((void)list, lists[1]), 2);
    for (list = 0; list < 2; ++list) glVertex3fv(mesh.vertices[list].position);
    glMultiDrawElements(GL_QUADS, (const GLint*)memory, GL_UNSIGNED_INT, (const void* const*)memory, 1);
    glShaderSource(5, 2, sources, NULL);
    glGetInteger64v(GL_VIEWPORT, memory);
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

struct Statement {
    int line; // behind lineBeforeTheCalls
    Call call;
};
// clang-format off
const Statement statements[] = {
    {1, {"glClear", {0x4100u}}},
    {2, {"glBindTexture", {0x0DE1u, 8u}}},
    {3, {"glTexImage2D", {0x0DE1u, 0, 0x1908, 2, 2, 0, 0x1908u, 0x1401u, null}}},
    {4, {"glTexParameterfv", {0x0DE1u, 0x1004u, mesh.colours[1]}}},
    {5, {"glVertexPointer", {3, 0x1406u, 16, mesh.vertices}}},
    {6, {"glColor3fv", {numbers}}}, {6, {"glGenTextures", {2, numbers}}},
    {7, {"glFogfv", {0x0B66u, null}}},
    {8, {"glBitmap", {0, 0, 0.0f, 0.0f, 8.0f, 1.0f, null}}},
    {9, {"glGetString", {0x1F00u}}}, {9, {"glCallLists", {1, 0x1401u, vendor}}},
    {10, {"glGenLists", {1}}}, {10, {"glGenLists", {3}}},
    {11, {"glNewList", {34u, 0x1300u}}}, {11, {"glEndList", {}}},
    {12, {"glIsTexture", {34u}}}, {12, {"glIsEnabled", {0x0B60u}}}, {12, {"glDeleteLists", {4u, 2}}},
    {13, {"glVertex3fv", {mesh.vertices[0].position}}}, {13, {"glVertex3fv", {mesh.vertices[1].position}}},
    {14, {"glMultiDrawElements", {0x0007u, numbers, 0x1405u, numbers, 1}}},
    {15, {"glShaderSource", {5u, 2, sources, null}}},
    {16, {"glGetInteger64v", {0x0BA2u, numbers}}},
};
// clang-format on

void drawOnNewGL(std::size_t callsWithoutError, GLenum error) {
    FakeGL::reset();
    FakeGL::setResult("glGetString", static_cast<const unsigned char*>(vendor));
    FakeGL::setResult("glGenLists", 17u);
    for (std::size_t i = 0; i < callsWithoutError; ++i)
        FakeGL::pushError(GL_NO_ERROR);
    FakeGL::pushError(error);
    drawFrame(numbers, sources);
}

TEST(Intercept, AProgramGoesThroughTheChainAsItStandsAndLearnsTheLineOfEachError) {
    drawOnNewGL(0, GL_NO_ERROR);
    std::vector<Call> expected;
    for (const Statement& statement : statements)
        expected.insert(expected.end(), {statement.call, getError});
    expected.push_back({"glFlush", {}}); // through an address: GL itself
    EXPECT_EQ(expected, FakeGL::calls());

    for (std::size_t i = 0; i < std::size(statements); ++i) {
        SCOPED_TRACE(statements[i].call);
        expectError(__FILE__, lineBeforeTheCalls + statements[i].line, "invalid value", 0x0501,
                    [&] { drawOnNewGL(i, GL_INVALID_VALUE); });
    }
    OpenGLInterceptor::destroy();
}

TEST(Intercept, TheMacroNamesThePlaceAndIsAnExpression) {
    FakeGL::reset();
    FakeGL::setResult("glGenLists", 17u);
    CGM(BindTexture, GL_TEXTURE_2D, 5);
    EXPECT_EQ(34u, CGM(GenLists, 1) + CGM(GenLists, (CGM(Flush), 2)));
    EXPECT_THAT(FakeGL::calls(), testing::ElementsAre(Call{"glBindTexture", {0x0DE1u, 5u}}, getError,
                                                      Call{"glGenLists", {1}}, getError, Call{"glFlush", {}},
                                                      getError, Call{"glGenLists", {2}}, getError));
    FakeGL::pushError(GL_INVALID_VALUE);
    expectError(__FILE__, __LINE__, "invalid value", 0x0501, [] { CGM(Finish); });
    OpenGLInterceptor::destroy();
}

} // namespace
