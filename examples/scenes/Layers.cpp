#include "Scene.h"

#include "extensionator/OpenGLInterceptor.h"

#include <GL/gl.h>

#include <cmath>
#include <numbers>

namespace {

class Layers : public Scene {
public:
    Layers(int width, int height) : width_(width), height_(height), disc_(CGM(GenLists, 1)) {
        constexpr int sides = 48;
        CGM(Viewport, 0, 0, width, height);
        CGM(MatrixMode, GL_PROJECTION);
        CGM(LoadIdentity);
        CGM(Ortho, 0.0, width, 0.0, height, -20.0, 20.0);
        CGM(MatrixMode, GL_MODELVIEW);
        CGM(LoadIdentity);
        CGM(NewList, disc_, GL_COMPILE);
        CGM(Begin, GL_TRIANGLE_FAN);
        CGM(Vertex2i, 0, 0);
        for (int i = 0; i <= sides; ++i) {
            const float angle = 2 * std::numbers::pi_v<float> * static_cast<float>(i) / sides;
            CGM(Vertex2f, std::cos(angle), std::sin(angle));
        }
        CGM(End);
        CGM(EndList);
    }
    ~Layers() override {
        try {
            CGM(DeleteLists, disc_, 1);
        } catch (...) {
            // A destructor lets nothing out; the list goes with the context.
        }
    }

    void draw() override {
        CGM(Disable, GL_SCISSOR_TEST);
        CGM(ClearColor, 0.0f, 0.0f, 0.0f, 1.0f);
        CGM(Clear, GL_COLOR_BUFFER_BIT);
        CGM(Enable, GL_BLEND);
        CGM(BlendFunc, GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
        CGM(Enable, GL_FOG);
        CGM(Fogi, GL_FOG_MODE, GL_LINEAR);
        CGM(Fogf, GL_FOG_START, 0.0f);
        CGM(Fogf, GL_FOG_END, 20.0f);
        CGM(Enable, GL_SCISSOR_TEST);
        for (int band = 0; band < 3; ++band) {
            CGM(Scissor, 16, (3 * band + 1) * height_ / 10, width_ - 32, height_ / 4);
            drawDiscs(band);
        }
        CGM(Finish);
    }

private:
    void drawDiscs(int band) const {
        constexpr int count = 9;
        for (int i = 0; i < count; ++i) {
            const float share = static_cast<float>(i) / (count - 1);
            const int middle = (6 * band + 5) * height_ / 20;
            CGM(PushMatrix);
            CGM(Translatef, 40.0f + share * static_cast<float>(width_ - 80), static_cast<float>(middle),
                -16.0f * share);
            CGM(Scalef, static_cast<float>(height_) / 6, static_cast<float>(height_) / 6, 1.0f);
            CGM(Color4f, band == 0 ? 1.0f : share, band == 1 ? 1.0f : 1.0f - share, band == 2 ? 1.0f : 0.25f,
                0.5f);
            CGM(CallList, disc_);
            CGM(PopMatrix);
        }
    }

    int width_;
    int height_;
    unsigned int disc_;
};

} // namespace

std::unique_ptr<Scene> makeLayers(int width, int height) { return std::make_unique<Layers>(width, height); }
