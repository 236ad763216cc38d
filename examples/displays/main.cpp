// For each display device: what draws there, and a picture that one context draws into a texture and that
// another one, which shares it, reads.

#include "Run.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/TextureState.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/Framebuffer.h"
#include "ogl/Program.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"

#include <GL/gl.h>

#include <algorithm>
#include <cstdint>
#include <iostream>
#include <stdexcept>
#include <string>
#include <vector>

using namespace ZLT::OGL;

namespace {

constexpr int columns = 64, rows = 30;

// A ball, lit from the upper left.
const char* ballText = "uniform vec3 light;\n"
                       "uniform vec2 size;\n"
                       "void main() {\n"
                       "    vec2 place = 2.1 * gl_FragCoord.xy / size - 1.05;\n"
                       "    float square = dot(place, place);\n"
                       "    vec3 normal = vec3(place, sqrt(max(1.0 - square, 0.0)));\n"
                       "    float grey = square > 1.0 ? 0.0 : 0.1 + 0.9 * max(dot(normal, light), 0.0);\n"
                       "    gl_FragColor = vec4(grey);\n"
                       "}\n";

void drawBall(Texture2D& texture) {
    Framebuffer framebuffer;
    framebuffer.bind();
    framebuffer.attach(&texture, 0, 0);
    if (!framebuffer.statusOkay(nullptr))
        throw std::runtime_error("the driver can't draw to a texture");
    Program program;
    program.loadFragmentShader(1, &ballText, nullptr); // the fixed pipeline does the rest
    program.link(true);
    program.enable();
    program.setUniform("size", float(columns), float(rows));
    program.setUniform("light", -0.45f, 0.65f, 0.6f);
    CGM(Viewport, 0, 0, columns, rows);
    CGM(Rectf, -1.0f, -1.0f, 1.0f, 1.0f);
    CGM(Finish); // the other context reads what is done, not what is under way
    program.disable();
    framebuffer.unbind();
}

std::vector<std::uint8_t> read(const Texture2D& texture) {
    std::vector<std::uint8_t> greys(
        texture.pixelDataSize(0, Texture::Format::RED, Texture::Type::UNSIGNED_BYTE));
    TextureState::setActiveTextureUnit(0);
    TextureUnit::Unit(0)->bind(&texture);
    texture.getPixelData(greys.data(), 0, Texture::Format::RED, Texture::Type::UNSIGNED_BYTE, 1);
    TextureUnit::Unit(0)->bind2DDefault();
    return greys;
}

void print(const std::vector<std::uint8_t>& greys) {
    const std::string inks = " .:-=+*#%@";
    for (std::size_t row = rows; row > 0; --row) { // GL's lowest row comes first
        for (std::size_t column = 0; column < columns; ++column)
            std::cout << inks[greys[(row - 1) * columns + column] * inks.size() / 256];
        std::cout << '\n';
    }
}

void show(const DISPLAY_DEVICEA& device) {
    const ContextOffscreen first(device);
    const ContextOffscreen second(&first);
    first.makeCurrent();
    std::cout << device.DeviceName << ", " << device.DeviceString
              << "\n  renderer:      " << CGM(GetString, GL_RENDERER)
              << "\n  version:       " << CGM(GetString, GL_VERSION)
              << "\n  texture units: " << ExtensionManager::Instance()->numberOfTextureUnits() << '\n';

    Texture2D texture(Texture::InternalFormat::RGBA8, columns, rows, false, nullptr);
    drawBall(texture);
    const std::vector<std::uint8_t> drawn = read(texture);
    second.makeCurrent();
    const std::vector<std::uint8_t> shared = read(texture);
    print(shared);
    const int highlight = *std::max_element(drawn.begin(), drawn.end());
    if (drawn.front() != 0 || highlight < 240 || shared != drawn)
        throw std::runtime_error("the picture is not the one that was drawn");
    std::cout << "  A second context, which shares with the first, reads the same ball, from black to "
              << highlight << ".\n";
}

int run() {
    const std::size_t count = Context::numDisplayDevice();
    for (std::size_t i = 0; i < count; ++i) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(i, device);
        show(device);
    }
    std::cout << "Display devices: " << count << '\n';
    return count > 0 ? 0 : 1;
}

} // namespace

int main() { return runExample(run); }
