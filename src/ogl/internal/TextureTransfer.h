#pragma once

#include "ogl/Texture.h"
#include "platform/GL.h"

#include <cstdint>
#include <exception>
#include <initializer_list>

/// @file
/// What the shapes of textures share when pixels are transferred: checks, and the state around the transfer.

namespace ZLT::OGL {

class Buffer;
class PixelUnpackParameters;

namespace internal {

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

/// Not null, not mapped.
void checkTransferBuffer(const Buffer* buffer);
/// The offset inside the buffer, then as above.
void checkUnpackBuffer(const Buffer* buffer, std::uint64_t offset);

/// The pixel store state on GL's stack, until the end of the scope. A failure that ends the scope leaves it
/// there: clients that catch it pop it.
class SavedPixelStore {
public:
    /// Of what Texture::pushAndSetReadbackByteAlignment() has saved.
    SavedPixelStore() = default;
    /// Saves it and sets the parameters. When they are bad nothing stays on the stack.
    explicit SavedPixelStore(const PixelUnpackParameters& parameters);
    ~SavedPixelStore() {
        if (!restored_ && std::uncaught_exceptions() == exceptions_)
            restore();
    }
    SavedPixelStore(const SavedPixelStore&) = delete;
    SavedPixelStore& operator=(const SavedPixelStore&) = delete;

    /// Before the end of the scope.
    void restore() {
        glPopClientAttrib();
        restored_ = true;
    }

private:
    bool restored_ = false;
    int exceptions_ = std::uncaught_exceptions();
};

/// Gives a buffer a role and binds it, and what was bound in that role at the end of the scope.
class BufferBinding {
public:
    /// @throws InternalException as Buffer::convertToUnpackBuffer()
    static BufferBinding forUnpacking(Buffer& buffer);
    /// @throws InternalException as Buffer::convertToPackBuffer()
    static BufferBinding forPacking(Buffer& buffer);
    ~BufferBinding() { bind_(target_, previous_); }
    BufferBinding(const BufferBinding&) = delete;
    BufferBinding& operator=(const BufferBinding&) = delete;

private:
    explicit BufferBinding(const Buffer& buffer);

    unsigned int target_;
    unsigned int previous_;
    PFNGLBINDBUFFERPROC bind_;
};

/// An offset into the bound buffer, where GL takes a pointer.
inline void* atOffset(std::uint64_t offset) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(offset)); // NOLINT(performance-no-int-to-ptr)
}

} // namespace internal
} // namespace ZLT::OGL
