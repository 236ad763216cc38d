#pragma once

#include "Export.h"
#include "ogl/Object.h"

#include <cstdint>

namespace ZLT::OGL {

/// Base of all textures: owns the GL texture, knows its format and the size of its level 0, and has the
/// vocabulary of the family. Each enumeration counts from 0, and its enumerators are the GL tokens without
/// their `GL_`.
///
/// The methods act on the texture that is bound at target() in the active unit. They check that it is this
/// one only where they say so: bind with TextureUnit::bind() first.
class ZLT_OGL_API Texture : public Object {
public:
    /// What a texture binds to.
    enum class Target : unsigned int {
        TEXTURE_1D = 0,
        TEXTURE_2D = 1,
        TEXTURE_3D = 2,
        TEXTURE_1D_ARRAY = 3,
        TEXTURE_2D_ARRAY = 4,
        TEXTURE_RECTANGLE_ARB = 5,
    };
    /// The query for what is bound to it, in the same order.
    enum class TargetBinding : unsigned int {
        TEXTURE_BINDING_1D = 0,
        TEXTURE_BINDING_2D = 1,
        TEXTURE_BINDING_3D = 2,
        TEXTURE_BINDING_1D_ARRAY = 3,
        TEXTURE_BINDING_2D_ARRAY = 4,
        TEXTURE_BINDING_RECTANGLE_ARB = 5,
    };
    /// How texels become a sample; the four with MIPMAP are only for minification.
    enum class Filter : unsigned int {
        NEAREST = 0,
        LINEAR = 1,
        NEAREST_MIPMAP_NEAREST = 2,
        LINEAR_MIPMAP_NEAREST = 3,
        NEAREST_MIPMAP_LINEAR = 4,
        LINEAR_MIPMAP_LINEAR = 5,
    };
    /// What is beyond the edges.
    enum class WrapMode : unsigned int {
        CLAMP = 0,
        CLAMP_TO_BORDER = 1,
        CLAMP_TO_EDGE = 2,
        MIRRORED_REPEAT = 3,
        REPEAT = 4,
    };
    /// The channels of pixels in client memory.
    enum class Format : unsigned int {
        COLOR_INDEX = 0,
        RED = 1,
        GREEN = 2,
        BLUE = 3,
        ALPHA = 4,
        RGB = 5,
        BGR = 6,
        RGBA = 7,
        BGRA = 8,
        LUMINANCE = 9,
        LUMINANCE_ALPHA = 10,
    };
    /// How client memory holds a channel, or (packed) a whole pixel.
    enum class Type : unsigned int {
        UNSIGNED_BYTE = 0,
        BYTE = 1,
        BITMAP = 2,
        UNSIGNED_SHORT = 3,
        SHORT = 4,
        UNSIGNED_INT = 5,
        INT = 6,
        FLOAT = 7,
        UNSIGNED_BYTE_3_3_2 = 8,
        UNSIGNED_BYTE_2_3_3_REV = 9,
        UNSIGNED_SHORT_5_6_5 = 10,
        UNSIGNED_SHORT_5_6_5_REV = 11,
        UNSIGNED_SHORT_4_4_4_4 = 12,
        UNSIGNED_SHORT_4_4_4_4_REV = 13,
        UNSIGNED_SHORT_5_5_5_1 = 14,
        UNSIGNED_SHORT_1_5_5_5_REV = 15,
        UNSIGNED_INT_8_8_8_8 = 16,
        UNSIGNED_INT_8_8_8_8_REV = 17,
        UNSIGNED_INT_10_10_10_2 = 18,
        UNSIGNED_INT_2_10_10_10_REV = 19,
        HALF_APPLE = 20,
    };
    /// Parameters of `glPixelStorei`. Skipped pixels come before skipped rows and images, which is not
    /// the order of the GL values.
    enum class PixelStoreMode : unsigned int {
        PACK_SWAP_BYTES = 0,
        PACK_LSB_FIRST = 1,
        PACK_ROW_LENGTH = 2,
        PACK_IMAGE_HEIGHT = 3,
        PACK_SKIP_PIXELS = 4,
        PACK_SKIP_ROWS = 5,
        PACK_SKIP_IMAGES = 6,
        PACK_ALIGNMENT = 7,
        UNPACK_SWAP_BYTES = 8,
        UNPACK_LSB_FIRST = 9,
        UNPACK_ROW_LENGTH = 10,
        UNPACK_IMAGE_HEIGHT = 11,
        UNPACK_SKIP_PIXELS = 12,
        UNPACK_SKIP_ROWS = 13,
        UNPACK_SKIP_IMAGES = 14,
        UNPACK_ALIGNMENT = 15,
    };
    /// What the driver is asked to store. The unsized ones leave the bits to it.
    enum class InternalFormat : unsigned int {
        ALPHA = 0,
        ALPHA4 = 1,
        ALPHA8 = 2,
        ALPHA12 = 3,
        ALPHA16 = 4,
        LUMINANCE = 5,
        LUMINANCE4 = 6,
        LUMINANCE8 = 7,
        LUMINANCE12 = 8,
        LUMINANCE16 = 9,
        LUMINANCE_ALPHA = 10,
        LUMINANCE4_ALPHA4 = 11,
        LUMINANCE6_ALPHA2 = 12,
        LUMINANCE8_ALPHA8 = 13,
        LUMINANCE12_ALPHA4 = 14,
        LUMINANCE12_ALPHA12 = 15,
        LUMINANCE16_ALPHA16 = 16,
        INTENSITY = 17,
        INTENSITY4 = 18,
        INTENSITY8 = 19,
        INTENSITY12 = 20,
        INTENSITY16 = 21,
        R3_G3_B2 = 22,
        RGB = 23,
        RGB4 = 24,
        RGB5 = 25,
        RGB8 = 26,
        RGB10 = 27,
        RGB12 = 28,
        RGB16 = 29,
        RGBA = 30,
        RGBA2 = 31,
        RGBA4 = 32,
        RGB5_A1 = 33,
        RGBA8 = 34,
        RGB10_A2 = 35,
        RGBA12 = 36,
        RGBA16 = 37,
        RGBA32F = 38,
        RGB32F = 39,
        ALPHA_FLOAT32_APPLE = 40,
        INTENSITY_FLOAT32_APPLE = 41,
        LUMINANCE_FLOAT32_APPLE = 42,
        LUMINANCE_ALPHA_FLOAT32_APPLE = 43,
        RGBA16F = 44,
        RGB16F = 45,
        ALPHA_FLOAT16_APPLE = 46,
        INTENSITY_FLOAT16_APPLE = 47,
        LUMINANCE_FLOAT16_APPLE = 48,
        LUMINANCE_ALPHA_FLOAT16_APPLE = 49,
    };

    /// Deletes the GL texture.
    ~Texture() noexcept override;

    /// @name Size
    /// In texels. Each level halves the level below, rounded down: after the last one the size is 0, not
    /// 1. The level is taken modulo 64.
    /// @{
    std::uint64_t width(unsigned int level) const;
    /// 1 for a one-dimensional texture at level 0; for a one-dimensional array, the number of layers,
    /// halved as well.
    std::uint64_t height(unsigned int level) const;
    /// 1 for a one- or two-dimensional texture at level 0; for a two-dimensional array the number of
    /// layers, at each level.
    virtual std::uint64_t depth(unsigned int level) const;
    /// @}

    /// As it was asked for; the driver may store it otherwise.
    InternalFormat format() const { return internalFormat_; }
    /// @throws InternalException as Channels()
    std::uint64_t channels() const;
    /// Bytes of level 0, by SizeInBytes(). The first call computes them; each call returns the low 32 bits.
    /// @throws InternalException as SizeInBytes(), at each call
    int sizeInBytes() const;

    void setFilter(Filter minFilter, Filter magFilter);
    /// @param rgba  four components
    void setBorderColor(const float* rgba);
    /// Whether the other levels are generated again when level 0 changes; see supportsAutoMIPGeneration().
    void enableAutoMIPGeneration(bool on);

    /// @name What the current context can do
    /// @{
    /// Whether textures of this GL target exist; false for a value that is not a texture target.
    static bool IsTargetSupported(unsigned int glTarget);
    /// By `GL_SGIS_generate_mipmap`, or a version of 1.4 to 2.x; false for 3.0 without the extension,
    /// which has other means.
    static bool supportsAutoMIPGeneration();
    /// @}

    /// How many values a texel has.
    /// @throws InternalException "InternalFormat enums are not all properly sized." for RGB4 and for a
    ///         value outside the enumeration
    static std::uint64_t Channels(InternalFormat format);
    /// @throws InternalException as for an internal format, in the same words
    static std::uint64_t Channels(Format format);
    /// Channels x bytes of a channel x width x height x depth, unchecked for overflow. An unsized format
    /// has one byte for each channel.
    /// @throws InternalException "Texture::SizeInBytes Unknown color channels for format " and a name for
    ///         a format whose channels don't fill bytes (the name is that of the token whose value is the
    ///         enumerator's number), and as Channels() for what that refuses
    static std::uint64_t SizeInBytes(InternalFormat format, std::uint64_t width, std::uint64_t height,
                                     std::uint64_t depth);

    /// @name Translation
    /// Between the enumerations and the tokens of GL, both ways.
    /// @throws InternalException "!\"Filter enums are not all properly translated.\"" (InternalFormat,
    ///         Format, Type, WrapMode, PixelStoreMode, Target; TargetBinding says Target too) for a value
    ///         that is not in the table
    /// @{
    static unsigned int Filter2GL(Filter filter);
    static unsigned int InternalFormat2GL(InternalFormat format);
    static unsigned int Format2GL(Format format);
    static unsigned int Type2GL(Type type);
    static unsigned int WrapMode2GL(WrapMode mode);
    static unsigned int PixelStoreMode2GL(PixelStoreMode mode);
    static unsigned int Target2GL(Target target);
    static unsigned int TargetBinding2GL(TargetBinding binding);
    static Filter GL2Filter(unsigned int token);
    static InternalFormat GL2InternalFormat(unsigned int token);
    static Format GL2Format(unsigned int token);
    static Type GL2Type(unsigned int token);
    static WrapMode GL2WrapMode(unsigned int token);
    static PixelStoreMode GL2PixelStoreMode(unsigned int token);
    /// Not for the two array targets.
    static Target GL2Target(unsigned int token);
    /// Not for the two array targets.
    static TargetBinding GL2TargetBinding(unsigned int token);
    /// @}

protected:
    /// Generates the name, and neither binds it nor allocates storage. Sizes of level 0 in texels.
    /// @throws InternalException "Texture:: contructor failed to allocate new GPU texture resource"
    Texture(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
            std::uint64_t height, std::uint64_t depth);

    /// Saves the pixel store state on GL's stack, and sets the alignment of rows that are read back
    /// (`GL_PACK_ALIGNMENT`) or passed to GL (`GL_UNPACK_ALIGNMENT`). popPixelTransferModes() ends it.
    /// @param bytes  1, 2, 4 or 8
    /// @throws InternalException "Invalid row byte alignment (must be of 1, 2, 4, or 8)."; nothing is
    ///         saved then
    static void pushAndSetReadbackByteAlignment(unsigned int bytes);
    static void pushAndSetTransferByteAlignment(unsigned int bytes);
    static void popPixelTransferModes();

    /// Does nothing: the place for a check that this texture is bound.
    void verifyCurrentTextureObject() const {}

    std::uint64_t baseDepth() const { return depth_; } ///< Of level 0.

private:
    InternalFormat internalFormat_;
    std::uint64_t width_;
    std::uint64_t height_;
    std::uint64_t depth_;
    mutable std::uint64_t sizeInBytes_; // all bits set: not computed yet
};

} // namespace ZLT::OGL
