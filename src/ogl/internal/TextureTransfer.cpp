#include "ogl/internal/TextureTransfer.h"

#include "extensionator/EntryPoint.h"
#include "extensionator/TokenName.h"
#include "ogl/Buffer.h"
#include "ogl/PixelUnpackParameters.h"
#include "ogl/internal/Composed.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL::internal {

void checkRegion(int level, std::initializer_list<Extent> extents) {
    for (const Extent& extent : extents)
        if (extent.size == 0)
            ZLT_RAISE(extent.texts.zero);
    if (level < 0)
        ZLT_RAISE("a negative texture image mip-map level supplied");
    for (const Extent& extent : extents)
        if (extent.size > extent.imageSize)
            ZLT_RAISE(
                composed(extent.texts.tooLarge, extent.size, extent.texts.ofImage, extent.imageSize, ") ")
                    .c_str());
}

std::uint64_t bytesOf(Texture::Type type) {
    switch (type) {
    case Texture::Type::UNSIGNED_BYTE:
    case Texture::Type::BYTE:
        return 1;
    case Texture::Type::UNSIGNED_SHORT:
    case Texture::Type::SHORT:
    case Texture::Type::HALF_APPLE:
        return 2;
    case Texture::Type::FLOAT:
        return 4;
    default:
        // The number of the enumerator is looked up as if it were a token.
        ZLT_RAISE(
            composed("pixelDataSize: Unknown type ", TokenName(static_cast<unsigned int>(type))).c_str());
    }
}

void checkTransferBuffer(const Buffer* buffer) {
    ZLT_ENFORCE(buffer != NULL); // NOLINT(modernize-use-nullptr): all such texts are alike
    if (buffer->isMapped())
        ZLT_RAISE("Pixel Buffer Object cannot be memory mapped during data transfer");
}

void checkUnpackBuffer(const Buffer* buffer, std::uint64_t offset) {
    ZLT_ENFORCE(buffer != NULL); // NOLINT(modernize-use-nullptr)
    if (offset >= buffer->size())
        ZLT_RAISE(composed("offset(", offset, ") is greater than pixel buffer object size", buffer->size())
                      .c_str());
    checkTransferBuffer(buffer);
}

SavedPixelStore::SavedPixelStore(const PixelUnpackParameters& parameters) {
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    try {
        parameters.apply();
    } catch (...) {
        glPopClientAttrib();
        throw;
    }
}

BufferBinding::BufferBinding(const Buffer& buffer)
    : target_(buffer.target()), previous_(buffer.getBoundID()), bind_(ZLT_GL(glBindBuffer)) {
    bind_(target_, buffer.objectID());
}

BufferBinding BufferBinding::forUnpacking(Buffer& buffer) {
    if (!buffer.isUnpackBuffer())
        buffer.convertToUnpackBuffer();
    return BufferBinding(buffer);
}

BufferBinding BufferBinding::forPacking(Buffer& buffer) {
    if (!buffer.isPackBuffer())
        buffer.convertToPackBuffer();
    return BufferBinding(buffer);
}

} // namespace ZLT::OGL::internal
