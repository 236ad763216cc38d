// Whether textures of floats can be filtered linearly, which no extension tells.

#include "extensionator/Managers.h"

#include "extensionator/TextureState.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/ContextWrapped.h"
#include "ogl/Framebuffer.h"
#include "ogl/ScopedContextWrapper.h"
#include "ogl/Texture2D.h"
#include "ogl/TextureUnit.h"
#include "platform/GL.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace ZLT::OGL {

namespace {

constexpr int sourceSize = 16;
constexpr int targetSize = 32;

// White, from the lower left corner of the view to (right, 1); textured with coordinates equal to the
// vertices.
void drawQuad(float right, bool textured) {
    glColor4f(1, 1, 1, 1);
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair(0.0f, 0.0f), {0.0f, 1.0f}, {right, 1.0f}, {right, 0.0f}}) {
        if (textured)
            glTexCoord2f(x, y);
        glVertex2f(x, y);
    }
    glEnd();
}

} // namespace

bool ExtensionManager::supportsHalfFiltering() {
    if (!isSupported(GL_EXT_GPU_SHADER4))
        return false;
    if (vendor_ == VENDOR_NVIDIA || (vendor_ == VENDOR_ATI && isSupported(OPEN_GL_3_0)))
        return true;
    if (!halfFilteringTested_) {
        try {
            halfFilteringResult_ = testHalfFiltering();
        } catch (...) {
            halfFilteringResult_ = false;
        }
        halfFilteringTested_ = true;
    }
    return halfFilteringResult_;
}

bool ExtensionManager::supportsFloatFiltering() {
    // Not as above, and existing clients rely on it: this extension decides for one vendor alone.
    if (vendor_ == VENDOR_NVIDIA)
        return isSupported(GL_EXT_GPU_SHADER4);
    if (vendor_ == VENDOR_ATI && isSupported(OPEN_GL_3_0))
        return true;
    if (!floatFilteringTested_) {
        try {
            floatFilteringResult_ = testFloatFiltering();
        } catch (...) {
            floatFilteringResult_ = false;
        }
        floatFilteringTested_ = true;
    }
    return floatFilteringResult_;
}

bool ExtensionManager::testHalfFiltering() { return supports16BitFloat() && testFiltering(GL_RGBA16F); }

bool ExtensionManager::testFloatFiltering() {
    return supportsFloatingPointTextures() && testFiltering(GL_RGBA32F);
}

// Draws an edge between white and black into a texture of the format, magnifies it with linear filters, and
// looks for grey.
bool ExtensionManager::testFiltering(unsigned int internalFormat) {
    if (!supportsRenderToTexture())
        return false;
    const ScopedContextWrapper restore;
    // The wrapper's end takes the entry of the client's context along.
    struct PutBack {
        HGLRC context = Context::currentContext();
        ExtensionManager* manager = Instance();
        ~PutBack() { internal::Managers::enter(context, manager); }
    };
    const PutBack clientEntry;
    const ContextWrapped client;
    const ContextOffscreen context(&client);
    context.makeCurrent();

    Texture2D source(Texture::GL2InternalFormat(internalFormat), sourceSize, sourceSize, false, nullptr);
    Framebuffer framebuffer;
    framebuffer.bind();
    framebuffer.attach(&source, 0, 0);
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, 1, 0, 1, -1, 1);
    glViewport(0, 0, sourceSize, sourceSize);
    glClearColor(0, 0, 0, 0);
    glClear(GL_COLOR_BUFFER_BIT);
    drawQuad(0.5f, false);

    Texture2D target(Texture::InternalFormat::RGBA8, targetSize, targetSize, false, nullptr);
    framebuffer.attach(&target, 0, 0);
    glViewport(0, 0, targetSize, targetSize);
    glClear(GL_COLOR_BUFFER_BIT);
    TextureState::setActiveTextureUnit(0);
    const TextureUnit* unit = TextureUnit::Unit(0);
    unit->bind(&source);
    unit->enable2D();
    source.setFilter(Texture::Filter::LINEAR, Texture::Filter::LINEAR);
    drawQuad(1, true);

    framebuffer.detach(&target, 0);
    unit->disable2D();
    unit->bind(&target);
    constexpr std::size_t bytes = std::size_t(3) * targetSize * targetSize;
    std::array<std::uint8_t, bytes> pixels = {};
    target.getPixelData(pixels.data(), 0, Texture::Format::RGB, Texture::Type::UNSIGNED_BYTE, 1);
    for (std::size_t x = 0; x < targetSize; ++x)
        if (pixels[3 * x] != 0 && pixels[3 * x] != 255)
            return true;
    return false;
}

} // namespace ZLT::OGL
