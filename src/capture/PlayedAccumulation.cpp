#include "capture/PlayedAccumulation.h"

#include "capture/CapturedContext.h"
#include "capture/PixelState.h"
#include "platform/Platform.h"

#include <algorithm>
#include <cmath>

namespace ZLT::Capture {

namespace {

constexpr float one = 32767;

template <class Function>
Function functionNamed(const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(wglGetProcAddress(name)));
}

// Nothing is done to pixels that are drawn, but for the mask of the colors.
class PlainFragments {
public:
    explicit PlainFragments(const CapturedContext& context) {
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        for (const unsigned int name : {GL_ALPHA_TEST, GL_BLEND, GL_COLOR_LOGIC_OP, GL_COLOR_SUM,
                                        GL_DEPTH_TEST, GL_DITHER, GL_FOG, GL_INDEX_LOGIC_OP, GL_STENCIL_TEST})
            glDisable(name);
        if (context.has("GL_ARB_vertex_program"))
            glDisable(GL_VERTEX_PROGRAM_ARB);
        if (context.has("GL_ARB_fragment_program"))
            glDisable(GL_FRAGMENT_PROGRAM_ARB);
        if (context.has("GL_ATI_fragment_shader"))
            glDisable(GL_FRAGMENT_SHADER_ATI);
        disableTextures(context);
        if (context.isVersion(2, 0)) {
            program_ = static_cast<unsigned int>(context.integer(GL_CURRENT_PROGRAM));
            useProgram_ = functionNamed<PFNGLUSEPROGRAMPROC>("glUseProgram");
            if (program_ != 0 && useProgram_)
                useProgram_(0);
        }
        glPixelZoom(1, 1);
    }
    ~PlainFragments() {
        if (program_ != 0 && useProgram_)
            useProgram_(program_);
        glPopAttrib();
    }
    PlainFragments(const PlainFragments&) = delete;
    PlainFragments& operator=(const PlainFragments&) = delete;

private:
    static void disableTextures(const CapturedContext& context) {
        const auto activate = functionNamed<PFNGLACTIVETEXTUREPROC>("glActiveTexture");
        for (int unit = 0; unit < (activate ? context.textureUnits : 1); ++unit) {
            if (activate)
                activate(GL_TEXTURE0 + static_cast<unsigned int>(unit));
            for (const unsigned int name : {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP})
                glDisable(name);
            if (context.has("GL_ARB_texture_rectangle"))
                glDisable(GL_TEXTURE_RECTANGLE_ARB);
        }
    }

    unsigned int program_ = 0;
    PFNGLUSEPROGRAMPROC useProgram_ = nullptr;
};

float linearOf(float value) {
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}

float srgbOf(float value) {
    return value < 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f;
}

std::int16_t cut(float value) { return static_cast<std::int16_t>(static_cast<int>(value)); }

} // namespace

PlayedAccumulation::Area PlayedAccumulation::areaOf(int width, int height) {
    if (width != width_ || height != height_) {
        width_ = width;
        height_ = height;
        values_.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    }
    GLint box[4] = {0, 0, width, height};
    if (glIsEnabled(GL_SCISSOR_TEST))
        glGetIntegerv(GL_SCISSOR_BOX, box);
    Area area = {std::clamp(box[0], 0, width), std::clamp(box[1], 0, height), 0, 0};
    area.width = std::clamp(box[0] + box[2], area.x, width) - area.x;
    area.height = std::clamp(box[1] + box[3], area.y, height) - area.y;
    return area;
}

namespace {

// Components in a row of an area.
template <class Area>
std::ptrdiff_t rowOf(const Area& area) {
    return 4 * static_cast<std::ptrdiff_t>(area.width);
}

} // namespace

void PlayedAccumulation::read(const CapturedContext& context, const Area& area, float scale, bool adds) {
    std::vector<float> pixels(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) *
                              4);
    {
        const PlainTransfer transfer(context);
        const PlainPacking packing(context);
        glReadPixels(area.x, area.y, area.width, area.height, GL_RGBA, GL_FLOAT, pixels.data());
    }
    if (isSrgb_)
        for (std::size_t i = 0; i < pixels.size(); ++i)
            pixels[i] = i % 4 == 3 ? pixels[i] : linearOf(pixels[i]);
    const float* from = pixels.data();
    for (int y = area.y; y < area.y + area.height; ++y)
        for (std::int16_t *to = at(area.x, y), *end = to + rowOf(area); to != end; ++to, ++from)
            *to = static_cast<std::int16_t>((adds ? *to : 0) + cut(*from * scale));
}

void PlayedAccumulation::write(const CapturedContext& context, const Area& area, float scale) {
    const auto windowPos = functionNamed<PFNGLWINDOWPOS2IPROC>("glWindowPos2i");
    if (!windowPos)
        return;
    std::vector<unsigned char> pixels;
    pixels.reserve(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) * 4);
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int i = 0; i < 4 * area.width; ++i) {
            const float value = std::clamp(static_cast<float>(at(area.x, y)[i]) * scale, 0.0f, 1.0f);
            pixels.push_back(static_cast<unsigned char>(
                std::lrint((isSrgb_ && i % 4 != 3 ? srgbOf(value) : value) * 255)));
        }
    const PlainFragments fragments(context);
    const PlainTransfer transfer(context);
    const PlainUnpacking unpacking(context);
    windowPos(area.x, area.y);
    glDrawPixels(area.width, area.height, GL_RGBA, GL_UNSIGNED_BYTE, pixels.data());
}

void PlayedAccumulation::accumulate(const CapturedContext& context, int width, int height,
                                    unsigned int operation, float value) {
    if (!context.mayAsk() || context.isCompiling)
        return;
    const Area area = areaOf(width, height);
    switch (operation) {
    case GL_ACCUM:
    case GL_LOAD:
        return read(context, area, value * one, operation == GL_ACCUM);
    case GL_RETURN:
        return write(context, area, value / one);
    case GL_ADD:
    case GL_MULT:
        for (int y = area.y; y < area.y + area.height; ++y)
            for (std::int16_t *to = at(area.x, y), *end = to + rowOf(area); to != end; ++to)
                *to = operation == GL_ADD ? static_cast<std::int16_t>(*to + cut(value * one))
                                          : cut(static_cast<float>(*to) * value);
        return;
    default:
        return;
    }
}

void PlayedAccumulation::clear(const CapturedContext& context, int width, int height) {
    if (!context.mayAsk() || context.isCompiling)
        return;
    const Area area = areaOf(width, height);
    GLfloat color[4] = {};
    glGetFloatv(GL_ACCUM_CLEAR_VALUE, color);
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int x = area.x; x < area.x + area.width; ++x)
            for (int component = 0; component < 4; ++component)
                at(x, y)[component] = cut(color[component] * one);
}

} // namespace ZLT::Capture
