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
    const std::array normal = {std::cos(latitude) * std::cos(longitude), std::sin(latitude),
                               std::cos(latitude) * std::sin(longitude)};
    CGM(TexCoord2f, u, v);
    CGM(Normal3fv, normal.data());
    CGM(Vertex3fv, normal.data());
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
    constexpr float corners[8][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1},
                                     {-1, -1, 1},  {1, -1, 1},  {1, 1, 1},  {-1, 1, 1}};
    constexpr int faces[6][4] = {{0, 3, 2, 1}, {4, 5, 6, 7}, {0, 1, 5, 4},
                                 {3, 7, 6, 2}, {0, 4, 7, 3}, {1, 2, 6, 5}};
    constexpr float normals[6][3] = {{0, 0, -1}, {0, 0, 1}, {0, -1, 0}, {0, 1, 0}, {-1, 0, 0}, {1, 0, 0}};
    constexpr float texels[4][2] = {{0, 0}, {1, 0}, {1, 1}, {0, 1}};
    CGM(Begin, GL_QUADS);
    for (int face = 0; face < 6; ++face) {
        CGM(Normal3fv, normals[face]);
        for (int corner = 0; corner < 4; ++corner) {
            CGM(TexCoord2fv, texels[corner]);
            CGM(Vertex3fv, corners[faces[face][corner]]);
        }
    }
    CGM(End);
}

void material(Color color, float shininess) {
    const std::array diffuse = {color.r, color.g, color.b, 1.0f};
    const std::array specular = {0.6f, 0.6f, 0.6f, 1.0f};
    CGM(Materialfv, GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE, diffuse.data());
    CGM(Materialfv, GL_FRONT_AND_BACK, GL_SPECULAR, specular.data());
    CGM(Materialf, GL_FRONT_AND_BACK, GL_SHININESS, shininess);
}

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
            material(light ? Color{0.80f, 0.82f, 0.86f} : Color{0.26f, 0.30f, 0.38f}, 8.0f);
            CGM(Begin, GL_QUADS);
            CGM(Vertex3i, x, -1, z);
            CGM(Vertex3i, x, -1, z + 1);
            CGM(Vertex3i, x + 1, -1, z + 1);
            CGM(Vertex3i, x + 1, -1, z);
            CGM(End);
        }
}

} // namespace

Scene::Scene(int width, int height) {
    setCamera(width, height);
    CGM(ClearColor, 0.62f, 0.72f, 0.84f, 1.0f);
    CGM(Enable, GL_DEPTH_TEST);
    CGM(Enable, GL_NORMALIZE);
    CGM(ShadeModel, GL_SMOOTH);

    const std::array position = {4.0f, 8.0f, 5.0f, 1.0f};
    const std::array ambient = {0.25f, 0.25f, 0.28f, 1.0f};
    CGM(Enable, GL_LIGHTING);
    CGM(Enable, GL_LIGHT0);
    CGM(Lightfv, GL_LIGHT0, GL_POSITION, position.data());
    CGM(LightModelfv, GL_LIGHT_MODEL_AMBIENT, ambient.data());
    CGM(LightModeli, GL_LIGHT_MODEL_TWO_SIDE, GL_TRUE);

    const std::array fog = {0.62f, 0.72f, 0.84f, 1.0f};
    CGM(Enable, GL_FOG);
    CGM(Fogi, GL_FOG_MODE, GL_LINEAR);
    CGM(Fogf, GL_FOG_START, 11.0f);
    CGM(Fogf, GL_FOG_END, 22.0f);
    CGM(Fogfv, GL_FOG_COLOR, fog.data());

    constexpr int size = 128;
    const std::vector<std::uint8_t> texels = ringTexture(size);
    CGM(GenTextures, 1, &texture_);
    CGM(BindTexture, GL_TEXTURE_2D, texture_);
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

Scene::~Scene() {
    try {
        CGM(DeleteLists, lists_, listCount);
        CGM(DeleteTextures, 1, &texture_);
    } catch (...) {
        // A destructor lets nothing out; the names go with the context.
    }
}

void Scene::draw(float degrees) {
    CGM(Clear, GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawFloor();

    CGM(PushMatrix);
    CGM(Translatef, 0.0f, 0.9f, 0.0f);
    CGM(Scalef, 1.9f, 1.9f, 1.9f);
    material({0.95f, 0.95f, 0.95f}, 60.0f);
    CGM(Enable, GL_TEXTURE_2D);
    CGM(BindTexture, GL_TEXTURE_2D, texture_);
    CGM(CallList, lists_ + sphere);
    CGM(PopMatrix);

    constexpr int objects = 18;
    constexpr std::array colors = {Color{0.90f, 0.25f, 0.20f}, Color{0.95f, 0.70f, 0.15f},
                                   Color{0.25f, 0.70f, 0.35f}, Color{0.20f, 0.45f, 0.90f},
                                   Color{0.65f, 0.30f, 0.80f}};
    for (int i = 0; i < objects; ++i) {
        const unsigned int shape = static_cast<unsigned int>(i) % listCount;
        CGM(PushMatrix);
        CGM(Rotatef, degrees + 360.0f * static_cast<float>(i) / objects, 0.0f, 1.0f, 0.0f);
        CGM(Translatef, 4.6f, -0.35f, 0.0f);
        CGM(Rotatef, 35.0f * static_cast<float>(i), 0.3f, 1.0f, 0.2f);
        CGM(Scalef, 0.45f, 0.45f, 0.45f);
        material(colors[static_cast<std::size_t>(i) % colors.size()], 40.0f);
        if (shape == torus)
            CGM(Disable, GL_TEXTURE_2D);
        else
            CGM(Enable, GL_TEXTURE_2D);
        CGM(CallList, lists_ + shape);
        CGM(PopMatrix);
    }
    CGM(Finish);
}
