// What stands for a window off screen may lack a back buffer and an accumulation buffer.
#include "system.h"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#undef glDrawBuffer
#undef glReadBuffer
#undef glClear
#undef glAccum
extern "C" {
GLAPI void APIENTRY glDrawBuffer(GLenum buffer);
GLAPI void APIENTRY glReadBuffer(GLenum buffer);
GLAPI void APIENTRY glClear(GLbitfield mask);
GLAPI void APIENTRY glAccum(GLenum operation, GLfloat value);
GLAPI void APIENTRY glGetIntegerv(GLenum name, GLint* values);
GLAPI void APIENTRY glGetFloatv(GLenum name, GLfloat* values);
GLAPI GLboolean APIENTRY glIsEnabled(GLenum name);
GLAPI void APIENTRY glPushAttrib(GLbitfield mask);
GLAPI void APIENTRY glPopAttrib(void);
GLAPI void APIENTRY glPushClientAttrib(GLbitfield mask);
GLAPI void APIENTRY glPopClientAttrib(void);
GLAPI void APIENTRY glPixelStorei(GLenum name, GLint value);
GLAPI void APIENTRY glPixelTransferf(GLenum name, GLfloat value);
GLAPI void APIENTRY glPixelTransferi(GLenum name, GLint value);
GLAPI void APIENTRY glPixelZoom(GLfloat x, GLfloat y);
GLAPI void APIENTRY glDisable(GLenum name);
GLAPI void APIENTRY glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                                 void* pixels);
GLAPI void APIENTRY glDrawPixels(GLsizei width, GLsizei height, GLenum format, GLenum type,
                                 const void* pixels);
}

namespace {

constexpr GLenum front_left = 0x0400, front_right = 0x0401, back_left = 0x0402, back_right = 0x0403,
                 front = 0x0404, back = 0x0405;

GLenum buffer_now(GLenum buffer) {
    if (!current_context || !current_context->has_one_buffer || !current_surface->format.is_double_buffered_)
        return buffer;
    switch (buffer) {
    case back:
        return front;
    case back_left:
        return front_left;
    case back_right:
        return front_right;
    default:
        return buffer;
    }
}

// The one that the window has not: 16 bits for a component, as software renderers have.
struct Accumulation {
    int width = 0, height = 0;
    std::vector<std::int16_t> values;
};
std::unordered_map<const Surface*, Accumulation> accumulations;

constexpr float one = 32767;
std::int16_t cut(float value) { return static_cast<std::int16_t>(static_cast<int>(value)); }
float linear_of(float value) {
    return value <= 0.04045f ? value / 12.92f : std::pow((value + 0.055f) / 1.055f, 2.4f);
}
float srgb_of(float value) {
    return value < 0.0031308f ? value * 12.92f : 1.055f * std::pow(value, 1 / 2.4f) - 0.055f;
}

struct Area {
    int x, y, width, height;
};

Area area_of(Accumulation& buffer) {
    const int width = current_surface->format.width_, height = current_surface->format.height_;
    if (width != buffer.width || height != buffer.height) {
        buffer.width = width;
        buffer.height = height;
        buffer.values.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4, 0);
    }
    constexpr GLenum scissor_test = 0x0C11, scissor_box = 0x0C10;
    GLint box[4] = {0, 0, width, height};
    if (glIsEnabled(scissor_test))
        glGetIntegerv(scissor_box, box);
    const int x = std::clamp(box[0], 0, width), y = std::clamp(box[1], 0, height);
    return {x, y, std::clamp(box[0] + box[2], x, width) - x, std::clamp(box[1] + box[3], y, height) - y};
}

// Pixels go and come as they are, while this lives.
class PlainPixels {
public:
    PlainPixels() {
        glPushAttrib(0x000FFFFF);       // GL_ALL_ATTRIB_BITS
        glPushClientAttrib(0x00000001); // GL_CLIENT_PIXEL_STORE_BIT
        for (GLenum i = 0; i < 6; ++i) {
            glPixelStorei(0x0D00 + i, i == 5 ? 1 : 0); // GL_PACK_SWAP_BYTES ... GL_PACK_ALIGNMENT
            glPixelStorei(0x0CF0 + i, i == 5 ? 1 : 0); // GL_UNPACK_SWAP_BYTES ... GL_UNPACK_ALIGNMENT
        }
        for (GLenum i = 0; i < 4; ++i) {
            glPixelTransferf(0x0D14 + 2 * i, 1); // GL_RED_SCALE ...
            glPixelTransferf(0x0D15 + 2 * i, 0); // GL_RED_BIAS ...
        }
        glPixelTransferi(0x0D10, 0); // GL_MAP_COLOR
        for (const GLenum name : {0x0BC0, 0x0BE2, 0x0BF2, 0x8458, 0x0B71, 0x0BD0, 0x0B60, 0x0BF1, 0x0B90})
            glDisable(
                name); // alpha test, blending, logic op, color sum, depth test, dither, fog, stencil test
        for (const GLenum name : {0x8620, 0x8804}) // programs in assembly
            if (current_context->has(name == 0x8620 ? "GL_ARB_vertex_program" : "GL_ARB_fragment_program"))
                glDisable(name);
        disable_textures();
        if (current_context->is_version(2, 0)) {
            GLint program = 0;
            glGetIntegerv(0x8B8D, &program); // GL_CURRENT_PROGRAM
            program_ = static_cast<GLuint>(program);
            use_ = function_named<Use>("glUseProgram");
            if (program_ != 0)
                use_(0);
        }
        glPixelZoom(1, 1);
    }
    ~PlainPixels() {
        if (program_ != 0)
            use_(program_);
        glPopClientAttrib();
        glPopAttrib();
    }
    PlainPixels(const PlainPixels&) = delete;
    PlainPixels& operator=(const PlainPixels&) = delete;

private:
    static void disable_textures() {
        const auto activate = function_named<void(APIENTRY*)(GLenum)>("glActiveTexture");
        GLint units = 1;
        if (current_context->is_version(1, 3))
            glGetIntegerv(0x84E2, &units); // GL_MAX_TEXTURE_UNITS
        for (GLint unit = 0; unit < units; ++unit) {
            if (units > 1)
                activate(0x84C0 + static_cast<GLenum>(unit)); // GL_TEXTURE0
            for (const GLenum name : {0x0DE0, 0x0DE1, 0x806F, 0x8513})
                glDisable(name);
            if (current_context->has("GL_ARB_texture_rectangle"))
                glDisable(0x84F5);
        }
    }

    using Use = void(APIENTRY*)(GLuint);
    Use use_ = nullptr;
    GLuint program_ = 0;
};

std::int16_t* at(Accumulation& buffer, int x, int y) {
    return &buffer.values[4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(buffer.width) +
                               static_cast<std::size_t>(x))];
}

// Mesa accumulates linear values of windows that can be sRGB, whether they are or not.
bool is_linear() { return current_surface->format.is_srgb_; }

void load(Accumulation& buffer, const Area& area, float scale, bool adds) {
    std::vector<float> pixels(static_cast<std::size_t>(area.width) * static_cast<std::size_t>(area.height) *
                              4);
    {
        const PlainPixels plain;
        glReadPixels(area.x, area.y, area.width, area.height, 0x1908, 0x1406,
                     pixels.data()); // GL_RGBA, GL_FLOAT
    }
    const float* from = pixels.data();
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int i = 0; i < 4 * area.width; ++i, ++from) {
            std::int16_t& to = at(buffer, area.x, y)[i];
            to = static_cast<std::int16_t>(
                (adds ? to : 0) + cut((is_linear() && i % 4 != 3 ? linear_of(*from) : *from) * scale));
        }
}

void give_back(Accumulation& buffer, const Area& area, float scale) {
    const auto window_pos = function_named<void(APIENTRY*)(GLint, GLint)>("glWindowPos2i");
    if (!window_pos)
        return;
    std::vector<unsigned char> pixels;
    for (int y = area.y; y < area.y + area.height; ++y)
        for (int i = 0; i < 4 * area.width; ++i) {
            const float value = std::clamp(static_cast<float>(at(buffer, area.x, y)[i]) * scale, 0.0f, 1.0f);
            pixels.push_back(static_cast<unsigned char>(
                std::lrint((is_linear() && i % 4 != 3 ? srgb_of(value) : value) * 255)));
        }
    const PlainPixels plain;
    window_pos(area.x, area.y);
    glDrawPixels(area.width, area.height, 0x1908, 0x1401, pixels.data()); // GL_RGBA, GL_UNSIGNED_BYTE
}

bool is_computed() {
    constexpr GLenum list_index = 0x0B33;
    GLint open = 0;
    if (!current_context || current_context->has_accumulation || current_surface->format.accumulation_ == 0)
        return false;
    glGetIntegerv(list_index, &open);
    return open == 0;
}

} // namespace

void forget_buffers() { accumulations.clear(); }

void draw_buffer(GLenum buffer) { glDrawBuffer(buffer_now(buffer)); }

void read_buffer(GLenum buffer) { glReadBuffer(buffer_now(buffer)); }

void draw_buffers(GLsizei count, const GLenum* buffers) {
    using Draw = void(APIENTRY*)(GLsizei, const GLenum*);
    static Draw draw = nullptr;
    if (!draw)
        draw = function_named<Draw>("glDrawBuffers");
    if (!draw)
        draw = function_named<Draw>("glDrawBuffersARB");
    if (!draw)
        return;
    std::vector<GLenum> now;
    for (GLsizei i = 0; buffers && i < count; ++i)
        now.push_back(buffer_now(buffers[i]));
    draw(count, buffers ? now.data() : nullptr);
}

void clear(GLbitfield mask) {
    constexpr GLbitfield accumulation = 0x0200; // GL_ACCUM_BUFFER_BIT
    if ((mask & accumulation) && is_computed()) {
        Accumulation& buffer = accumulations[current_surface];
        const Area area = area_of(buffer);
        GLfloat color[4] = {};
        glGetFloatv(0x0B80, color); // GL_ACCUM_CLEAR_VALUE
        for (int y = area.y; y < area.y + area.height; ++y)
            for (int i = 0; i < 4 * area.width; ++i)
                at(buffer, area.x, y)[i] = cut(color[i % 4] * one);
        mask &= ~accumulation;
    }
    glClear(mask);
}

void accumulate(GLenum operation, GLfloat value) {
    if (!is_computed())
        return glAccum(operation, value);
    Accumulation& buffer = accumulations[current_surface];
    const Area area = area_of(buffer);
    switch (operation) {
    case 0x0100: // GL_ACCUM
    case 0x0101: // GL_LOAD
        return load(buffer, area, value * one, operation == 0x0100);
    case 0x0102: // GL_RETURN
        return give_back(buffer, area, value / one);
    case 0x0103: // GL_MULT
    case 0x0104: // GL_ADD
        for (int y = area.y; y < area.y + area.height; ++y)
            for (std::int16_t *to = at(buffer, area.x, y),
                              *end = to + 4 * static_cast<std::ptrdiff_t>(area.width);
                 to != end; ++to)
                *to = operation == 0x0104 ? static_cast<std::int16_t>(*to + cut(value * one))
                                          : cut(static_cast<float>(*to) * value);
        return;
    default:
        return;
    }
}
