#include "Scene.h"

#include "extensionator/OpenGLInterceptor.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <vector>

namespace {

// Column-major, as GL takes it.
template <class T>
std::array<T, 16> turned(T degrees, T scale) {
    const T angle = degrees * T(3.14159265358979) / T(180);
    const T c = std::cos(angle) * scale;
    const T s = std::sin(angle) * scale;
    return {c, s, 0, 0, -s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
}

class Matrices : public Scene {
public:
    Matrices(int width, int height) {
        constexpr int size = 32;
        const float aspect = static_cast<float>(width) / static_cast<float>(height);
        const std::array<float, 16> projection = {1 / aspect, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
        CGM(Viewport, 0, 0, width, height);
        CGM(MatrixMode, GL_PROJECTION);
        CGM(LoadMatrixf, projection.data());
        CGM(MatrixMode, GL_MODELVIEW);

        // Floats, then a square of packed bytes in the middle of them.
        std::vector<float> gradient;
        for (int y = 0; y < size; ++y)
            for (int x = 0; x < size; ++x)
                for (const float value : {static_cast<float>(x) / size, static_cast<float>(y) / size, 0.35f})
                    gradient.push_back(value);
        const std::vector<std::uint32_t> square(64, 0xFFD040FF);
        CGM(GenTextures, 1, textures_.data());
        CGM(BindTexture, GL_TEXTURE_2D, textures_[0]);
        CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        CGM(TexParameteri, GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        CGM(TexEnvi, GL_TEXTURE_ENV, GL_TEXTURE_ENV_MODE, GL_MODULATE);
        CGM(TexImage2D, GL_TEXTURE_2D, 0, GL_RGBA8, size, size, 0, GL_RGB, GL_FLOAT, gradient.data());
        CGM(TexSubImage2D, GL_TEXTURE_2D, 0, 12, 12, 8, 8, GL_RGBA, GL_UNSIGNED_INT_8_8_8_8, square.data());
    }
    ~Matrices() override {
        try {
            CGM(DeleteTextures, 1, textures_.data());
        } catch (...) {
            // A destructor lets nothing out; the name goes with the context.
        }
    }

    void draw() override {
        CGM(ClearColor, 0.08f, 0.08f, 0.12f, 1.0f);
        CGM(Clear, GL_COLOR_BUFFER_BIT);
        CGM(Enable, GL_TEXTURE_2D);
        for (int i = 0; i < 12; ++i) {
            const float share = static_cast<float>(i) / 12;
            CGM(LoadIdentity);
            CGM(MultMatrixf, turned(30.0f * static_cast<float>(i), 1.0f).data());
            CGM(Translatef, 0.7f, 0.0f, 0.0f);
            CGM(MultMatrixd, turned(-50.0 * i, 0.18).data());
            CGM(Color4f, 1.0f, 1.0f - share, 0.4f + 0.6f * share, 1.0f);
            drawQuad();
        }
        CGM(LoadIdentity);
        CGM(Scaled, 0.375, 0.375, 1.0);
        CGM(Color3f, 1.0f, 1.0f, 1.0f);
        drawQuad();
        CGM(Disable, GL_TEXTURE_2D);
        CGM(Finish);
    }

private:
    static void drawQuad() {
        constexpr float corners[4][2] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
        CGM(Begin, GL_QUADS);
        for (const auto& corner : corners) {
            const std::array texel = {0.5f + 0.5f * corner[0], 0.5f + 0.5f * corner[1]};
            CGM(MultiTexCoord2fv, GL_TEXTURE0, texel.data());
            CGM(Vertex2fv, corner);
        }
        CGM(End);
    }

    // A recording of the deletion reads twice the array.
    std::array<unsigned int, 2> textures_{};
};

} // namespace

std::unique_ptr<Scene> makeMatrices(int width, int height) {
    return std::make_unique<Matrices>(width, height);
}
