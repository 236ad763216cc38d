#include "ogl/internal/TextureStorage.h"

#include "extensionator/ExtensionManager.h"
#include "platform/GL.h"
#include "zlt/core/Math.h"

namespace ZLT::OGL::internal {

bool isPowerOfTwoSize(std::uint64_t size) { return isPowerOfTwo(static_cast<unsigned int>(size)); }

GLint edgeClamp() {
    return ExtensionManager::Instance()->supportsClampToEdge() ? GL_CLAMP_TO_EDGE : GL_CLAMP;
}

} // namespace ZLT::OGL::internal
