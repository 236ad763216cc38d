#include "Png.h"

#if defined(_WIN32)
#include <windows.h>
#endif

#define GL_GLEXT_PROTOTYPES
#include <GL/gl.h>
#include <GL/glext.h>
#include <png.h>

#include <cstddef>
#include <stdexcept>

namespace {

// A frame buffer of several samples, made one for reading: as it is, any of its samples may come back.
class Resolved {
public:
    Resolved(int width, int height) {
        GLint samples = 0;
        glGetIntegerv(GL_SAMPLES, &samples);
        if (samples == 0)
            return;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
        glGetIntegerv(GL_RENDERBUFFER_BINDING, &bound_);
        glGenFramebuffers(1, &framebuffer_);
        glGenRenderbuffers(1, &colors_);
        glBindRenderbuffer(GL_RENDERBUFFER, colors_);
        glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_);
        glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colors_);
        glPushAttrib(GL_SCISSOR_BIT);
        glDisable(GL_SCISSOR_TEST);
        glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glPopAttrib();
        glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    }
    ~Resolved() {
        if (!framebuffer_)
            return;
        glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
        glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
        glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(bound_));
        glDeleteFramebuffers(1, &framebuffer_);
        glDeleteRenderbuffers(1, &colors_);
    }
    Resolved(const Resolved&) = delete;
    Resolved& operator=(const Resolved&) = delete;

private:
    GLint draw_ = 0, read_ = 0, bound_ = 0; // what was bound before
    GLuint framebuffer_ = 0, colors_ = 0;
};

} // namespace

Picture readFrame(int width, int height) {
    const Resolved resolved(width, height);
    Picture picture = {width, height,
                       std::vector<std::uint8_t>(std::size_t(width) * std::size_t(height) * 3)};
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    // Whatever the program left set would put the pixels elsewhere.
    GLint packBuffer = 0;
    glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    for (const GLenum name : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_PACK_SWAP_BYTES})
        glPixelStorei(name, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, picture.pixels.data());
    glBindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
    glPopClientAttrib();
    return picture;
}

void writePng(const std::string& path, const Picture& picture) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    image.width = static_cast<png_uint_32>(picture.width);
    image.height = static_cast<png_uint_32>(picture.height);
    image.format = PNG_FORMAT_RGB;
    const png_int_32 bottomUp = -3 * picture.width;
    if (!png_image_write_to_file(&image, path.c_str(), 0, picture.pixels.data(), bottomUp, nullptr))
        throw std::runtime_error("cannot write " + path + ": " + image.message);
}

Picture readPng(const std::string& path) {
    png_image image = {};
    image.version = PNG_IMAGE_VERSION;
    if (!png_image_begin_read_from_file(&image, path.c_str()))
        throw std::runtime_error("cannot read " + path + ": " + image.message);
    image.format = PNG_FORMAT_RGB;
    Picture picture = {static_cast<int>(image.width), static_cast<int>(image.height),
                       std::vector<std::uint8_t>(PNG_IMAGE_SIZE(image))};
    const png_int_32 bottomUp = -3 * picture.width;
    if (!png_image_finish_read(&image, nullptr, picture.pixels.data(), bottomUp, nullptr))
        throw std::runtime_error("cannot read " + path + ": " + image.message);
    return picture;
}
