#include "ogl/Texture3.h"

#include "extensionator/EntryPoint.h"
#include "extensionator/TextureState.h"
#include "ogl/internal/TextureStorage.h"
#include "ogl/internal/TextureTransfer.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

namespace ZLT::OGL {

namespace {

using namespace internal;

// Blanks and words as they stand; tools match on them.
constexpr AxisTexts subWidth = {"error subimage width  of zero supplied", "width(",
                                ") is greater than width  of image ("};
constexpr AxisTexts subHeight = {"error subimage height of zero supplied", "height(",
                                 ") is greater than height of image ("};
constexpr AxisTexts subDepth = {"error subimage depth  of zero supplied", "depth(",
                                ") is greater than depth  of image ("};

// Of the texture that is bound.
void setStartState(unsigned int target) {
    for (const GLenum axis : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
        glTexParameteri(target, axis, edgeClamp());
}

} // namespace

void Texture3::requirePowerOfTwo() const {
    if (!TextureState::supportsNonPowerOfTwo() &&
        !(isPowerOfTwoSize(width(0)) && isPowerOfTwoSize(height(0)) && isPowerOfTwoSize(baseDepth())))
        ZLT_RAISE("Texture3::ctor hardware only supports power of two textures");
}

Texture3::Texture3(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
                   std::uint64_t height, std::uint64_t depth, bool mipmaps)
    : Texture(target, binding, format, width, height, depth) {
    requirePowerOfTwo();
    const auto internalFormat = static_cast<GLint>(InternalFormat2GL(format));
    const auto texImage = ZLT_GL(glTexImage3D);
    const TextureBinding bound(this->target(), objectID(), getBoundID());
    allocateLevels(
        std::array{static_cast<GLsizei>(width), static_cast<GLsizei>(height), static_cast<GLsizei>(depth)},
        mipmaps, [&](GLint level, const auto& sizes) {
            texImage(this->target(), level, internalFormat, sizes[0], sizes[1], sizes[2], 0, GL_BGRA,
                     GL_UNSIGNED_BYTE, nullptr);
        });
    setFilter(Filter::NEAREST, Filter::NEAREST);
    setStartState(this->target());
}

Texture3::Texture3(Target target, TargetBinding binding, InternalFormat format, int level,
                   std::uint64_t width, std::uint64_t height, std::uint64_t depth, Format pixelFormat,
                   Type type, const void* data, const PixelUnpackParameters&)
    : Texture(target, binding, format, width, height, depth) {
    requirePowerOfTwo();
    const auto internalFormat = static_cast<GLint>(InternalFormat2GL(format));
    const unsigned int glFormat = Format2GL(pixelFormat);
    const unsigned int glType = Type2GL(type);
    const auto texImage = ZLT_GL(glTexImage3D);
    const TextureBinding bound(this->target(), objectID(), getBoundID());
    texImage(this->target(), level, internalFormat, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
             static_cast<GLsizei>(depth), 0, glFormat, glType, data);
    setFilter(Filter::NEAREST, Filter::NEAREST);
    setStartState(this->target());
}

Texture3::~Texture3() noexcept = default;

void Texture3::setWrap(WrapMode s, WrapMode t, WrapMode r) {
    verifyCurrentTextureObject();
    const auto alongS = static_cast<GLint>(WrapMode2GL(s));
    const auto alongT = static_cast<GLint>(WrapMode2GL(t));
    const auto alongR = static_cast<GLint>(WrapMode2GL(r));
    glTexParameteri(target(), GL_TEXTURE_WRAP_S, alongS);
    glTexParameteri(target(), GL_TEXTURE_WRAP_T, alongT);
    glTexParameteri(target(), GL_TEXTURE_WRAP_R, alongR);
}

std::uint64_t Texture3::pixelDataSize(int, Format format, Type type) const {
    const std::uint64_t values = Channels(format) * width(0) * height(0) * depth(0);
    return values * bytesOf(type);
}

void Texture3::getPixelData(void* data, int level, Format format, Type type,
                            unsigned int rowAlignment) const {
    verifyCurrentTextureObject();
    if (format == Format::COLOR_INDEX)
        ZLT_RAISE("COLOR_INDEX not allowed here!");
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    pushAndSetReadbackByteAlignment(rowAlignment);
    const SavedPixelStore saved;
    glGetTexImage(target(), level, glFormat, glType, data);
}

void Texture3::getPixelData(Buffer* buffer, int offset, int level, Format format, Type type,
                            unsigned int rowAlignment) const {
    verifyCurrentTextureObject();
    checkTransferBuffer(buffer);
    // COLOR_INDEX isn't refused here as it is above: existing clients rely on it.
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    pushAndSetReadbackByteAlignment(rowAlignment);
    const SavedPixelStore saved;
    const BufferBinding bound = BufferBinding::forPacking(*buffer);
    glGetTexImage(target(), level, glFormat, glType, atOffset(offset));
}

void Texture3::subImage(int level, int x, int y, int z, std::uint64_t width, std::uint64_t height,
                        std::uint64_t depth, Format format, Type type, const void* data,
                        const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)},
                        {subHeight, height, this->height(0)},
                        {subDepth, depth, this->depth(0)}});
    const unsigned int glFormat = Format2GL(format);
    const unsigned int glType = Type2GL(type);
    const auto texSubImage = ZLT_GL(glTexSubImage3D);
    const SavedPixelStore saved(parameters);
    texSubImage(target(), level, x, y, z, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
                static_cast<GLsizei>(depth), glFormat, glType, data);
}

void Texture3::subImage(int level, int x, int y, int z, std::uint64_t width, std::uint64_t height,
                        std::uint64_t depth, Format format, Type type, Buffer* buffer, std::uint64_t offset,
                        const PixelUnpackParameters& parameters) {
    verifyCurrentTextureObject();
    checkRegion(level, {{subWidth, width, this->width(0)},
                        {subHeight, height, this->height(0)},
                        {subDepth, depth, this->depth(0)}});
    checkUnpackBuffer(buffer, offset);
    const auto texSubImage = ZLT_GL(glTexSubImage3D);
    const SavedPixelStore saved(parameters);
    const BufferBinding bound = BufferBinding::forUnpacking(*buffer);
    // The enumerators' own numbers, which GL refuses: existing clients rely on it.
    texSubImage(target(), level, x, y, z, static_cast<GLsizei>(width), static_cast<GLsizei>(height),
                static_cast<GLsizei>(depth), static_cast<GLenum>(format), static_cast<GLenum>(type),
                atOffset(offset));
}

void Texture3::copyTexSubImage(int level, int xoffset, int yoffset, int zoffset, int x, int y,
                               std::uint64_t width, std::uint64_t height) {
    verifyCurrentTextureObject();
    checkRegion(level, {{copyWidth, width, this->width(0)}, {copyHeight, height, this->height(0)}});
    ZLT_GL(glCopyTexSubImage3D)
    (target(), level, xoffset, yoffset, zoffset, x, y, static_cast<GLsizei>(width),
     static_cast<GLsizei>(height));
}

} // namespace ZLT::OGL
