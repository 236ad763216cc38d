#pragma once

#include "Export.h"

/// The texture state that the current context has outside any texture object. A context that the library
/// knows must be current.
namespace ZLT::OGL::TextureState {

/// Makes the unit the one that texture calls act on, from 0.
/// @throws InternalException "The current context has no glActiveTextureARB" without `GL_ARB_multitexture`
ZLT_OGL_API void setActiveTextureUnit(unsigned int unit);
/// The unit that texture calls act on, from 0.
ZLT_OGL_API unsigned int activeTextureUnit();
/// Whether textures of this GL target exist here; false for a value that is not a target of an image.
ZLT_OGL_API bool IsTargetSupported(unsigned int target);
/// As ExtensionManager::supportsNonPowerOfTwoTextures() of the current context's manager.
ZLT_OGL_API bool supportsNonPowerOfTwo();

} // namespace ZLT::OGL::TextureState
