#include "ogl/Texture2.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/TextureState.h"
#include "ogl/internal/TextureStorage.h"
#include "ogl/internal/TextureTransfer.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

using namespace internal;

// The heights are compared with the "width of image"; tools match on it.
constexpr AxisTexts subWidth = {"error subimage width of zero supplied", "width(",
                                ") is greater than width of image ("};
constexpr AxisTexts subHeight = {"error subimage height of zero supplied", "height(",
                                 ") is greater than width of image ("};

// Rectangle textures waive the rule for every target.
bool needsPowerOfTwo() {
    return !TextureState::supportsNonPowerOfTwo() && !Texture::IsTargetSupported(GL_TEXTURE_RECTANGLE_ARB);
}

// The hint goes to the rectangle target for every texture.
void hintClientStorage(GLint hint, GLint unpackFromClient) {
    glTexParameteri(GL_TEXTURE_RECTANGLE_ARB, GL_TEXTURE_STORAGE_HINT_APPLE, hint);
    glPixelStorei(GL_UNPACK_CLIENT_STORAGE_APPLE, unpackFromClient);
}

} // namespace

Texture2::Texture2(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
                   std::uint64_t height, bool mipmaps, void* clientStorage)
    : Texture(target, binding, format, width, height, 1), clientStorage_(clientStorage) {
    if (needsPowerOfTwo() && !(isPowerOfTwoSize(width) && isPowerOfTwoSize(height)))
        ZLT_RAISE("Texture2::ctor hardware only supports power of two textures");
    const auto internalFormat = static_cast<GLint>(InternalFormat2GL(format));
    const TextureBinding bound(this->target(), objectID(), getBoundID());
    const bool hinted = clientStorage && ExtensionManager::Instance()->isSupported(GL_APPLE_CLIENT_STORAGE);
    if (hinted)
        hintClientStorage(GL_STORAGE_CACHED_APPLE, 1);
    allocateLevels(std::array{static_cast<GLsizei>(width), static_cast<GLsizei>(height)}, mipmaps,
                   [&](GLint level, const auto& sizes) {
                       glTexImage2D(this->target(), level, internalFormat, sizes[0], sizes[1], 0, GL_BGRA,
                                    GL_UNSIGNED_BYTE, clientStorage);
                   });
    setFilter(Filter::NEAREST, Filter::NEAREST);
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T})
        glTexParameteri(this->target(), axis, edgeClamp());
    if (hinted)
        hintClientStorage(GL_STORAGE_PRIVATE_APPLE, 0);
}

Texture2::~Texture2() noexcept = default;

void Texture2::setWrap(WrapMode s, WrapMode t) {
    // The other shapes don't test this.
    if (!isBound())
        ZLT_RAISE("Texture must be enabled (bound & active)");
    const auto alongS = static_cast<GLint>(WrapMode2GL(s));
    const auto alongT = static_cast<GLint>(WrapMode2GL(t));
    glTexParameteri(target(), GL_TEXTURE_WRAP_S, alongS);
    glTexParameteri(target(), GL_TEXTURE_WRAP_T, alongT);
}

std::uint64_t Texture2::pixelDataSize(int, Format format, Type type) const {
    const std::uint64_t values = Channels(format) * width(0) * height(0);
    return values * bytesOf(type);
}

void Texture2::getPixelData(void* data, int level, Format format, Type type,
                            unsigned int rowAlignment) const {
    if (!isBound())
        ZLT_RAISE("Texture must be bound");
    if (format == Format::COLOR_INDEX)
        ZLT_RAISE("COLOR_INDEX not allowed here!");
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    pushAndSetReadbackByteAlignment(rowAlignment);
    const SavedPixelStore saved;
    glGetTexImage(target(), level, glFormat, glType, data);
}

void Texture2::getPixelData(Buffer* buffer, std::uint64_t offset, int level, Format format, Type type,
                            unsigned int rowAlignment) const {
    if (!isBound())
        ZLT_RAISE("Texture must be bound");
    checkTransferBuffer(buffer);
    if (format == Format::COLOR_INDEX)
        ZLT_RAISE("COLOR_INDEX not allowed here!");
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    pushAndSetReadbackByteAlignment(rowAlignment);
    const SavedPixelStore saved;
    const BufferBinding bound = BufferBinding::forPacking(*buffer);
    glGetTexImage(target(), level, glFormat, glType, atOffset(offset));
}

void Texture2::subImage(int level, int x, int y, std::uint64_t width, std::uint64_t height, Format format,
                        Type type, const void* data, const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)}, {subHeight, height, this->height(0)}});
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    const SavedPixelStore saved(parameters);
    glTexSubImage2D(target(), level, x, y, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
                    glFormat, glType, data);
}

void Texture2::subImage(int level, int x, int y, std::uint64_t width, std::uint64_t height, Format format,
                        Type type, Buffer* buffer, std::uint64_t offset,
                        const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)}, {subHeight, height, this->height(0)}});
    checkUnpackBuffer(buffer, offset);
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    const SavedPixelStore saved(parameters);
    const BufferBinding bound = BufferBinding::forUnpacking(*buffer);
    glTexSubImage2D(target(), level, x, y, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
                    glFormat, glType, atOffset(offset));
}

void Texture2::copyTexSubImage(int level, int xoffset, int yoffset, int x, int y, std::uint64_t width,
                               std::uint64_t height) {
    verifyCurrentTextureObject();
    checkRegion(level, {{copyWidth, width, this->width(0)}, {copyHeight, height, this->height(0)}});
    glCopyTexSubImage2D(target(), level, xoffset, yoffset, x, y, static_cast<GLsizei>(width),
                        static_cast<GLsizei>(height));
}

} // namespace ZLT::OGL
