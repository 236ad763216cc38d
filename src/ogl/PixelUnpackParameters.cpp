#include "ogl/PixelUnpackParameters.h"

#include "extensionator/ExtensionManager.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

void PixelUnpackParameters::setAlignment(unsigned int bytes) {
    switch (bytes) {
    case 1:
        alignment_ = eAlignment1;
        break;
    case 2:
        alignment_ = eAlignment2;
        break;
    case 4:
        alignment_ = eAlignment4;
        break;
    case 8:
        alignment_ = eAlignment8;
        break;
    default:
        ZLT_UNREACHABLE("Unsupported aligment in PixelUnpackParameters::setAlignment!");
    }
}

void PixelUnpackParameters::apply() const {
    glPixelStorei(GL_UNPACK_SWAP_BYTES, swapBytes_ ? 1 : 0);
    glPixelStorei(GL_UNPACK_LSB_FIRST, firstLSB_ ? 1 : 0);
    glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(rowLength_));
    glPixelStorei(GL_UNPACK_SKIP_PIXELS, static_cast<GLint>(skipPixels_));
    glPixelStorei(GL_UNPACK_SKIP_ROWS, static_cast<GLint>(skipRows_));
    if (ExtensionManager::Instance()->supportsTexture3D()) {
        glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, static_cast<GLint>(imageHeight_));
        glPixelStorei(GL_UNPACK_SKIP_IMAGES, static_cast<GLint>(skipImages_));
    }
    if (alignment_ < eAlignment1 || alignment_ > eAlignment8)
        ZLT_RAISE("Enum value not recognized");
    glPixelStorei(GL_UNPACK_ALIGNMENT, 1 << alignment_);
}

} // namespace ZLT::OGL
