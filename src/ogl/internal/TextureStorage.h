#pragma once

#include "platform/GL.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

/// @file
/// What the shapes of textures share when they are made.

namespace ZLT::OGL::internal {

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

} // namespace ZLT::OGL::internal
