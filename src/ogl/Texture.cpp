#include "ogl/Texture.h"

#include "extensionator/ExtensionManager.h"
#include "extensionator/TextureState.h"
#include "extensionator/TokenName.h"
#include "ogl/internal/Composed.h"
#include "ogl/internal/TokenMap.h"
#include "platform/GL.h"
#include "zlt/core/Enforce.h"

#include <iterator>
#include <limits>

namespace ZLT::OGL {

namespace {

using internal::tokenMap;

constexpr std::uint64_t notComputed = std::numeric_limits<std::uint64_t>::max();

// The bytes of a channel, where they are not whole ones; and the one format that nothing was entered for.
constexpr unsigned int unknown = 0;
constexpr unsigned int unsized = ~0u;

struct StoredFormat {
    unsigned int token;
    unsigned int channels;
    unsigned int bytesPerChannel;
};
constexpr StoredFormat storedFormats[] = {
    {GL_ALPHA, 1, 1},
    {GL_ALPHA4, 1, unknown},
    {GL_ALPHA8, 1, 1},
    {GL_ALPHA12, 1, unknown},
    {GL_ALPHA16, 1, 2},
    {GL_LUMINANCE, 1, 1},
    {GL_LUMINANCE4, 1, unknown},
    {GL_LUMINANCE8, 1, 1},
    {GL_LUMINANCE12, 1, unknown},
    {GL_LUMINANCE16, 1, 2},
    {GL_LUMINANCE_ALPHA, 2, 1},
    {GL_LUMINANCE4_ALPHA4, 2, unknown},
    {GL_LUMINANCE6_ALPHA2, 2, unknown},
    {GL_LUMINANCE8_ALPHA8, 2, 1},
    {GL_LUMINANCE12_ALPHA4, 2, unknown},
    {GL_LUMINANCE12_ALPHA12, 2, unknown},
    {GL_LUMINANCE16_ALPHA16, 2, 2},
    {GL_INTENSITY, 1, 1},
    {GL_INTENSITY4, 1, unknown},
    {GL_INTENSITY8, 1, 1},
    {GL_INTENSITY12, 1, unknown},
    {GL_INTENSITY16, 1, 2},
    {GL_R3_G3_B2, 3, unknown},
    {GL_RGB, 3, 1},
    {GL_RGB4, 0, unsized},
    {GL_RGB5, 3, unknown},
    {GL_RGB8, 3, 1},
    {GL_RGB10, 3, unknown},
    {GL_RGB12, 3, unknown},
    {GL_RGB16, 3, 2},
    {GL_RGBA, 4, 1},
    {GL_RGBA2, 4, unknown},
    {GL_RGBA4, 4, unknown},
    {GL_RGB5_A1, 4, unknown},
    {GL_RGBA8, 4, 1},
    {GL_RGB10_A2, 4, unknown},
    {GL_RGBA12, 4, unknown},
    {GL_RGBA16, 4, 2},
    {GL_RGBA32F, 4, 4},
    {GL_RGB32F, 3, 4},
    {GL_ALPHA_FLOAT32_APPLE, 1, 4},
    {GL_INTENSITY_FLOAT32_APPLE, 1, 4},
    {GL_LUMINANCE_FLOAT32_APPLE, 1, 4},
    {GL_LUMINANCE_ALPHA_FLOAT32_APPLE, 2, 4},
    {GL_RGBA16F, 4, 2},
    {GL_RGB16F, 3, 2},
    {GL_ALPHA_FLOAT16_APPLE, 1, 2},
    {GL_INTENSITY_FLOAT16_APPLE, 1, 2},
    {GL_LUMINANCE_FLOAT16_APPLE, 1, 2},
    {GL_LUMINANCE_ALPHA_FLOAT16_APPLE, 2, 2},
};

constexpr auto internalFormats = [] {
    unsigned int tokens[std::size(storedFormats)] = {};
    for (std::size_t i = 0; i < std::size(storedFormats); ++i)
        tokens[i] = storedFormats[i].token;
    return tokenMap<Texture::InternalFormat>(
        __LINE__, "!\"InternalFormat enums are not all properly translated.\"", tokens);
}();
constexpr auto filters =
    tokenMap<Texture::Filter>(__LINE__, "!\"Filter enums are not all properly translated.\"",
                              {GL_NEAREST, GL_LINEAR, GL_NEAREST_MIPMAP_NEAREST, GL_LINEAR_MIPMAP_NEAREST,
                               GL_NEAREST_MIPMAP_LINEAR, GL_LINEAR_MIPMAP_LINEAR});
constexpr auto wrapModes = tokenMap<Texture::WrapMode>(
    __LINE__, "!\"WrapMode enums are not all properly translated.\"",
    {GL_CLAMP, GL_CLAMP_TO_BORDER, GL_CLAMP_TO_EDGE, GL_MIRRORED_REPEAT, GL_REPEAT});
constexpr auto formats =
    tokenMap<Texture::Format>(__LINE__, "!\"Format enums are not all properly translated.\"",
                              {GL_COLOR_INDEX, GL_RED, GL_GREEN, GL_BLUE, GL_ALPHA, GL_RGB, GL_BGR, GL_RGBA,
                               GL_BGRA, GL_LUMINANCE, GL_LUMINANCE_ALPHA});
constexpr auto types = tokenMap<Texture::Type>(__LINE__, "!\"Type enums are not all properly translated.\"",
                                               {GL_UNSIGNED_BYTE,
                                                GL_BYTE,
                                                GL_BITMAP,
                                                GL_UNSIGNED_SHORT,
                                                GL_SHORT,
                                                GL_UNSIGNED_INT,
                                                GL_INT,
                                                GL_FLOAT,
                                                GL_UNSIGNED_BYTE_3_3_2,
                                                GL_UNSIGNED_BYTE_2_3_3_REV,
                                                GL_UNSIGNED_SHORT_5_6_5,
                                                GL_UNSIGNED_SHORT_5_6_5_REV,
                                                GL_UNSIGNED_SHORT_4_4_4_4,
                                                GL_UNSIGNED_SHORT_4_4_4_4_REV,
                                                GL_UNSIGNED_SHORT_5_5_5_1,
                                                GL_UNSIGNED_SHORT_1_5_5_5_REV,
                                                GL_UNSIGNED_INT_8_8_8_8,
                                                GL_UNSIGNED_INT_8_8_8_8_REV,
                                                GL_UNSIGNED_INT_10_10_10_2,
                                                GL_UNSIGNED_INT_2_10_10_10_REV,
                                                GL_HALF_APPLE});
constexpr auto pixelStoreModes = tokenMap<Texture::PixelStoreMode>(
    __LINE__, "!\"PixelStoreMode enums are not all properly translated.\"",
    {GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST, GL_PACK_ROW_LENGTH, GL_PACK_IMAGE_HEIGHT, GL_PACK_SKIP_PIXELS,
     GL_PACK_SKIP_ROWS, GL_PACK_SKIP_IMAGES, GL_PACK_ALIGNMENT, GL_UNPACK_SWAP_BYTES, GL_UNPACK_LSB_FIRST,
     GL_UNPACK_ROW_LENGTH, GL_UNPACK_IMAGE_HEIGHT, GL_UNPACK_SKIP_PIXELS, GL_UNPACK_SKIP_ROWS,
     GL_UNPACK_SKIP_IMAGES, GL_UNPACK_ALIGNMENT});
constexpr auto targets =
    tokenMap<Texture::Target>(__LINE__, "!\"Target enums are not all properly translated.\"",
                              {GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_1D_ARRAY,
                               GL_TEXTURE_2D_ARRAY, GL_TEXTURE_RECTANGLE_ARB});
// The text names the targets here too.
constexpr auto targetBindings = tokenMap<Texture::TargetBinding>(
    __LINE__, "!\"Target enums are not all properly translated.\"",
    {GL_TEXTURE_BINDING_1D, GL_TEXTURE_BINDING_2D, GL_TEXTURE_BINDING_3D, GL_TEXTURE_BINDING_1D_ARRAY,
     GL_TEXTURE_BINDING_2D_ARRAY, GL_TEXTURE_BINDING_RECTANGLE_ARB});

// By Format.
constexpr std::uint64_t channelCounts[] = {1, 1, 1, 1, 1, 3, 3, 4, 4, 1, 2};

constexpr const char* notSized = "InternalFormat enums are not all properly sized.";

const StoredFormat& stored(Texture::InternalFormat format) {
    const auto ordinal = static_cast<std::size_t>(format);
    if (ordinal >= std::size(storedFormats) || storedFormats[ordinal].bytesPerChannel == unsized)
        ZLT_RAISE(notSized);
    return storedFormats[ordinal];
}

// Array textures came later than these tables' inverses, which refuse them.
template <class Map>
auto withoutArrays(const Map& map, unsigned int token) {
    const auto value = map.fromGL(token);
    const auto target = static_cast<Texture::Target>(value);
    if (target == Texture::Target::TEXTURE_1D_ARRAY || target == Texture::Target::TEXTURE_2D_ARRAY)
        map.raise();
    return value;
}

void pushWithAlignment(unsigned int parameter, unsigned int bytes) {
    if (bytes != 1 && bytes != 2 && bytes != 4 && bytes != 8)
        ZLT_RAISE("Invalid row byte alignment (must be of 1, 2, 4, or 8).");
    glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT);
    glPixelStorei(parameter, static_cast<GLint>(bytes));
}

} // namespace

Texture::Texture(Target target, TargetBinding binding, InternalFormat format, std::uint64_t width,
                 std::uint64_t height, std::uint64_t depth)
    : Object(Target2GL(target), TargetBinding2GL(binding)), internalFormat_(format), width_(width),
      height_(height), depth_(depth), sizeInBytes_(notComputed) {
    glGenTextures(1, &n_ObjectID);
    if (n_ObjectID == 0)
        ZLT_RAISE("Texture:: contructor failed to allocate new GPU texture resource");
}

Texture::~Texture() noexcept { glDeleteTextures(1, &n_ObjectID); }

std::uint64_t Texture::width(unsigned int level) const { return width_ >> (level & 63); }
std::uint64_t Texture::height(unsigned int level) const { return height_ >> (level & 63); }
std::uint64_t Texture::depth(unsigned int level) const { return depth_ >> (level & 63); }

std::uint64_t Texture::channels() const { return Channels(internalFormat_); }

int Texture::sizeInBytes() const {
    if (sizeInBytes_ == notComputed)
        sizeInBytes_ = SizeInBytes(internalFormat_, width_, height_, depth_);
    return static_cast<int>(sizeInBytes_);
}

void Texture::setFilter(Filter minFilter, Filter magFilter) {
    verifyCurrentTextureObject();
    const unsigned int minification = Filter2GL(minFilter);
    const unsigned int magnification = Filter2GL(magFilter);
    glTexParameteri(target(), GL_TEXTURE_MIN_FILTER, static_cast<GLint>(minification));
    glTexParameteri(target(), GL_TEXTURE_MAG_FILTER, static_cast<GLint>(magnification));
}

void Texture::setBorderColor(const float* rgba) {
    verifyCurrentTextureObject();
    glTexParameterfv(target(), GL_TEXTURE_BORDER_COLOR, rgba);
}

void Texture::enableAutoMIPGeneration(bool on) {
    verifyCurrentTextureObject();
    glTexParameteri(target(), GL_GENERATE_MIPMAP, on ? 1 : 0);
}

bool Texture::IsTargetSupported(unsigned int glTarget) { return TextureState::IsTargetSupported(glTarget); }

bool Texture::supportsAutoMIPGeneration() {
    const ExtensionManager* current = ExtensionManager::Instance();
    // A version of 3 or more isn't asked: `glGenerateMipmap` is in its place there.
    return current->isSupported(GL_SGIS_GENERATE_MIPMAP) ||
           (current->majorVersion() == 1 && current->minorVersion() >= 4) || current->majorVersion() == 2;
}

std::uint64_t Texture::Channels(InternalFormat format) { return stored(format).channels; }

std::uint64_t Texture::Channels(Format format) {
    const auto ordinal = static_cast<std::size_t>(format);
    if (ordinal >= std::size(channelCounts))
        ZLT_RAISE(notSized); // it says InternalFormat for a Format as well
    return channelCounts[ordinal];
}

std::uint64_t Texture::SizeInBytes(InternalFormat format, std::uint64_t width, std::uint64_t height,
                                   std::uint64_t depth) {
    const StoredFormat& texel = stored(format);
    // The number of the enumerator is looked up as if it were a token; tools know the names that come of it.
    if (texel.bytesPerChannel == unknown)
        ZLT_RAISE(internal::composed("Texture::SizeInBytes Unknown color channels for format ",
                                     TokenName(static_cast<unsigned int>(format)))
                      .c_str());
    return std::uint64_t(texel.channels) * texel.bytesPerChannel * width * height * depth;
}

unsigned int Texture::Filter2GL(Filter filter) { return filters.toGL(filter); }
unsigned int Texture::InternalFormat2GL(InternalFormat format) { return internalFormats.toGL(format); }
unsigned int Texture::Format2GL(Format format) { return formats.toGL(format); }
unsigned int Texture::Type2GL(Type type) { return types.toGL(type); }
unsigned int Texture::WrapMode2GL(WrapMode mode) { return wrapModes.toGL(mode); }
unsigned int Texture::PixelStoreMode2GL(PixelStoreMode mode) { return pixelStoreModes.toGL(mode); }
unsigned int Texture::Target2GL(Target target) { return targets.toGL(target); }
unsigned int Texture::TargetBinding2GL(TargetBinding binding) { return targetBindings.toGL(binding); }
Texture::Filter Texture::GL2Filter(unsigned int token) { return filters.fromGL(token); }
Texture::InternalFormat Texture::GL2InternalFormat(unsigned int token) {
    return internalFormats.fromGL(token);
}
Texture::Format Texture::GL2Format(unsigned int token) { return formats.fromGL(token); }
Texture::Type Texture::GL2Type(unsigned int token) { return types.fromGL(token); }
Texture::WrapMode Texture::GL2WrapMode(unsigned int token) { return wrapModes.fromGL(token); }
Texture::PixelStoreMode Texture::GL2PixelStoreMode(unsigned int token) {
    return pixelStoreModes.fromGL(token);
}
Texture::Target Texture::GL2Target(unsigned int token) { return withoutArrays(targets, token); }
Texture::TargetBinding Texture::GL2TargetBinding(unsigned int token) {
    return withoutArrays(targetBindings, token);
}

void Texture::pushAndSetReadbackByteAlignment(unsigned int bytes) {
    pushWithAlignment(GL_PACK_ALIGNMENT, bytes);
}
void Texture::pushAndSetTransferByteAlignment(unsigned int bytes) {
    pushWithAlignment(GL_UNPACK_ALIGNMENT, bytes);
}
void Texture::popPixelTransferModes() { glPopClientAttrib(); }

} // namespace ZLT::OGL
