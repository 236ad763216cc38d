#pragma once

#include "Export.h"
#include "ogl/PixelUnpackParameters.h"
#include "ogl/Texture.h"

#include <cstdint>

namespace ZLT::OGL {

class Buffer;

/// A texture with a width. Its storage is allocated at construction; pixels enter through subImage() and
/// leave through getPixelData(). The texture must be bound in the active unit for every method.
///
/// Besides what each method lists, a value outside an enumeration is refused as by its translation
/// (Format2GL() and so on), except for the format and type of a subImage() from a buffer, which GL refuses;
/// unpack parameters as by PixelUnpackParameters::apply(), and a null buffer with "Enforce buffer != NULL".
/// The pixel store state is unchanged then.
class ZLT_OGL_API Texture1 : public Texture {
public:
    ~Texture1() noexcept override;

    /// Sets the wrap mode of the texture that is bound.
    void setWrap(WrapMode s);

    /// The bytes that getPixelData() gives of level 0 (whatever `level` is) when rows have no padding.
    /// @throws InternalException "pixelDataSize: Unknown type " and a name for a type other than bytes,
    ///         shorts, halves and FLOAT (the name is that of the token whose value is the enumerator's
    ///         number), or as Channels()
    std::uint64_t pixelDataSize(int level, Format format, Type type) const;

    /// Reads a level into client memory, by the current pixel store state.
    /// @param glFormat,glType  GL tokens, passed on as they are
    void getPixelData(void* data, int level, unsigned int glFormat, unsigned int glType) const;
    /// Reads a level into a pixel buffer, which is bound only for this. Leaves `GL_PACK_ALIGNMENT` at 1,
    /// even when it fails.
    /// @param offset           in bytes
    /// @param glFormat,glType  GL tokens, passed on as they are
    /// @throws InternalException "Pixel Buffer Object cannot be memory mapped during data transfer", or as
    ///         Buffer::convertToPackBuffer() for a buffer that is bound in another role
    void getPixelData(Buffer* buffer, int offset, int level, unsigned int glFormat,
                      unsigned int glType) const;

    /// Replaces texels of a level. The pixel store state is saved and restored.
    /// @param x,width  in texels. The width is compared with that of level 0; GL reports what is beyond it.
    /// @throws InternalException "error subimage width of zero supplied", "a negative texture image
    ///         mip-map level supplied", "width(5) is greater than width of image (4) "; before any GL call
    void subImage(int level, int x, std::uint64_t width, Format format, Type type, const void* data,
                  const PixelUnpackParameters& parameters);
    /// The same from a pixel buffer, which is bound only for this. Format and type reach GL as the
    /// numbers of their enumerators, which GL refuses: use memory, or a Texture2.
    /// @param offset  in bytes
    /// @throws InternalException as above, then "offset(8) is greater than pixel buffer object size8",
    ///         "Pixel Buffer Object cannot be memory mapped during data transfer", and as
    ///         Buffer::convertToUnpackBuffer() for a buffer that is bound in another role, which leaves
    ///         the pixel store state on GL's stack
    void subImage(int level, int x, std::uint64_t width, Format format, Type type, Buffer* buffer,
                  std::uint64_t offset, const PixelUnpackParameters& parameters);

    /// Checks its arguments and then copies nothing: `width` is passed to GL as the row to copy from, and
    /// the width is 0.
    /// @throws InternalException "error copySubimage width of zero supplied", then as subImage()
    void copyTexSubImage(int level, int xoffset, int ignored, int x, std::uint64_t width);

protected:
    /// Level 0, or with `mipmaps` all levels down to one texel; nearest filters, clamped to the edge.
    /// @throws InternalException "Texture2::ctor hardware only supports power of two textures"
    Texture1(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width, bool mipmaps);
};

} // namespace ZLT::OGL
