#include "ogl/Renderbuffer.h"

#include "extensionator/EntryPoint.h"
#include "ogl/internal/Composed.h"
#include "ogl/internal/TearDown.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

unsigned int attachmentOf(unsigned int format) {
    switch (format) {
    case GL_DEPTH_STENCIL:
    case GL_DEPTH_COMPONENT:
    case GL_DEPTH_COMPONENT16:
    case GL_DEPTH_COMPONENT24:
    case GL_DEPTH_COMPONENT32:
        return GL_DEPTH_ATTACHMENT;
    // 0x8D45 is no format of OpenGL 3.0, and a stencil all the same.
    case 0x8D45:
    case GL_STENCIL_INDEX1:
    case GL_STENCIL_INDEX4:
    case GL_STENCIL_INDEX8:
    case GL_STENCIL_INDEX16:
        return GL_STENCIL_ATTACHMENT;
    default:
        return GL_COLOR_ATTACHMENT0;
    }
}

} // namespace

Renderbuffer::Renderbuffer(unsigned int format, int width, int height)
    : Object(GL_RENDERBUFFER, GL_RENDERBUFFER_BINDING), format_(format), width_(width), height_(height) {
    ZLT_ASSERT(ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT));
    if (width > maxSize())
        ZLT_RAISE(internal::composed("Can't create renderbuffer of width ", width, ", a max width of ",
                                     maxSize(), " is supported")
                      .c_str());
    // "width" stands here too; tools match on it.
    if (height > maxSize())
        ZLT_RAISE(internal::composed("Can't create renderbuffer of width ", height, ", a max height of ",
                                     maxSize(), " is supported")
                      .c_str());
    ZLT_GL(glGenRenderbuffersEXT)(1, &n_ObjectID);
    const unsigned int previous = getBoundID();
    bind();
    ZLT_GL(glRenderbufferStorageEXT)(target(), format, width, height);
    ZLT_ASSERT(n_ObjectID != 0);
    attachment_ = attachmentOf(format);
    unbind();
    ZLT_GL(glBindRenderbufferEXT)(target(), previous);
}

Renderbuffer::~Renderbuffer() noexcept(false) {
    internal::tearDown(exceptions_, [&] { ZLT_GL(glDeleteRenderbuffersEXT)(1, &n_ObjectID); });
}

bool Renderbuffer::isSupported() {
    return ExtensionManager::Instance()->isSupported(GL_EXT_FRAMEBUFFER_OBJECT);
}

int Renderbuffer::maxSize() {
    GLint maximum = 0;
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &maximum);
    return maximum;
}

void Renderbuffer::bind() { ZLT_GL(glBindRenderbufferEXT)(target(), objectID()); }

void Renderbuffer::unbind() {
    // The text names the other class; tools match on it.
    if (!isBound())
        ZLT_RAISE("Framebuffer object must be bound before calling unbind()");
    ZLT_GL(glBindRenderbufferEXT)(target(), 0);
}

} // namespace ZLT::OGL
