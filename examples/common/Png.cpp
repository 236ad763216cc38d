#include "Png.h"

#include "extensionator/ExtensionManager.h"

#include <GL/gl.h>
#include <GL/glext.h>

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_FAILURE_USERMSG
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

#include <cstddef>
#include <fstream>
#include <memory>
#include <stdexcept>

namespace {

// Past GL 1.1 the functions come from the driver, null where it has none.
const ZLT::OGL::FunctionTable& table() { return ZLT::OGL::ExtensionManager::Instance()->table(); }

// A frame buffer of several samples, made one for reading: as it is, any of its samples may come back.
class Resolved {
public:
    Resolved(int width, int height) {
        if (!gl_.glBlitFramebuffer)
            return;
        GLint samples = 0;
        glGetIntegerv(GL_SAMPLES, &samples);
        if (samples == 0)
            return;
        glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
        glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
        glGetIntegerv(GL_RENDERBUFFER_BINDING, &bound_);
        gl_.glGenFramebuffers(1, &framebuffer_);
        gl_.glGenRenderbuffers(1, &colors_);
        gl_.glBindRenderbuffer(GL_RENDERBUFFER, colors_);
        gl_.glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
        gl_.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_);
        gl_.glFramebufferRenderbuffer(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colors_);
        glPushAttrib(GL_SCISSOR_BIT);
        glDisable(GL_SCISSOR_TEST);
        gl_.glBlitFramebuffer(0, 0, width, height, 0, 0, width, height, GL_COLOR_BUFFER_BIT, GL_NEAREST);
        glPopAttrib();
        gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_);
    }
    ~Resolved() {
        if (!framebuffer_)
            return;
        gl_.glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
        gl_.glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
        gl_.glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(bound_));
        gl_.glDeleteFramebuffers(1, &framebuffer_);
        gl_.glDeleteRenderbuffers(1, &colors_);
    }
    Resolved(const Resolved&) = delete;
    Resolved& operator=(const Resolved&) = delete;

private:
    const ZLT::OGL::FunctionTable& gl_ = table();
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
    const auto bindBuffer = table().glBindBuffer;
    GLint packBuffer = 0;
    if (bindBuffer) {
        glGetIntegerv(GL_PIXEL_PACK_BUFFER_BINDING, &packBuffer);
        bindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    }
    for (const GLenum name : {GL_PACK_ROW_LENGTH, GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS, GL_PACK_SWAP_BYTES})
        glPixelStorei(name, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    glReadPixels(0, 0, width, height, GL_RGB, GL_UNSIGNED_BYTE, picture.pixels.data());
    if (packBuffer)
        bindBuffer(GL_PIXEL_PACK_BUFFER, static_cast<GLuint>(packBuffer));
    glPopClientAttrib();
    return picture;
}

void writePng(const std::string& path, const Picture& picture) {
    std::ofstream file(path, std::ios::binary);
    const auto write = [](void* to, void* bytes, int size) {
        static_cast<std::ofstream*>(to)->write(static_cast<const char*>(bytes), size);
    };
    stbi_flip_vertically_on_write(1);
    const int done =
        stbi_write_png_to_func(write, &file, picture.width, picture.height, 3, picture.pixels.data(), 0);
    if (!done || !file.flush())
        throw std::runtime_error("cannot write " + path);
}

Picture readPng(const std::string& path) {
    stbi_set_flip_vertically_on_load(1);
    Picture picture;
    const std::unique_ptr<stbi_uc, decltype(&stbi_image_free)> pixels(
        stbi_load(path.c_str(), &picture.width, &picture.height, nullptr, 3), stbi_image_free);
    if (!pixels)
        throw std::runtime_error("cannot read " + path + ": " + stbi_failure_reason());
    picture.pixels.assign(pixels.get(), pixels.get() + std::size_t(3) * std::size_t(picture.width) *
                                                           std::size_t(picture.height));
    return picture;
}
