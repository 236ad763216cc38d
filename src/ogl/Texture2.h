#pragma once

#include "Export.h"
#include "ogl/PixelUnpackParameters.h"
#include "ogl/Texture.h"

#include <cstdint>

namespace ZLT::OGL {

class Buffer;

/// A texture with a width and a height. Its storage is allocated at construction; pixels enter through
/// subImage() and copyTexSubImage() and leave through getPixelData(). The texture must be bound in the
/// active unit for every method.
///
/// Besides what each method lists, a value outside an enumeration is refused as by its translation
/// (Format2GL() and so on), unpack parameters as by PixelUnpackParameters::apply(), and a null buffer with
/// "Enforce buffer != NULL". The pixel store state is unchanged then.
class ZLT_OGL_API Texture2 : public Texture {
public:
    ~Texture2() noexcept override;

    /// What was given at construction.
    void* clientStorage() const { return clientStorage_; }

    /// @throws InternalException "Texture must be enabled (bound & active)" when another one is bound
    void setWrap(WrapMode s, WrapMode t);

    /// The bytes that getPixelData() gives of level 0 (whatever `level` is) when rows have no padding.
    /// @throws InternalException as Texture1::pixelDataSize()
    std::uint64_t pixelDataSize(int level, Format format, Type type) const;

    /// Reads a level into client memory.
    /// @param rowAlignment  1, 2, 4 or 8: each row begins at a multiple of it
    /// @throws InternalException "Texture must be bound", "COLOR_INDEX not allowed here!", "Invalid row
    ///         byte alignment (must be of 1, 2, 4, or 8)."
    void getPixelData(void* data, int level, Format format, Type type, unsigned int rowAlignment) const;
    /// Reads a level into a pixel buffer, which is bound only for this.
    /// @param offset  in bytes
    /// @throws InternalException as above, after the first one "Pixel Buffer Object cannot be memory
    ///         mapped during data transfer"; and as Buffer::convertToPackBuffer() for a buffer that is
    ///         bound in another role, which leaves the pixel store state on GL's stack
    void getPixelData(Buffer* buffer, std::uint64_t offset, int level, Format format, Type type,
                      unsigned int rowAlignment) const;

    /// Replaces texels of a level. The pixel store state is saved and restored.
    /// @param x,y,width,height  in texels, from the lower left. The size is compared with that of level 0;
    ///                          GL reports what is beyond that.
    /// @throws InternalException "error subimage width of zero supplied" (or height), "a negative texture
    ///         image mip-map level supplied", "width(5) is greater than width of image (4) " ("height(5)
    ///         is greater than width of image (4) "); before any GL call
    void subImage(int level, int x, int y, std::uint64_t width, std::uint64_t height, Format format,
                  Type type, const void* data, const PixelUnpackParameters& parameters);
    /// The same from a pixel buffer, which is bound only for this.
    /// @param offset  in bytes
    /// @throws InternalException as above, then "offset(8) is greater than pixel buffer object size8",
    ///         "Pixel Buffer Object cannot be memory mapped during data transfer", and as
    ///         Buffer::convertToUnpackBuffer() for a buffer that is bound in another role, which leaves
    ///         the pixel store state on GL's stack
    void subImage(int level, int x, int y, std::uint64_t width, std::uint64_t height, Format format,
                  Type type, Buffer* buffer, std::uint64_t offset, const PixelUnpackParameters& parameters);

    /// Replaces texels of a level by what is drawn at (x, y) of the frame buffer that is read.
    /// @throws InternalException "error copySubimage width of zero supplied" (or height), then as subImage()
    void copyTexSubImage(int level, int xoffset, int yoffset, int x, int y, std::uint64_t width,
                         std::uint64_t height);

protected:
    /// Level 0, or with `mipmaps` all levels down to one texel; nearest filters, clamped to the edge.
    /// @param clientStorage  pixels (BGRA, bytes) for each level, or null. With `GL_APPLE_client_storage`
    ///                       the driver may keep reading them; the caller still owns them.
    /// @throws InternalException "Texture2::ctor hardware only supports power of two textures", where the
    ///         driver supports neither other sizes nor rectangle textures
    Texture2(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
             std::uint64_t height, bool mipmaps, void* clientStorage);

private:
    void* clientStorage_;
};

} // namespace ZLT::OGL
