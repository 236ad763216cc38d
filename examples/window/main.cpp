// Draws an animation in a window, and compares what the screen shows at its end with what was drawn:
// window [FOLDER] writes window.png there. Without an X server the picture is the last frame.

#include "PlainWindow.h"
#include "Png.h"
#include "Run.h"
#include "Screenshot.h"
#include "WindowContext.h"
#include "extensionator/OpenGLInterceptor.h"
#include "ogl/Buffer.h"
#include "ogl/Program.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <chrono>
#include <iostream>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace ZLT::OGL;

namespace {

constexpr int width = 800;
constexpr int height = 600;
constexpr int frames = 40;
constexpr int around = 24;           // points of a ring of the tube
constexpr int points = 400 * around; // of the whole tube

// A tube along a knot; `place` is the way along it and the turns around it.
const char* vertexText =
    "attribute vec2 place;\n"
    "uniform float turn;\n"
    "varying vec3 normal, eye;\n"
    "varying float way;\n"
    "vec3 knot(float t) {\n"
    "    return vec3((2.0 + cos(3.0 * t)) * vec2(cos(2.0 * t), sin(2.0 * t)), sin(3.0 * t));\n"
    "}\n"
    "void main() {\n"
    "    float t = 6.2831853 * place.x, a = 6.2831853 * place.y;\n"
    "    vec3 ahead = normalize(knot(t + 0.01) - knot(t - 0.01));\n"
    "    vec3 side = normalize(cross(ahead, vec3(0.0, 0.0, 1.0)));\n"
    "    mat3 spin = mat3(cos(turn), 0.0, -sin(turn), 0.0, 1.0, 0.0, sin(turn), 0.0, cos(turn));\n"
    "    normal = spin * (cos(a) * side + sin(a) * cross(side, ahead));\n"
    "    eye = spin * knot(t) + 0.45 * normal - vec3(0.0, 0.0, 9.0);\n"
    "    way = place.x;\n"
    "    gl_Position = vec4(1.65 * eye.x, 2.2 * eye.y, -1.667 * eye.z - 10.667, -eye.z);\n"
    "}\n";
const char* fragmentText =
    "uniform int stripes;\n"
    "uniform vec3 light;\n"
    "varying vec3 normal, eye;\n"
    "varying float way;\n"
    "void main() {\n"
    "    vec3 n = normalize(normal);\n"
    "    vec3 paint = fract(way * float(stripes)) < 0.5 ? vec3(0.95, 0.55, 0.1) : vec3(0.15, 0.4, 0.75);\n"
    "    float shine = pow(max(dot(reflect(normalize(eye), n), light), 0.0), 40.0);\n"
    "    gl_FragColor = vec4(paint * (0.15 + max(dot(n, light), 0.0)) + 0.6 * shine, 1.0);\n"
    "}\n";

// Shows all frames, and gives the last one.
Picture animate(ContextWindowed& context) {
    std::vector<float> places; // one strip, wound around the tube
    for (int point = 0; point <= points; ++point)
        for (const int next : {point, point + around})
            places.insert(places.end(), {float(next) / points, float(point) / around});
    Buffer vertices(static_cast<std::int64_t>(sizeof(float) * places.size()), Buffer::Type::ARRAY_BUFFER,
                    Buffer::Usage::STATIC_DRAW, places.data());
    Program program;
    program.loadVertexShader(1, &vertexText, nullptr);
    program.loadFragmentShader(1, &fragmentText, nullptr);
    program.setAttributeLocation(0, "place");
    program.link(true);
    program.enable();
    program.setUniform("stripes", 30);
    program.setUniform("light", -0.45f, 0.7f, 0.55f);

    vertices.bind();
    CGM(VertexAttribPointer, 0, 2, GL_FLOAT, GL_FALSE, 0, nullptr);
    CGM(EnableVertexAttribArray, 0);
    CGM(Viewport, 0, 0, width, height);
    CGM(Enable, GL_DEPTH_TEST);
    CGM(ClearColor, 0.05f, 0.06f, 0.09f, 1.0f);
    Picture frame;
    for (int i = 1; i <= frames; ++i) {
        CGM(Clear, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        program.setUniform("turn", 0.6f * static_cast<float>(i) / frames);
        CGM(DrawArrays, GL_TRIANGLE_STRIP, 0, 2 * (points + 1));
        if (i == frames)
            frame = readFrame(width, height);
        context.swapBuffers();
    }
    Buffer::bindDefaultArrayBuffer();
    program.disable();
    return frame;
}

int run(const std::string& path) {
    const PlainWindow window(width, height);
    ShowWindow(window.handle(), SW_SHOWNORMAL);
    const auto context = makeContext(window.handle());
    context->makeCurrent();
    int samples = 0;
    CGM(GetIntegerv, GL_SAMPLES, &samples);
    const Picture drawn = animate(*context);
    const auto bright =
        std::count_if(drawn.pixels.begin(), drawn.pixels.end(), [](int value) { return value > 99; });
    if (bright < width * height / 10)
        throw std::runtime_error("the frame shows no knot");
    std::cout << "Drew " << frames << " frames of a knot, " << samples << " samples for each pixel.\n";

    Picture shown = screenshot(window.handle());
    for (int i = 0; i < 200 && !shown.pixels.empty() && shown != drawn; ++i) { // a frame may get there later
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        shown = screenshot(window.handle());
    }
    const bool onScreen = !shown.pixels.empty();
    if (onScreen && shown != drawn)
        throw std::runtime_error("the screen shows something else than was drawn");
    std::cout << (onScreen ? "The screen shows the last frame, each pixel as it was drawn.\n"
                           : "No screen shows the window: the picture is the last frame, read back.\n");
    writePng(path, onScreen ? shown : drawn);
    std::cout << "Picture: " << path << '\n';
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    return runExample([&] { return run(outputPath(argc, argv, "window.png")); });
}
