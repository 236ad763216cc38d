#include "extensionator/TextureState.h"

#include "extensionator/EntryPoint.h"
#include "platform/GL.h"

namespace ZLT::OGL::TextureState {

void setActiveTextureUnit(unsigned int unit) { ZLT_GL(glActiveTextureARB)(GL_TEXTURE0 + unit); }

unsigned int activeTextureUnit() {
    GLint unit = 0;
    glGetIntegerv(GL_ACTIVE_TEXTURE, &unit);
    return static_cast<unsigned int>(unit) - GL_TEXTURE0;
}

bool IsTargetSupported(unsigned int target) {
    switch (target) {
    case GL_TEXTURE_1D:
    case GL_TEXTURE_2D:
    case GL_TEXTURE_3D:
        return true;
    case GL_TEXTURE_RECTANGLE_ARB:
        return ExtensionManager::Instance()->isSupported(GL_ARB_TEXTURE_RECTANGLE);
    case GL_TEXTURE_1D_ARRAY:
    case GL_TEXTURE_2D_ARRAY:
        return ExtensionManager::Instance()->isSupported(GL_EXT_TEXTURE_ARRAY);
    default:
        return false;
    }
}

bool supportsNonPowerOfTwo() { return ExtensionManager::Instance()->supportsNonPowerOfTwoTextures(); }

} // namespace ZLT::OGL::TextureState
