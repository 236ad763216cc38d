// Questions that fold several extensions and a version into one answer.

#include "extensionator/ExtensionManager.h"

#include "platform/GL.h"

namespace ZLT::OGL {

bool ExtensionManager::supportsFloatingPointTextures() const {
    return isSupported(GL_ARB_TEXTURE_FLOAT) || isSupported(GL_ATI_TEXTURE_FLOAT) ||
           isSupported(GL_APPLE_FLOAT_PIXELS);
}

bool ExtensionManager::supports16BitFloat() const {
    const ExtensionManager* current = Instance();
    return current->isSupported(GL_ARB_HALF_FLOAT_PIXEL) || current->isSupported(GL_APPLE_FLOAT_PIXELS);
}

bool ExtensionManager::supportsMultiTexture() const {
    return isSupported(OPEN_GL_1_3) || isSupported(GL_ARB_MULTITEXTURE);
}

bool ExtensionManager::supportsDrawBuffers() const {
    return isSupported(OPEN_GL_2_0) || isSupported(GL_ARB_DRAW_BUFFERS);
}

bool ExtensionManager::supportsClampToEdge() const { return isSupported(OPEN_GL_1_2); }

bool ExtensionManager::supportsTexture3D() const {
    return isSupported(OPEN_GL_1_2) || isSupported(GL_EXT_TEXTURE3D);
}

bool ExtensionManager::supportsRenderToTexture() const {
    return Instance()->isSupported(WGL_ARB_RENDER_TEXTURE);
}

bool ExtensionManager::supportsRenderToTextureRectangle() const {
    return Instance()->isSupported(WGL_NV_RENDER_TEXTURE_RECTANGLE);
}

bool ExtensionManager::supportsPixelBuffers() const {
    const ExtensionManager* current = Instance();
    return current->isSupported(WGL_ARB_PIXEL_FORMAT) && current->isSupported(WGL_ARB_PBUFFER);
}

bool ExtensionManager::supportsNonPowerOfTwoTextures() const { return supportsNonPowerOfTwo_; }

unsigned int ExtensionManager::numberOfTextureUnits() const {
    GLint units = 1;
    if (isSupported(GL_ARB_FRAGMENT_PROGRAM))
        glGetIntegerv(GL_MAX_TEXTURE_IMAGE_UNITS, &units);
    else if (supportsMultiTexture())
        glGetIntegerv(GL_MAX_TEXTURE_UNITS, &units);
    return static_cast<unsigned int>(units);
}

} // namespace ZLT::OGL
