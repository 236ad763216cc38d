// Right calls that are easily taken for wrong ones, since between glBegin and glEnd nothing may be asked: one
// way for each argument. Each ends with what glGetError says.

#include "Headless.h"

#include <GL/glu.h>

#include <map>
#include <string>
#include <thread>

static EGLContext context;

static void makeList(GLuint list, void (*make)()) {
    glNewList(list, GL_COMPILE);
    make();
    glEndList();
}
static void begin() { glBegin(GL_QUADS); }

static const std::map<std::string, void (*)()> ways = {
    {"ends",
     [] {
         makeList(1, [] { glVertex2f(0, 0), glEnd(); });
         glBegin(GL_TRIANGLES);
         glVertex2f(1, 0);
         glCallList(1);
     }},
    {"begins",
     [] {
         makeList(1, begin);
         glCallList(1);
         glColor3f(1, 0, 0);
         glVertex2f(0, 0);
         glEnd();
     }},
    {"compiled",
     [] {
         makeList(1, begin);
         glEnable(GL_LIGHTING);
         glNewList(2, GL_COMPILE_AND_EXECUTE);
         begin();
         glEnd();
         glEndList();
         glDeleteLists(1, 2);
         glCallList(1);
     }},
    {"names",
     [] {
         makeList(1000 + 'b', begin);
         makeList(1000 + 'e', glEnd);
         glListBase(1000);
         glCallLists(1, GL_UNSIGNED_BYTE, "b");
         glVertex2f(0, 0);
         glCallLists(1, GL_UNSIGNED_BYTE, "e");
         glCallLists(4, GL_UNSIGNED_BYTE, "bebe");
         const GLushort names[] = {'b', 'e', 'b'};
         glCallLists(3, GL_UNSIGNED_SHORT, names);
         glVertex2f(0, 0);
         glCallLists(2, GL_2_BYTES, "\0e\0");
     }},
    // The base is that of the time when the list runs.
    {"base",
     [] {
         makeList(1000 + 'b', begin);
         makeList(1, [] { glListBase(1000), glCallLists(1, GL_UNSIGNED_BYTE, "b"); });
         glCallList(1);
         glVertex2f(0, 0);
         glEnd();
     }},
    {"tessellator",
     [] {
         GLdouble corners[][3] = {{-1, -1, 0}, {1, -1, 0}, {0, 0, 0}, {1, 1, 0}};
         GLUtesselator* tessellator = gluNewTess();
         using Callback = void (*)();
         gluTessCallback(tessellator, GLU_TESS_BEGIN, reinterpret_cast<Callback>(glBegin));
         gluTessCallback(tessellator, GLU_TESS_VERTEX, reinterpret_cast<Callback>(glVertex3dv));
         gluTessCallback(tessellator, GLU_TESS_END, reinterpret_cast<Callback>(glEnd));
         gluTessBeginPolygon(tessellator, nullptr);
         gluTessBeginContour(tessellator);
         for (GLdouble* corner : corners)
             gluTessVertex(tessellator, corner, corner);
         gluTessEndContour(tessellator);
         gluTessEndPolygon(tessellator);
         gluDeleteTess(tessellator);
     }},
    {"threads",
     [] {
         const auto draw = [](EGLContext share) {
             makeContext(share);
             for (int i = 0; i < 2000; ++i) {
                 glBegin(GL_TRIANGLES);
                 for (int corner = 0; corner < 3; ++corner)
                     glVertex2i(corner, i % 2);
                 glEnd();
                 glEnable(GL_LIGHTING);
             }
             glFinish();
             std::printf("thread: %x\n", glGetError());
         };
         std::thread other(draw, context), third(draw, EGL_NO_CONTEXT);
         draw(context);
         other.join();
         third.join();
     }},
};

int main(int, char** arguments) {
    context = makeContext();
    if (!context)
        return 77;
    ways.at(arguments[1])();
    glEnable(GL_LIGHTING);
    std::printf("%x\n", glGetError());
}
