// A GLUT program that records itself: record_glut [FOLDER] writes recording.inl (statements), recording.bin
// (data) and frame.png, the last frame, there. It draws by plain gl… calls, which its last header sends
// through the chain; Recording.h has what is added to the program.

#include "Png.h"
#include "Recording.h"
#include "Run.h"
#include "extensionator/win/wglInterceptor.h"
#include "zlt/core/Core.h"

#include <GL/glut.h>

#include <cmath>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>

// After all headers: its macros take the names of the GL functions.
#include "extensionator/gl_intercept.h"

namespace {

constexpr int frames = 3;
constexpr int blades = 7;
constexpr double turnOfAFrame = 360.0 / 23.0; // degrees

std::unique_ptr<Recording> recording;
std::string pictureFile;
int frame = 0;

// Hub and blades are striped.
void makeTexture() {
    GLubyte stripes[16 * 16 * 3];
    for (int texel = 0; texel < 16 * 16; ++texel)
        for (int channel = 0; channel < 3; ++channel)
            stripes[3 * texel + channel] = texel % 16 < 4 ? 255 : 90;
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGB, 16, 16, 0, GL_RGB, GL_UNSIGNED_BYTE, stripes);
    glEnable(GL_TEXTURE_2D);
}

void drawBlade() {
    glBegin(GL_TRIANGLE_STRIP);
    for (int i = 0; i <= 12; ++i) {
        const double along = i / 12.0;
        const double width = 0.14 * std::sin(3.14159265358979 * along);
        for (const double side : {-width, width}) {
            glTexCoord2d(along, side);
            glVertex2d(side + 0.2 * along * along, 0.1 + 0.8 * along);
        }
    }
    glEnd();
}

void drawFrame() {
    glClear(GL_COLOR_BUFFER_BIT);
    glMatrixMode(GL_MODELVIEW);
    for (int i = 0; i < blades; ++i) {
        glLoadIdentity();
        glRotated(turnOfAFrame * frame + 360.0 * i / blades, 0.0, 0.0, 1.0);
        glColor3d(1.0 - 0.1 * i, 0.4 + 0.08 * i, 0.3);
        drawBlade();
    }
}

// Without a function of the program's own, GLUT sets the viewport, which the recorder wouldn't see.
void reshape(int width, int height) { glViewport(0, 0, width, height); }

void quit(int status) {
    recording.reset();
    ZLT::Core::Library::terminate(&std::cerr);
    std::exit(status); // GLUT's loop does not return
}

// GLUT is C: no exception may pass through it.
void display() {
    try {
        drawFrame();
        if (++frame == frames)
            writePng(pictureFile, readFrame(glutGet(GLUT_WINDOW_WIDTH), glutGet(GLUT_WINDOW_HEIGHT)));
        // In place of glutSwapBuffers(), which the recorder wouldn't see.
        CWGM(SwapBuffers, recording->device());
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        quit(1);
    }
    if (frame == frames) {
        std::cout << "Recorded " << frames << " frames. Picture: " << pictureFile << '\n';
        quit(0);
    }
    glutPostRedisplay();
}

} // namespace

int main(int argc, char** argv) {
    glutInit(&argc, argv);
    glutInitDisplayMode(GLUT_RGB | GLUT_DOUBLE);
    glutInitWindowSize(320, 320);
    glutCreateWindow("record_glut");
    ZLT::Core::Library::initialize();
    try {
        pictureFile = outputPath(argc, argv, "frame.png");
        recording = std::make_unique<Recording>(std::filesystem::path(pictureFile).parent_path());
        makeTexture();
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        quit(1);
    }
    glutReshapeFunc(reshape);
    glutDisplayFunc(display);
    glutMainLoop();
}
