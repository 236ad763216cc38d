#pragma once

#include "Export.h"
#include "ogl/PixelUnpackParameters.h"
#include "ogl/Texture.h"

#include <cstdint>

namespace ZLT::OGL {

class Buffer;

/// A texture with a width, a height and a depth. Its storage is allocated at construction; pixels enter
/// through subImage() and copyTexSubImage() and leave through getPixelData(). The texture must be bound in
/// the active unit for every method; nothing checks that.
///
/// Besides what each method lists, a value outside an enumeration is refused as by its translation
/// (Format2GL() and so on), except for the format and type of a subImage() from a buffer, which GL refuses;
/// unpack parameters as by PixelUnpackParameters::apply(), and a null buffer with "Enforce buffer != NULL".
/// The pixel store state is unchanged then.
class ZLT_OGL_API Texture3 : public Texture {
public:
    ~Texture3() noexcept override;

    /// Sets the wrap modes of the texture that is bound.
    void setWrap(WrapMode s, WrapMode t, WrapMode r);

    /// The bytes that getPixelData() gives of level 0 (whatever `level` is) when rows have no padding.
    /// @throws InternalException as Texture1::pixelDataSize()
    std::uint64_t pixelDataSize(int level, Format format, Type type) const;

    /// Reads a level into client memory.
    /// @param rowAlignment  1, 2, 4 or 8: each row begins at a multiple of it
    /// @throws InternalException "COLOR_INDEX not allowed here!", "Invalid row byte alignment (must be of
    ///         1, 2, 4, or 8)."
    void getPixelData(void* data, int level, Format format, Type type, unsigned int rowAlignment) const;
    /// Reads a level into a pixel buffer, which is bound only for this. GL itself refuses COLOR_INDEX.
    /// @param offset  in bytes
    /// @throws InternalException "Pixel Buffer Object cannot be memory mapped during data transfer", then
    ///         as above; and as Buffer::convertToPackBuffer() for a buffer that is bound in another role,
    ///         which leaves the pixel store state on GL's stack
    void getPixelData(Buffer* buffer, int offset, int level, Format format, Type type,
                      unsigned int rowAlignment) const;

    /// Replaces texels of a level. The pixel store state is saved and restored.
    /// @param x,y,z,width,height,depth  in texels. The size is compared with that of level 0; GL reports
    ///                                  what is beyond that.
    /// @throws InternalException "error subimage width  of zero supplied" (height of, depth  of), "a
    ///         negative texture image mip-map level supplied", "width(5) is greater than width  of image
    ///         (4) " (height of, depth  of); before any GL call
    void subImage(int level, int x, int y, int z, std::uint64_t width, std::uint64_t height,
                  std::uint64_t depth, Format format, Type type, const void* data,
                  const PixelUnpackParameters& parameters);
    /// The same from a pixel buffer, which is bound only for this. Format and type reach GL as the
    /// numbers of their enumerators, which GL refuses: use memory, or a Texture2.
    /// @param offset  in bytes
    /// @throws InternalException as above, then "offset(8) is greater than pixel buffer object size8",
    ///         "Pixel Buffer Object cannot be memory mapped during data transfer", and as
    ///         Buffer::convertToUnpackBuffer() for a buffer that is bound in another role, which leaves
    ///         the pixel store state on GL's stack
    void subImage(int level, int x, int y, int z, std::uint64_t width, std::uint64_t height,
                  std::uint64_t depth, Format format, Type type, Buffer* buffer, std::uint64_t offset,
                  const PixelUnpackParameters& parameters);

    /// Replaces texels of one image of a level by what is drawn at (x, y) of the frame buffer that is read.
    /// @throws InternalException "error copySubimage width of zero supplied" (or height), "a negative
    ///         texture image mip-map level supplied", "width(5) is greater than width of image (4) "
    ///         ("height(5) is greater than width of image (4) ")
    void copyTexSubImage(int level, int xoffset, int yoffset, int zoffset, int x, int y, std::uint64_t width,
                         std::uint64_t height);

protected:
    /// Level 0, or with `mipmaps` all levels down to one texel; nearest filters, clamped to the edge.
    /// @throws InternalException "Texture3::ctor hardware only supports power of two textures"
    Texture3(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
             std::uint64_t height, std::uint64_t depth, bool mipmaps);
    /// One level, filled with `data`, by the current pixel store state: `parameters` are not applied.
    Texture3(Target target, TargetBinding binding, InternalFormat format, int level, std::uint64_t width,
             std::uint64_t height, std::uint64_t depth, Format pixelFormat, Type type, const void* data,
             const PixelUnpackParameters& parameters);

private:
    void requirePowerOfTwo() const;
};

} // namespace ZLT::OGL
