#pragma once

#include "Export.h"
#include "ogl/Object.h"

namespace ZLT::OGL {

class Renderbuffer;
class Texture2;
class Texture2DArray;

/// A framebuffer object (`GL_EXT_framebuffer_object`): textures and renderbuffers to draw to. Only GL
/// knows what is attached. The context that made it must be current for every method; GL reports a bad
/// attachment only through statusOkay().
class ZLT_OGL_API Framebuffer : public Object {
public:
    /// @throws InternalException "ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT)"
    ///         without it, "n_ObjectID != 0" when the driver gives no name
    Framebuffer();
    /// Deletes the GL framebuffer; if it is bound, GL binds the window's own.
    ~Framebuffer() noexcept(false) override;

    /// Whether the current context has framebuffer objects.
    static bool isSupported();
    /// How many colours can be attached; each call queries the driver.
    static unsigned int maxColorAttachments();

    void bind();
    /// Binds the window's own framebuffer.
    /// @throws InternalException "Framebuffer object must be bound before calling unbind()"
    void unbind();

    /// Whether it can be drawn to.
    /// @param status  receives GL's answer, such as `GL_FRAMEBUFFER_COMPLETE`; null: not wanted
    /// @throws InternalException "Framebuffer object must be bound before calling statusOkay()"
    bool statusOkay(unsigned int* status) const;

    /// @name Attach
    /// This framebuffer must be bound, and a texture must not.
    /// @param level       which level of the texture, from 0
    /// @param layer       which layer, from 0
    /// @param colorIndex  which colour, from 0
    /// @throws InternalException, in this order: "Enforce poTex != NULL" (poBuffer), "Texture cannot be
    ///         bound during attachment to framebuffer object", "Framebuffer Objects must be bound to
    ///         attach objects", "Invalid color buffer attachment only 8 attachments supported with 8
    ///         requested"
    /// @{
    void attach(Texture2* poTex, unsigned int level, unsigned int colorIndex);
    /// One layer of an array. Needs a driver that has `glFramebufferTextureLayer` by this name.
    /// @throws InternalException "Array Index too large" as the last check, or "The current context has no
    ///         glFramebufferTextureLayer"
    void attach(Texture2DArray* poTex, unsigned int layer, unsigned int level, unsigned int colorIndex);
    /// At the attachment point for the renderbuffer's format: a colour, depth, stencil, or depth and stencil.
    /// @param colorIndex  0 unless it is a colour
    /// @throws InternalException "Color buffer index is not supported with attachment:" and the point's
    ///         name as the last check
    void attach(Renderbuffer* poBuffer, unsigned int colorIndex);
    /// @}

    /// @name Detach
    /// This framebuffer must be bound; a texture may be.
    /// @throws InternalException, in this order: "Enforce poTex != NULL" (poBuffer), "Framebuffer Object
    ///         must be bound before detaching objects", then as attach() of the colour index
    /// @{
    void detach(Texture2* poTex, unsigned int colorIndex);
    /// A depth and stencil buffer stays attached as the stencil.
    void detach(Renderbuffer* poBuffer, unsigned int colorIndex);
    /// @}

private:
    void requireBound(const char* refusal) const;
    static void requireColorIndex(unsigned int colorIndex);
    static void requireIndexOf(const Renderbuffer& buffer, unsigned int colorIndex);
    // The checks that both kinds of texture share.
    void requireAttachable(const Object* poTex, unsigned int colorIndex) const;
};

} // namespace ZLT::OGL
