#pragma once

#include "Export.h"
#include "ogl/Object.h"

namespace ZLT::OGL {

/// An image to draw to that is not a texture: a colour, depth or stencil buffer for a Framebuffer.
class ZLT_OGL_API Renderbuffer : public Object {
public:
    /// Makes it with undefined contents; the renderbuffer that was bound is bound again afterwards.
    /// @param format        the GL internal format, such as `GL_RGBA8` or `GL_DEPTH_COMPONENT24`. It
    ///                      decides where the buffer is attached: `GL_DEPTH_COMPONENT`, unsized or with 16,
    ///                      24 or 32 bits, and `GL_DEPTH_STENCIL` as depth, stencil indices as stencil,
    ///                      every other one as a colour, also `GL_DEPTH24_STENCIL8` and floating depths.
    /// @param width,height  in pixels
    /// @throws InternalException "ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT)"
    ///         without it, "Can't create renderbuffer of width 9000, a max width of 8192 is supported" (of
    ///         the height: "width 9000, a max height of"), "n_ObjectID != 0" when the driver gives no name
    Renderbuffer(unsigned int format, int width, int height);
    /// Deletes the GL renderbuffer.
    ~Renderbuffer() noexcept(false) override;

    /// Whether the current context has renderbuffers.
    static bool isSupported();
    /// The largest width and height, in pixels; each call queries the driver.
    static int maxSize();

    void bind();
    /// Binds none.
    /// @throws InternalException "Framebuffer object must be bound before calling unbind()"
    void unbind();

    /// The GL internal format that was asked for.
    unsigned int format() const { return format_; }
    /// In pixels.
    int width() const { return width_; }
    int height() const { return height_; }

protected:
    friend class Framebuffer;

    /// Where it is attached: `GL_COLOR_ATTACHMENT0`, `GL_DEPTH_ATTACHMENT` or `GL_STENCIL_ATTACHMENT`.
    unsigned int attachment() const { return attachment_; }

private:
    unsigned int format_;
    unsigned int attachment_ = 0;
    int width_;
    int height_;
};

} // namespace ZLT::OGL
