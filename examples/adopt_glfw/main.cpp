// GLFW makes the window and the context, shows the frames, and knows nothing of the library. The program
// draws with the object layer, and learns the place of a wrong call: adopt_glfw [FOLDER] writes planet.png
// there.

#include "AutoInitializer.h"
#include "ExceptionOGL.h"
#include "Png.h"
#include "Run.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/TextureState.h"
#include "extensionator/TokenName.h"
#include "ogl/ContextWrapped.h"
#include "ogl/Program.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"
#include "zlt/core/Core.h"

#include <GLFW/glfw3.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ZLT::OGL;

namespace {

constexpr int size = 600; // of the window
constexpr int mapWidth = 1024, mapHeight = 512, mapUnit = 1;

const char* planetText =
    "uniform sampler2D map;\n"
    "uniform float turn;\n"
    "void main() {\n"
    "    vec2 place = 2.3 * gl_FragCoord.xy / 600.0 - 1.15;\n"
    "    float height = sqrt(max(1.0 - dot(place, place), 0.0));\n"
    "    vec2 at = vec2(atan(place.x, height) / 6.2831853 + turn, acos(-place.y) / 3.1415927);\n"
    "    float light = max(dot(vec3(place, height), vec3(-0.5, 0.35, 0.79)), 0.0);\n"
    "    vec3 air = vec3(0.35, 0.6, 1.0) * pow(1.0 - height, 3.0);\n"
    "    float inside = clamp((1.0 - length(place)) * 250.0, 0.0, 1.0);\n"
    "    vec3 ground = texture2D(map, at).rgb * (0.03 + 1.2 * light);\n"
    "    gl_FragColor = vec4(inside * (ground + air * light), 1.0);\n"
    "}\n";

// Sea, land and ice, by the height of a sum of waves.
std::vector<std::uint8_t> mapOfThePlanet() {
    std::vector<std::uint8_t> texels;
    for (unsigned int i = 0; i < mapWidth * mapHeight; ++i) {
        const unsigned int x = i % mapWidth, y = i / mapWidth;
        const float east = 6.2831853f * float(x) / mapWidth;
        const float north = 3.1415927f * (float(y) / mapHeight - 0.5f);
        float land = -0.1f;
        for (const float wave : {1.0f, 2.0f, 4.0f, 8.0f, 16.0f, 32.0f})
            land += std::sin(wave * east + 2 * std::sin(wave * north * 1.5f + wave)) *
                    std::cos(wave * north * 1.5f + 2 * std::cos(wave * east + wave)) * 0.8f / wave;
        std::array colour = {0.05f, 0.17f + 0.05f * land, 0.42f + 0.15f * land};
        if (std::abs(north) + 0.1f * land > 1.25f)
            colour = {0.9f, 0.93f, 0.95f};
        else if (land > 0)
            colour = {0.2f + 0.4f * land, 0.4f + 0.1f * land, 0.12f};
        for (const float channel : colour)
            texels.push_back(static_cast<std::uint8_t>(255 * std::clamp(channel, 0.0f, 1.0f)));
    }
    return texels;
}

// Shows some frames, and gives the last one.
Picture animate(GLFWwindow* window) {
    Program program;
    program.loadFragmentShader(1, &planetText, nullptr); // the fixed pipeline does the rest
    program.link(true);
    program.enable();
    program.setUniformSampler2D("map", mapUnit);

    // The active unit is GL's own state: binding, wrap mode, filters and pixels all go to it.
    TextureState::setActiveTextureUnit(mapUnit);
    Texture2D map(Texture::InternalFormat::RGB8, mapWidth, mapHeight, false, nullptr);
    TextureUnit::Unit(mapUnit)->bind(&map);
    map.subImage(0, 0, 0, mapWidth, mapHeight, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE,
                 mapOfThePlanet().data(), PixelUnpackParameters());
    map.setFilter(Texture::Filter::LINEAR, Texture::Filter::LINEAR);
    map.setWrap(Texture::WrapMode::REPEAT, Texture::WrapMode::CLAMP_TO_EDGE);

    Picture frame;
    CGM(Viewport, 0, 0, size, size);
    for (int i = 0; i < 30 && !glfwWindowShouldClose(window); ++i) {
        program.setUniform("turn", 0.01f * static_cast<float>(i));
        CGM(Rectf, -1.0f, -1.0f, 1.0f, 1.0f);
        frame = readFrame(size, size);
        glfwSwapBuffers(window);
        glfwPollEvents();
    }
    try {
        CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_LINEAR); // a filter is no wrap mode
    } catch (const ExceptionOGL& error) {
        std::cout << error.file() << ':' << error.line() << ": " << TokenName(error.errorNumber()) << ", "
                  << error.what() << '\n';
    }
    program.disable();
    return frame;
}

// GLFW's context is current all the while.
void run(GLFWwindow* window, const std::string& path) {
    const AutoInitializer library;
    const ContextWrapped context; // ends before the library does
    const Picture frame = animate(window);
    writePng(path, frame);
    const auto middle = frame.pixels.begin() + 3L * (size / 2) * (size + 1);
    const int lit = *std::max_element(middle, middle + 3);
    if (frame.pixels[0] != 0 || lit < 64)
        throw std::runtime_error("the frame shows no planet");
    std::cout << "The last frame shows a planet, " << lit
              << " bright in the middle, before black.\nPicture: " << path << '\n';
}

} // namespace

int main(int argc, char** argv) {
    GLFWwindow* window = glfwInit() ? glfwCreateWindow(size, size, "planet", nullptr, nullptr) : nullptr;
    std::ostringstream failure;
    if (window) {
        glfwMakeContextCurrent(window);
        ZLT::Core::Library::initialize();
        try {
            run(window, outputPath(argc, argv, "planet.png"));
        } catch (const std::exception& error) {
            failure << error.what() << '\n';
        }
        ZLT::Core::Library::terminate(&failure); // lists what was not released
        glfwDestroyWindow(window);
    } else {
        failure << "GLFW has no window: it needs an X server with OpenGL.\n";
    }
    glfwTerminate();
    std::cerr << failure.str();
    return failure.str().empty() ? 0 : 1;
}
