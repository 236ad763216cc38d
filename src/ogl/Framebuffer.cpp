#include "ogl/Framebuffer.h"

#include "extensionator/EntryPoint.h"
#include "extensionator/TokenName.h"
#include "ogl/Renderbuffer.h"
#include "ogl/Texture2.h"
#include "ogl/Texture2DArray.h"
#include "ogl/internal/Composed.h"
#include "ogl/internal/TearDown.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

Framebuffer::Framebuffer() : Object(GL_FRAMEBUFFER, GL_FRAMEBUFFER_BINDING) {
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT));
    ZLT_GL(glGenFramebuffersEXT)(1, &n_ObjectID);
    ZLT_ASSERT(n_ObjectID != 0);
}

Framebuffer::~Framebuffer() noexcept(false) {
    internal::tearDown(exceptions_, [&] { ZLT_GL(glDeleteFramebuffersEXT)(1, &n_ObjectID); });
}

bool Framebuffer::isSupported() {
    return ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT);
}

unsigned int Framebuffer::maxColorAttachments() {
    GLint maximum = 0;
    glGetIntegerv(GL_MAX_COLOR_ATTACHMENTS, &maximum);
    return static_cast<unsigned int>(maximum);
}

void Framebuffer::bind() { ZLT_GL(glBindFramebufferEXT)(target(), objectID()); }

void Framebuffer::unbind() {
    requireBound("Framebuffer object must be bound before calling unbind()");
    ZLT_GL(glBindFramebufferEXT)(target(), 0);
}

bool Framebuffer::statusOkay(unsigned int* status) const {
    requireBound("Framebuffer object must be bound before calling statusOkay()");
    const unsigned int result = ZLT_GL(glCheckFramebufferStatusEXT)(GL_FRAMEBUFFER);
    if (status)
        *status = result;
    return result == GL_FRAMEBUFFER_COMPLETE;
}

void Framebuffer::requireBound(const char* refusal) const {
    if (!isBound())
        ZLT_RAISE(refusal);
}

void Framebuffer::requireColorIndex(unsigned int colorIndex) {
    if (colorIndex >= maxColorAttachments())
        ZLT_RAISE(internal::composed("Invalid color buffer attachment only ", maxColorAttachments(),
                                     " attachments supported with ", colorIndex, " requested")
                      .c_str());
}

void Framebuffer::requireIndexOf(const Renderbuffer& buffer, unsigned int colorIndex) {
    requireColorIndex(colorIndex);
    if (buffer.attachment() != GL_COLOR_ATTACHMENT0 && colorIndex != 0)
        ZLT_RAISE(internal::composed("Color buffer index is not supported with attachment:",
                                     TokenName(buffer.attachment()))
                      .c_str());
}

namespace {

constexpr const char* notBoundToAttach = "Framebuffer Objects must be bound to attach objects";
constexpr const char* notBoundToDetach = "Framebuffer Object must be bound before detaching objects";

} // namespace

// The texts of the rules say NULL. NOLINTBEGIN(modernize-use-nullptr)
void Framebuffer::requireAttachable(const Object* poTex, unsigned int colorIndex) const {
    ZLT_ENFORCE(poTex != NULL);
    if (poTex->isBound())
        ZLT_RAISE("Texture cannot be bound during attachment to framebuffer object");
    requireBound(notBoundToAttach);
    requireColorIndex(colorIndex);
}

void Framebuffer::attach(Texture2* poTex, unsigned int level, unsigned int colorIndex) {
    requireAttachable(poTex, colorIndex);
    ZLT_GL(glFramebufferTexture2DEXT)
    (target(), GL_COLOR_ATTACHMENT0 + colorIndex, poTex->target(), poTex->objectID(),
     static_cast<GLint>(level));
}

void Framebuffer::attach(Texture2DArray* poTex, unsigned int layer, unsigned int level,
                         unsigned int colorIndex) {
    requireAttachable(poTex, colorIndex);
    if (layer >= poTex->depth(0))
        ZLT_RAISE("Array Index too large");
    ZLT_GL(glFramebufferTextureLayer)
    (target(), GL_COLOR_ATTACHMENT0 + colorIndex, poTex->objectID(), static_cast<GLint>(level),
     static_cast<GLint>(layer));
}

void Framebuffer::attach(Renderbuffer* poBuffer, unsigned int colorIndex) {
    ZLT_ENFORCE(poBuffer != NULL);
    requireBound(notBoundToAttach);
    requireIndexOf(*poBuffer, colorIndex);
    const auto attachTo = ZLT_GL(glFramebufferRenderbufferEXT);
    attachTo(target(), colorIndex + poBuffer->attachment(), poBuffer->target(), poBuffer->objectID());
    if (poBuffer->format() == GL_DEPTH_STENCIL)
        attachTo(target(), GL_STENCIL_ATTACHMENT, poBuffer->target(), poBuffer->objectID());
}

void Framebuffer::detach(Texture2* poTex, unsigned int colorIndex) {
    ZLT_ENFORCE(poTex != NULL);
    requireBound(notBoundToDetach);
    requireColorIndex(colorIndex);
    ZLT_GL(glFramebufferTexture2DEXT)(target(), GL_COLOR_ATTACHMENT0 + colorIndex, poTex->target(), 0, 0);
}

void Framebuffer::detach(Renderbuffer* poBuffer, unsigned int colorIndex) {
    ZLT_ENFORCE(poBuffer != NULL);
    requireBound(notBoundToDetach);
    requireIndexOf(*poBuffer, colorIndex);
    // Once: as the stencil it stays, and existing clients rely on it.
    ZLT_GL(glFramebufferRenderbufferEXT)
    (target(), colorIndex + poBuffer->attachment(), poBuffer->target(), 0);
}
// NOLINTEND(modernize-use-nullptr)

} // namespace ZLT::OGL
