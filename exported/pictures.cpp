// Reads what a window shows, whatever the state of GL is.
#include "system.h"

#include <array>
#include <cstdio>

extern "C" {
GLAPI void APIENTRY glGetIntegerv(GLenum name, GLint* values);
GLAPI const GLubyte* APIENTRY glGetString(GLenum name);
GLAPI void APIENTRY glPushAttrib(GLbitfield mask);
GLAPI void APIENTRY glPopAttrib(void);
GLAPI void APIENTRY glPixelTransferf(GLenum name, GLfloat value);
GLAPI void APIENTRY glPixelTransferi(GLenum name, GLint value);
GLAPI void APIENTRY glPixelStorei(GLenum name, GLint value);
GLAPI void APIENTRY glDisable(GLenum name);
GLAPI void APIENTRY glReadPixels(GLint x, GLint y, GLsizei width, GLsizei height, GLenum format, GLenum type,
                                 void* pixels);
}
#undef glReadBuffer
extern "C" GLAPI void APIENTRY glReadBuffer(GLenum buffer);

namespace {

GLint integer(GLenum name) {
    GLint values[16] = {};
    glGetIntegerv(name, values);
    return values[0];
}

using Bind = void(APIENTRY*)(GLenum, GLuint);

// Another object gives way while this lives.
class Unbound {
public:
    Unbound(const char* function, GLenum target, GLenum binding) : target_(target) {
        bind_ = function_named<Bind>(function);
        name_ = bind_ ? static_cast<GLuint>(integer(binding)) : 0;
        if (name_ != 0)
            bind_(target, 0);
    }
    ~Unbound() {
        if (name_ != 0)
            bind_(target_, name_);
    }
    Unbound(const Unbound&) = delete;
    Unbound& operator=(const Unbound&) = delete;

private:
    Bind bind_;
    GLenum target_;
    GLuint name_;
};

// Pixels come as they are.
class PlainTransfer {
public:
    explicit PlainTransfer(const Context& context) : is_needed_(!context.is_core) {
        if (!is_needed_)
            return;
        glPushAttrib(0x2020); // GL_PIXEL_MODE_BIT, GL_ENABLE_BIT
        constexpr GLenum red_scale = 0x0D14, after_matrix_red_scale = 0x80B4;
        scale(red_scale, 2);
        glPixelTransferi(0x0D10, 0); // GL_MAP_COLOR
        if (!context.has("GL_ARB_imaging"))
            return;
        for (const GLenum name : {0x80D0, 0x80D1, 0x80D2, 0x8010, 0x8011, 0x8012, 0x8024, 0x802E})
            glDisable(name); // color tables, convolutions, histogram, minmax
        scale(after_matrix_red_scale, 1);
    }
    ~PlainTransfer() {
        if (is_needed_)
            glPopAttrib();
    }
    PlainTransfer(const PlainTransfer&) = delete;
    PlainTransfer& operator=(const PlainTransfer&) = delete;

private:
    // Scales and biases are one behind the other (GL_RED_SCALE, GL_RED_BIAS, GL_GREEN_SCALE, ...), or four
    // and four.
    static void scale(GLenum first, GLenum step) {
        const GLenum bias = first + (step == 2 ? 1 : 4);
        for (GLenum i = 0; i < 4; ++i) {
            glPixelTransferf(first + i * step, 1);
            glPixelTransferf(bias + i * step, 0);
        }
    }
    bool is_needed_;
};

// Rows without gaps.
class PlainPacking {
public:
    PlainPacking() {
        for (std::size_t i = 0; i < names.size(); ++i) {
            before_[i] = integer(names[i]);
            glPixelStorei(names[i], names[i] == alignment ? 1 : 0);
        }
    }
    ~PlainPacking() {
        for (std::size_t i = 0; i < names.size(); ++i)
            glPixelStorei(names[i], before_[i]);
    }
    PlainPacking(const PlainPacking&) = delete;
    PlainPacking& operator=(const PlainPacking&) = delete;

private:
    static constexpr GLenum alignment = 0x0D05; // GL_PACK_ALIGNMENT
    static constexpr std::array<GLenum, 6> names = {0x0D00, 0x0D01, 0x0D02, 0x0D03, 0x0D04, alignment};
    std::array<GLint, 6> before_ = {};
};

class WindowBuffer {
public:
    WindowBuffer() : before_(static_cast<GLenum>(integer(0x0C02))) { // GL_READ_BUFFER
        glReadBuffer(integer(0x0C32) != 0 ? 0x0405 : 0x0404);        // GL_DOUBLEBUFFER, GL_BACK, GL_FRONT
    }
    ~WindowBuffer() { glReadBuffer(before_); }
    WindowBuffer(const WindowBuffer&) = delete;
    WindowBuffer& operator=(const WindowBuffer&) = delete;

private:
    GLenum before_;
};

} // namespace

void Context::learn() {
    is_learnt = true;
    const auto* const text = reinterpret_cast<const char*>(glGetString(0x1F02)); // GL_VERSION
    int major = 1, minor = 1;
    if (text && std::sscanf(text, "%d.%d", &major, &minor) == 2)
        version = 10 * major + minor;
    is_core = is_version(3, 2) && (integer(0x9126) & 1) != 0; // GL_CONTEXT_PROFILE_MASK
    if (!is_core)
        if (const auto* const names = reinterpret_cast<const char*>(glGetString(0x1F03))) // GL_EXTENSIONS
            extensions = ' ' + std::string(names) + ' ';
    has_accumulation = is_core || integer(0x0D58) > 0; // GL_ACCUM_RED_BITS
    has_one_buffer = integer(0x0C32) == 0;             // GL_DOUBLEBUFFER
}

bool Context::has(const char* extension) const {
    return extensions.find(' ' + std::string(extension) + ' ') != std::string::npos;
}

std::vector<unsigned char> read_picture(int width, int height) {
    const Context& now = *current_context;
    std::vector<unsigned char> pixels;
    if (width <= 0 || height <= 0 || (!now.is_core && integer(0x0BB0) >= integer(0x0D35)))
        return pixels; // GL_ATTRIB_STACK_DEPTH, GL_MAX_ATTRIB_STACK_DEPTH
    pixels.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4);
    const PlainTransfer transfer(now);
    const bool is_new = now.is_version(3, 0) || now.has("GL_ARB_framebuffer_object");
    std::unique_ptr<Unbound> framebuffer, buffer;
    if (is_new || now.has("GL_EXT_framebuffer_blit")) // GL_READ_FRAMEBUFFER
        framebuffer =
            std::make_unique<Unbound>(is_new ? "glBindFramebuffer" : "glBindFramebufferEXT", 0x8CA8, 0x8CAA);
    else if (now.has("GL_EXT_framebuffer_object"))
        framebuffer = std::make_unique<Unbound>("glBindFramebufferEXT", 0x8D40, 0x8CA6);
    if (now.is_version(2, 1) || now.has("GL_ARB_pixel_buffer_object")) // GL_PIXEL_PACK_BUFFER
        buffer = std::make_unique<Unbound>("glBindBuffer", 0x88EB, 0x88ED);
    const WindowBuffer window;
    const PlainPacking packing;
    glReadPixels(0, 0, width, height, 0x1908, 0x1401, pixels.data()); // GL_RGBA, GL_UNSIGNED_BYTE
    // Whether a window keeps an alpha is nothing to see.
    for (std::size_t i = 3; i < pixels.size(); i += 4)
        pixels[i] = 255;
    return pixels;
}
