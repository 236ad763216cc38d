#include "ogl/Texture1.h"

#include "extensionator/TextureState.h"
#include "ogl/internal/TextureStorage.h"
#include "ogl/internal/TextureTransfer.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

using namespace internal;

constexpr AxisTexts subWidth = {"error subimage width of zero supplied", "width(",
                                ") is greater than width of image ("};

} // namespace

Texture1::Texture1(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
                   bool mipmaps)
    : Texture(target, binding, format, width, 1, 1) {
    // The text names the other shape; tools match on it.
    if (!TextureState::supportsNonPowerOfTwo() && !isPowerOfTwoSize(width))
        ZLT_RAISE("Texture2::ctor hardware only supports power of two textures");
    const auto internalFormat = static_cast<GLint>(InternalFormat2GL(format));
    const TextureBinding bound(this->target(), objectID(), getBoundID());
    allocateLevels(std::array{static_cast<GLsizei>(width)}, mipmaps, [&](GLint level, const auto& sizes) {
        glTexImage1D(this->target(), level, internalFormat, sizes[0], 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    });
    setFilter(Filter::NEAREST, Filter::NEAREST);
    glTexParameteri(this->target(), GL_TEXTURE_WRAP_S, edgeClamp());
}

Texture1::~Texture1() noexcept = default;

void Texture1::setWrap(WrapMode s) {
    verifyCurrentTextureObject();
    glTexParameteri(target(), GL_TEXTURE_WRAP_S, static_cast<GLint>(WrapMode2GL(s)));
}

std::uint64_t Texture1::pixelDataSize(int, Format format, Type type) const {
    const std::uint64_t values = Channels(format) * width(0);
    return values * bytesOf(type);
}

void Texture1::getPixelData(void* data, int level, unsigned int glFormat, unsigned int glType) const {
    verifyCurrentTextureObject();
    glGetTexImage(target(), level, glFormat, glType, data);
}

void Texture1::getPixelData(Buffer* buffer, int offset, int level, unsigned int glFormat,
                            unsigned int glType) const {
    verifyCurrentTextureObject();
    // Not undone, unlike in the two shapes that take an alignment.
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    checkTransferBuffer(buffer);
    const BufferBinding bound = BufferBinding::forPacking(*buffer);
    glGetTexImage(target(), level, glFormat, glType, atOffset(offset));
}

void Texture1::subImage(int level, int x, std::uint64_t width, Format format, Type type, const void* data,
                        const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)}});
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    const SavedPixelStore saved(parameters);
    glTexSubImage1D(target(), level, x, static_cast<GLsizei>(width), glFormat, glType, data);
}

void Texture1::subImage(int level, int x, std::uint64_t width, Format format, Type type, Buffer* buffer,
                        std::uint64_t offset, const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)}});
    checkUnpackBuffer(buffer, offset);
    SavedPixelStore saved(parameters);
    const BufferBinding bound = BufferBinding::forUnpacking(*buffer);
    // The enumerators' own numbers, which GL refuses: existing clients rely on it.
    glTexSubImage1D(target(), level, x, static_cast<GLsizei>(width), static_cast<GLenum>(format),
                    static_cast<GLenum>(type), atOffset(offset));
    saved.restore(); // before the buffer that was bound, unlike in the other shapes
}

void Texture1::copyTexSubImage(int level, int xoffset, int, int x, std::uint64_t width) {
    verifyCurrentTextureObject();
    checkRegion(level, {{copyWidth, width, this->width(0)}});
    // The width lands where GL takes the row, and nothing is copied: existing clients rely on it.
    glCopyTexSubImage1D(target(), level, xoffset, x, static_cast<GLint>(width), 0);
}

} // namespace ZLT::OGL
