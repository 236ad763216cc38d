#include "Scene.h"

#include "extensionator/OpenGLInterceptor.h"

#include <GL/gl.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

namespace {

constexpr float pi = std::numbers::pi_v<float>;

struct Color {
    float r, g, b;
};

enum List : unsigned int { sphere, torus, box, listCount };

// Wood rings, so that a picture shows at a glance whether texture coordinates and filters are right.
std::vector<std::uint8_t> ringTexture(int size) {
    std::vector<std::uint8_t> texels;
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const float u = 2.0f * static_cast<float>(x) / static_cast<float>(size) - 1.0f;
            const float v = 2.0f * static_cast<float>(y) / static_cast<float>(size) - 1.0f;
            const float ring = 0.5f + 0.5f * std::sin(24.0f * std::hypot(u, v) + 2.0f * std::sin(5.0f * u));
            for (const float channel : {170.0f + 70.0f * ring, 115.0f + 65.0f * ring, 65.0f + 40.0f * ring})
                texels.push_back(static_cast<std::uint8_t>(channel));
        }
    return texels;
}

void spherePoint(float latitude, float longitude, float u, float v) {
    const float x = std::cos(latitude) * std::cos(longitude);
    const float y = std::sin(latitude);
    const float z = std::cos(latitude) * std::sin(longitude);
    CGM(TexCoord2f, u, v);
    CGM(Normal3f, x, y, z);
    CGM(Vertex3f, x, y, z);
}

void compileSphere(int stacks, int slices) {
    for (int i = 0; i < stacks; ++i) {
        CGM(Begin, GL_TRIANGLE_STRIP);
        for (int j = 0; j <= slices; ++j)
            for (int k = 0; k <= 1; ++k) {
                const float v = static_cast<float>(i + k) / static_cast<float>(stacks);
                const float u = static_cast<float>(j) / static_cast<float>(slices);
                spherePoint((v - 0.5f) * pi, 2.0f * pi * u, u, v);
            }
        CGM(End);
    }
}

void torusPoint(float around, float across, float inner) {
    const float nx = std::cos(across) * std::cos(around);
    const float ny = std::cos(across) * std::sin(around);
    const float nz = std::sin(across);
    CGM(Normal3f, nx, ny, nz);
    CGM(Vertex3f, std::cos(around) + inner * nx, std::sin(around) + inner * ny, inner * nz);
}

void compileTorus(int rings, int sides) {
    for (int i = 0; i < rings; ++i) {
        CGM(Begin, GL_QUAD_STRIP);
        for (int j = 0; j <= sides; ++j)
            for (int k = 0; k <= 1; ++k)
                torusPoint(2.0f * pi * static_cast<float>(i + k) / static_cast<float>(rings),
                           2.0f * pi * static_cast<float>(j) / static_cast<float>(sides), 0.35f);
        CGM(End);
    }
}

void compileBox() {
    // Each face is the first one, turned.
    constexpr float turns[6][4] = {{0, 1, 0, 0},   {90, 1, 0, 0}, {180, 1, 0, 0},
                                   {270, 1, 0, 0}, {90, 0, 1, 0}, {-90, 0, 1, 0}};
    for (const auto& [angle, x, y, z] : turns) {
        CGM(PushMatrix);
        CGM(Rotatef, angle, x, y, z);
        CGM(Begin, GL_QUADS);
        CGM(Normal3f, 0.0f, 0.0f, 1.0f);
        for (const auto& [u, v] : {std::array{0, 0}, std::array{1, 0}, std::array{1, 1}, std::array{0, 1}}) {
            CGM(TexCoord2i, u, v);
            CGM(Vertex3i, 2 * u - 1, 2 * v - 1, 1);
        }
        CGM(End);
        CGM(PopMatrix);
    }
}

void color(Color color) { CGM(Color3f, color.r, color.g, color.b); }

void setCamera(int width, int height) {
    const double aspect = static_cast<double>(width) / static_cast<double>(height);
    CGM(Viewport, 0, 0, width, height);
    CGM(MatrixMode, GL_PROJECTION);
    CGM(LoadIdentity);
    CGM(Frustum, -0.5 * aspect, 0.5 * aspect, -0.5, 0.5, 1.25, 40.0);
    CGM(MatrixMode, GL_MODELVIEW);
    CGM(LoadIdentity);
    CGM(Translatef, 0.0f, 0.1f, -12.5f);
    CGM(Rotatef, 26.0f, 1.0f, 0.0f, 0.0f);
}

void drawFloor() {
    constexpr int tiles = 8;
    CGM(Disable, GL_TEXTURE_2D);
    CGM(Normal3f, 0.0f, 1.0f, 0.0f);
    for (int z = -tiles; z < tiles; ++z)
        for (int x = -tiles; x < tiles; ++x) {
            const bool light = ((x ^ z) & 1) != 0;
            color(light ? Color{0.80f, 0.82f, 0.86f} : Color{0.26f, 0.30f, 0.38f});
            CGM(Begin, GL_QUADS);
            CGM(Vertex3i, x, -1, z);
            CGM(Vertex3i, x, -1, z + 1);
            CGM(Vertex3i, x + 1, -1, z + 1);
            CGM(Vertex3i, x + 1, -1, z);
            CGM(End);
        }
}

class Objects : public Scene {
public:
    Objects(int width, int height);
    ~Objects() override;
    void draw() override;

private:
    // A recording of the deletion reads twice the array.
    std::array<unsigned int, 2> textures_{};
    unsigned int lists_ = 0;
};

Objects::Objects(int width, int height) {
    setCamera(width, height);
    CGM(Enable, GL_DEPTH_TEST);
    CGM(Enable, GL_NORMALIZE);
    CGM(ShadeModel, GL_SMOOTH);

    // The light that GL has from the start: white, from where the eye is.
    CGM(Enable, GL_LIGHTING);
    CGM(Enable, GL_LIGHT0);
    CGM(LightModeli, GL_LIGHT_MODEL_LOCAL_VIEWER, GL_TRUE);
    CGM(Materialf, GL_FRONT, GL_SHININESS, 40.0f);
    CGM(ColorMaterial, GL_FRONT, GL_SPECULAR);
    CGM(Enable, GL_COLOR_MATERIAL);
    color({0.5f, 0.5f, 0.5f});
    CGM(ColorMaterial, GL_FRONT, GL_AMBIENT_AND_DIFFUSE);

    // Fog to black, as its colour is from the start.
    CGM(Enable, GL_FOG);
    CGM(Fogi, GL_FOG_MODE, GL_LINEAR);
    CGM(Fogf, GL_FOG_START, 11.0f);
    CGM(Fogf, GL_FOG_END, 21.0f);

    constexpr int size = 128;
    const std::vector<std::uint8_t> texels = ringTexture(size);
    CGM(GenTextures, 1, textures_.data());
    CGM(BindTexture, GL_TEXTURE_2D, textures_[0]);
    CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    CGM(TexEnvi, GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
    CGM(PixelStorei, GL_UNPACK_ALIGNMENT, 1);
    CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGB8, size, size, 0, GL_RGB, GL_UNSIGNED_BYTE, texels.data());

    lists_ = CGM(GenLists, listCount);
    CGM(NewList, lists_ + sphere, GL_COMPILE);
    compileSphere(16, 32);
    CGM(EndList);
    CGM(NewList, lists_ + torus, GL_COMPILE);
    compileTorus(40, 20);
    CGM(EndList);
    CGM(NewList, lists_ + box, GL_COMPILE);
    compileBox();
    CGM(EndList);
}

Objects::~Objects() {
    try {
        CGM(DeleteLists, lists_, listCount);
        CGM(DeleteTextures, 1, textures_.data());
    } catch (...) {
        // A destructor lets nothing out; the names go with the context.
    }
}

void Objects::draw() {
    CGM(Clear, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawFloor();

    CGM(PushMatrix);
    CGM(Translatef, 0.0f, 0.9f, 0.0f);
    CGM(Scalef, 1.9f, 1.9f, 1.9f);
    color({0.95f, 0.95f, 0.95f});
    CGM(Enable, GL_TEXTURE_2D);
    CGM(BindTexture, GL_TEXTURE_2D, textures_[0]);
    CGM(CallList, lists_ + sphere);
    CGM(PopMatrix);

    constexpr int objects = 18;
    constexpr std::array colors = {Color{0.90f, 0.25f, 0.20f}, Color{0.95f, 0.70f, 0.15f},
                                   Color{0.25f, 0.70f, 0.35f}, Color{0.20f, 0.45f, 0.90f},
                                   Color{0.65f, 0.30f, 0.80f}};
    for (int i = 0; i < objects; ++i) {
        const unsigned int shape = static_cast<unsigned int>(i) % listCount;
        CGM(PushMatrix);
        CGM(Rotatef, 12.0f + 360.0f * static_cast<float>(i) / objects, 0.0f, 1.0f, 0.0f);
        CGM(Translatef, 4.6f, -0.35f, 0.0f);
        CGM(Rotatef, 35.0f * static_cast<float>(i), 0.3f, 1.0f, 0.2f);
        CGM(Scalef, 0.45f, 0.45f, 0.45f);
        color(colors[static_cast<std::size_t>(i) % colors.size()]);
        if (shape == torus)
            CGM(Disable, GL_TEXTURE_2D);
        else
            CGM(Enable, GL_TEXTURE_2D);
        CGM(CallList, lists_ + shape);
        CGM(PopMatrix);
    }
    CGM(Finish);
}

} // namespace

std::unique_ptr<Scene> makeObjects(int width, int height) { return std::make_unique<Objects>(width, height); }
