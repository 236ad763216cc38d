#pragma once

#include "ogl/Texture.h"
#include "platform/Platform.h"

#include <GL/gl.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>

/// @file
/// What the shapes of textures share: allocation, checks, and the state around a transfer of pixels.

namespace ZLT::OGL {

class Buffer;
class PixelUnpackParameters;

namespace internal {

/// Binds a texture, and what was bound before at the end of the scope.
class TextureBinding {
public:
    /// @param previous  the name to bind at the end
    TextureBinding(unsigned int target, unsigned int name, unsigned int previous)
        : target_(target), previous_(previous) {
        glBindTexture(target, name);
    }
    ~TextureBinding() { glBindTexture(target_, previous_); }
    TextureBinding(const TextureBinding&) = delete;
    TextureBinding& operator=(const TextureBinding&) = delete;

private:
    unsigned int target_;
    unsigned int previous_;
};

/// Calls `image(level, sizes)` for level 0, and with `mipmaps` for each level behind it, down to one texel.
template <std::size_t axes, class Image>
void allocateLevels(std::array<GLsizei, axes> sizes, bool mipmaps, const Image& image) {
    for (GLint level = 0;; ++level) {
        image(level, sizes);
        for (GLsizei& size : sizes)
            size >>= 1;
        // A size beyond 31 bits is negative and stays so, for GL to refuse; halved it is never 0, and ends
        // the levels all the same.
        if (!mipmaps || std::all_of(sizes.begin(), sizes.end(), [](GLsizei size) { return size <= 0; }))
            return;
        for (GLsizei& size : sizes)
            if (size == 0)
                size = 1;
    }
}

/// Whether the low 32 bits of a size are a power of two, which old hardware needs.
bool isPowerOfTwoSize(std::uint64_t size);
/// `GL_CLAMP_TO_EDGE` where the driver has it, `GL_CLAMP` elsewhere.
GLint edgeClamp();

/// How the checks speak of an axis. The words differ from shape to shape, and so do the blanks: tools match
/// on them.
struct AxisTexts {
    const char* zero;     ///< for a size of 0
    const char* tooLarge; ///< in front of the size that is too large
    const char* ofImage;  ///< between that and the image's size
};
/// Of a copy; the height is compared with the "width of image" in every shape.
inline constexpr AxisTexts copyWidth = {"error copySubimage width of zero supplied", "width(",
                                        ") is greater than width of image ("};
inline constexpr AxisTexts copyHeight = {"error copySubimage height of zero supplied", "height(",
                                         ") is greater than width of image ("};
struct Extent {
    const AxisTexts& texts;
    std::uint64_t size;      ///< of the transfer
    std::uint64_t imageSize; ///< of level 0
};
/// Sizes of 0, then a negative level, then sizes beyond those of level 0.
void checkRegion(int level, std::initializer_list<Extent> extents);

/// The bytes of a channel in client memory, for pixelDataSize().
std::uint64_t bytesOf(Texture::Type type);

/// Saves the pixel store state on GL's stack and sets the parameters. When they are bad nothing stays on it.
void pushPixelStore(const PixelUnpackParameters& parameters);

/// Not null, not mapped.
void checkTransferBuffer(const Buffer* buffer);
/// The offset inside the buffer, then as above.
void checkUnpackBuffer(const Buffer* buffer, std::uint64_t offset);
/// Gives the buffer the role and binds it.
/// @return the name that was bound in that role, for restoreBuffer()
unsigned int bindForUnpacking(Buffer& buffer);
unsigned int bindForPacking(Buffer& buffer);
void restoreBuffer(const Buffer& buffer, unsigned int previous);

/// An offset into the bound buffer, where GL takes a pointer.
inline void* atOffset(std::uint64_t offset) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(offset)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace internal
} // namespace ZLT::OGL
