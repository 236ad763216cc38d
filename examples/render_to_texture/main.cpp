// Draws a scene into a texture, then the texture on three boards into another one, whose pixels come back
// through a pixel buffer: render_to_texture [FOLDER] writes boards.png there.

#include "Png.h"
#include "Run.h"
#include "Scene.h"
#include "extensionator/OpenGLInterceptor.h"
#include "ogl/Buffer.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/Framebuffer.h"
#include "ogl/Renderbuffer.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <stdexcept>
#include <utility>

using namespace ZLT::OGL;

namespace {

constexpr int width = 1280, height = 560;          // of the picture
constexpr int boardWidth = 512, boardHeight = 352; // of the scene
constexpr int boardBottom = 164;

// A texture to draw to, with a depth buffer. From its construction on it is what is drawn to.
struct Canvas {
    Canvas(unsigned int width, unsigned int height, bool mipmaps)
        : texture(Texture::InternalFormat::RGBA8, width, height, mipmaps, nullptr),
          depth(GL_DEPTH_COMPONENT24, static_cast<int>(width), static_cast<int>(height)) {
        framebuffer.bind();
        framebuffer.attach(&texture, 0, 0);
        framebuffer.attach(&depth, 0);
        if (!framebuffer.statusOkay(nullptr))
            throw std::runtime_error("the driver can't draw to this texture");
    }
    Texture2D texture;
    Renderbuffer depth;
    Framebuffer framebuffer;
};

Picture readThroughBuffer(const Texture2D& texture) {
    const auto size = texture.pixelDataSize(0, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE);
    Buffer buffer(static_cast<std::int64_t>(size), Buffer::Type::PIXEL_PACK_BUFFER,
                  Buffer::Usage::STREAM_READ, nullptr);
    TextureUnit::Unit(0)->bind(&texture);
    // Binds the buffer for itself; map() and unmap() don't.
    texture.getPixelData(&buffer, 0, 0, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE, 1);
    buffer.bind();
    const auto* pixels = static_cast<const std::uint8_t*>(buffer.map(GL_READ_ONLY));
    if (!pixels)
        throw std::runtime_error("the driver can't map the buffer");
    Picture picture = {int(texture.width(0)), int(texture.height(0)), {pixels, pixels + size}};
    buffer.unmap();
    Buffer::bindDefaultPackBuffer();
    return picture;
}

// With its reflection below. One unit is one pixel where z is 0.
void drawBoard(float x, float z, float turn) {
    CGM(LoadIdentity);
    CGM(Translatef, x, float(boardBottom) - 0.5f * height, z - 1000.0f);
    CGM(Rotatef, turn, 0.0f, 1.0f, 0.0f);
    CGM(Begin, GL_QUADS);
    for (const int up : {1, -1})
        for (const auto& [u, v] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}}) {
            const float light = up > 0 ? 1.0f : 0.35f * float(1 - v);
            CGM(Color3f, light, light, light);
            CGM(TexCoord2i, u, v);
            CGM(Vertex2i, u * boardWidth - boardWidth / 2, up * v * boardHeight);
        }
    CGM(End);
}

// How many pixels of the board in front, which is neither turned nor scaled, are those of the scene.
int equalPixels(const Picture& picture, const Picture& scene) {
    constexpr std::size_t row = 3UL * width, boardRow = 3UL * boardWidth;
    int equal = 0;
    for (std::size_t i = 0; i < scene.pixels.size(); i += 3) {
        const std::size_t at = (i / boardRow + boardBottom) * row + i % boardRow + (row - boardRow) / 2;
        equal += std::equal(&scene.pixels[i], &scene.pixels[i] + 3, &picture.pixels[at],
                            [](int a, int b) { return std::abs(a - b) <= 2; });
    }
    return equal;
}

int run(const std::string& path) {
    const ContextOffscreen context;
    context.makeCurrent();
    Canvas screen(boardWidth, boardHeight, true);
    CGM(PushAttrib, GL_ALL_ATTRIB_BITS);
    Scene::make("objects", boardWidth, boardHeight)->draw();
    CGM(PopAttrib);
    const Picture scene = readThroughBuffer(screen.texture);

    Canvas canvas(width, height, false);
    const TextureUnit* unit = TextureUnit::Unit(0);
    unit->bind(&screen.texture);
    CGM(GenerateMipmapEXT, GL_TEXTURE_2D); // level 0 alone was drawn
    screen.texture.setFilter(Texture::Filter::LINEAR_MIPMAP_LINEAR, Texture::Filter::LINEAR);
    unit->enable2D();
    CGM(Viewport, 0, 0, width, height);
    CGM(Clear, GL_COLOR_BUFFER_BIT);
    CGM(MatrixMode, GL_PROJECTION);
    CGM(LoadIdentity);
    CGM(Frustum, -0.25 * width, 0.25 * width, -0.25 * height, 0.25 * height, 500.0, 2000.0);
    CGM(MatrixMode, GL_MODELVIEW);
    drawBoard(-460.0f, -220.0f, 55.0f);
    drawBoard(460.0f, -220.0f, -55.0f);
    drawBoard(0.0f, 0.0f, 0.0f); // in front of the others
    const Picture picture = readThroughBuffer(canvas.texture);

    writePng(path, picture);
    const int equal = equalPixels(picture, scene);
    std::cout << "The board in front shows " << equal << " of the scene's " << boardWidth * boardHeight
              << " pixels.\nPicture: " << path << '\n';
    return equal == boardWidth * boardHeight ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    return runExample([&] { return run(outputPath(argc, argv, "boards.png")); });
}
