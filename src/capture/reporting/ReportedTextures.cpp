// Textures as pictures.

#include "capture/CallText.h"
#include "capture/PixelState.h"
#include "capture/TextureBinding.h"
#include "capture/reporting/DriverSentences.h"
#include "capture/reporting/ReportState.h"
#include "capture/reporting/Shrink.h"

#include <algorithm>
#include <cmath>

namespace ZLT::Capture {

using namespace Reporting;

namespace {

constexpr int thumbnailSize = 192;
constexpr std::uint64_t mostTexturePictures = 600;
constexpr std::uint64_t largestImage = 1 << 26; // pixels that are read at once

struct TargetRow {
    const char* name;
    std::uint32_t target;
    int dimensions;
};
constexpr TargetRow targets[] = {{"GL_TEXTURE_1D", GL_TEXTURE_1D, 1},
                                 {"GL_TEXTURE_2D", GL_TEXTURE_2D, 2},
                                 {"GL_TEXTURE_3D", GL_TEXTURE_3D, 3},
                                 {"GL_TEXTURE_CUBE_MAP", GL_TEXTURE_CUBE_MAP, 2},
                                 {"GL_TEXTURE_RECTANGLE_ARB", GL_TEXTURE_RECTANGLE_ARB, 2},
                                 {"GL_TEXTURE_1D_ARRAY", GL_TEXTURE_1D_ARRAY, 2},
                                 {"GL_TEXTURE_2D_ARRAY", GL_TEXTURE_2D_ARRAY, 3}};

int ask(std::uint32_t target, int level, std::uint32_t name) {
    GLint value = 0;
    glGetTexLevelParameteriv(target, level, name, &value);
    return value;
}

void forgetErrors() {
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i)
        continue;
    takeSentences();
}

// The texture is bound for a time.
class Bound {
public:
    Bound(const CapturedContext& context, const TargetRow& row, std::uint32_t texture)
        : target_(row.target),
          before_(static_cast<std::uint32_t>(context.integer(textureBindingOf(row.target)))) {
        glBindTexture(target_, texture);
    }
    ~Bound() { glBindTexture(target_, before_); }
    Bound(const Bound&) = delete;
    Bound& operator=(const Bound&) = delete;

private:
    std::uint32_t target_, before_;
};

// Bits of a pixel as the driver has it, and what it is made of.
struct PixelBits {
    int bits = 0, depth = 0;
    bool isInteger = false, hasAlpha = false;
};

PixelBits bitsOf(const CapturedContext& context, std::uint32_t target) {
    PixelBits pixel;
    std::vector<std::uint32_t> sizes = {GL_TEXTURE_RED_SIZE, GL_TEXTURE_GREEN_SIZE, GL_TEXTURE_BLUE_SIZE,
                                        GL_TEXTURE_ALPHA_SIZE};
    if (!context.isCore) {
        sizes.push_back(GL_TEXTURE_LUMINANCE_SIZE);
        sizes.push_back(GL_TEXTURE_INTENSITY_SIZE);
        pixel.hasAlpha = ask(target, 0, GL_TEXTURE_INTENSITY_SIZE) > 0;
    }
    pixel.hasAlpha = pixel.hasAlpha || ask(target, 0, GL_TEXTURE_ALPHA_SIZE) > 0;
    for (const std::uint32_t size : sizes)
        pixel.bits += ask(target, 0, size);
    if (context.isVersion(1, 4) || context.has("GL_ARB_depth_texture"))
        pixel.depth = ask(target, 0, GL_TEXTURE_DEPTH_SIZE);
    pixel.bits += pixel.depth;
    if (context.isVersion(3, 0)) {
        pixel.bits += ask(target, 0, GL_TEXTURE_STENCIL_SIZE);
        for (const std::uint32_t type : {GL_TEXTURE_RED_TYPE, GL_TEXTURE_ALPHA_TYPE})
            if (const int its = ask(target, 0, type); its == GL_INT || its == GL_UNSIGNED_INT)
                pixel.isInteger = true;
    }
    forgetErrors();
    return pixel;
}

// What was read, with a value for each component, as bytes between its smallest and largest ones.
void spread(const std::vector<float>& values, std::size_t components, std::vector<unsigned char>& pixels) {
    float least = INFINITY, most = -INFINITY;
    for (const float value : values)
        if (std::isfinite(value)) {
            least = std::min(least, value);
            most = std::max(most, value);
        }
    const float scale = most > least ? 255 / (most - least) : 0;
    for (std::size_t i = 0; i < values.size() / components; ++i)
        for (std::size_t channel = 0; channel < 4; ++channel) {
            const float value = values[i * components + (components == 4 ? channel : 0)];
            pixels[i * 4 + channel] =
                channel == 3 ? 255
                             : static_cast<unsigned char>(std::isfinite(value) ? (value - least) * scale : 0);
        }
}

// One image of the texture; of one with layers a few of them, one above the other.
bool readImage(const CapturedContext& context, std::uint32_t target, int level, const PixelBits& bits,
               int layers, Picture& picture) {
    const int width = ask(target, level, GL_TEXTURE_WIDTH), height = ask(target, level, GL_TEXTURE_HEIGHT);
    const int rows = std::max(height, 1) * std::max(layers, 1);
    const std::uint64_t count = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(rows);
    if (width <= 0 || count > largestImage)
        return false;
    picture.width = width;
    picture.height = rows;
    picture.pixels.assign(count * 4, 0);
    const PlainTransfer transfer(context);
    const PlainPacking packing(context);
    if (bits.depth > 0) {
        std::vector<float> values(count);
        glGetTexImage(target, level, GL_DEPTH_COMPONENT, GL_FLOAT, values.data());
        spread(values, 1, picture.pixels);
    } else if (bits.isInteger) {
        std::vector<std::int32_t> numbers(count * 4);
        glGetTexImage(target, level, GL_RGBA_INTEGER, GL_INT, numbers.data());
        spread(std::vector<float>(numbers.begin(), numbers.end()), 4, picture.pixels);
    } else {
        glGetTexImage(target, level, GL_RGBA, GL_UNSIGNED_BYTE, picture.pixels.data());
    }
    return glGetError() == GL_NO_ERROR;
}

// Rows above others, as high as both.
void append(Picture& picture, const Picture& other) {
    if (picture.pixels.empty()) {
        picture = other;
        return;
    }
    if (picture.width != other.width)
        return;
    picture.height += other.height;
    picture.pixels.insert(picture.pixels.end(), other.pixels.begin(), other.pixels.end());
}

} // namespace

void ReportState::readTexture(ReportedTexture& texture, Playing::Context& context) {
    const CapturedContext& facts = context.facts;
    const auto* const row = std::ranges::find(targets, texture.target,
                                              [](const TargetRow& one) { return std::string(one.name); });
    const auto name =
        CapturePlay::tableOf(context, ObjectKind::Texture).find(ObjectKind::Texture, texture.name);
    if (texture.target.empty()) {
        texture.note = "It was never bound.";
        return;
    }
    if (row == std::end(targets) || !name) {
        texture.note = "Textures of this target have no picture.";
        return;
    }
    const bool isRoom =
        facts.isCore || facts.integer(GL_ATTRIB_STACK_DEPTH) < facts.integer(GL_MAX_ATTRIB_STACK_DEPTH);
    if (!facts.mayAsk() || facts.isCompiling || !isRoom) {
        texture.note = "It could not be read when it went.";
        return;
    }
    forgetErrors();
    const Bound bound(facts, *row, static_cast<std::uint32_t>(*name));
    const bool isCube = row->target == GL_TEXTURE_CUBE_MAP;
    const std::uint32_t first = isCube ? GL_TEXTURE_CUBE_MAP_POSITIVE_X : row->target;
    texture.width = ask(first, 0, GL_TEXTURE_WIDTH);
    texture.height = ask(first, 0, GL_TEXTURE_HEIGHT);
    texture.depth = row->dimensions == 3 ? ask(first, 0, GL_TEXTURE_DEPTH) : 1;
    if (texture.width <= 0) {
        texture.note = "It has no image.";
        forgetErrors();
        return;
    }
    const auto format = static_cast<std::uint32_t>(ask(first, 0, GL_TEXTURE_INTERNAL_FORMAT));
    texture.format = format <= 4 ? std::to_string(format) : tokenText(format);
    const PixelBits bits = bitsOf(facts, first);
    const bool isCompressed = facts.isVersion(1, 3) && ask(first, 0, GL_TEXTURE_COMPRESSED) != 0;
    const int faces = isCube ? 6 : 1;
    int shown = 0;
    texture.bytes = 0;
    for (texture.levels = 0; texture.levels < 20; ++texture.levels) {
        const int width = ask(first, texture.levels, GL_TEXTURE_WIDTH);
        const int height = ask(first, texture.levels, GL_TEXTURE_HEIGHT);
        const int depth = row->dimensions == 3 ? ask(first, texture.levels, GL_TEXTURE_DEPTH) : 1;
        if (glGetError() != GL_NO_ERROR || width <= 0)
            break;
        // Large enough to be seen, and not larger than it needs to be.
        if (std::max(width, height) >= thumbnailSize)
            shown = texture.levels;
        const auto pixels = static_cast<std::uint64_t>(width) *
                            static_cast<std::uint64_t>(std::max(height, 1)) *
                            static_cast<std::uint64_t>(std::max(depth, 1));
        texture.bytes +=
            static_cast<std::uint64_t>(faces) *
            (isCompressed
                 ? static_cast<std::uint64_t>(ask(first, texture.levels, GL_TEXTURE_COMPRESSED_IMAGE_SIZE))
                 : pixels * static_cast<std::uint64_t>(bits.bits) / 8);
    }
    forgetErrors();
    if (!options.encode)
        return;
    if (texturePictures_ >= mostTexturePictures) {
        texture.note = "There are too many textures to show all.";
        return leaveOut("Of the textures only the first 600 have pictures.");
    }
    Picture picture;
    for (int face = 0; face < faces; ++face) {
        Picture image;
        const int layers = row->dimensions == 3 ? ask(first, shown, GL_TEXTURE_DEPTH) : 1;
        if (!readImage(facts, first + static_cast<std::uint32_t>(face), shown, bits, layers, image)) {
            texture.note = "It is too large, or could not be read.";
            forgetErrors();
            return;
        }
        append(picture, image);
    }
    if (picture.height == 1) { // a line is nothing to see
        Picture band{picture.width, 16, {}};
        for (int i = 0; i < band.height; ++i)
            band.pixels.insert(band.pixels.end(), picture.pixels.begin(), picture.pixels.end());
        picture = std::move(band);
    }
    bool hasAlpha = false;
    for (std::size_t i = 3; bits.hasAlpha && i < picture.pixels.size() && !hasAlpha; i += 4)
        hasAlpha = picture.pixels[i] != 255;
    ++texturePictures_;
    texture.picture = encoded(shrunk(picture, thumbnailSize), hasAlpha);
}

} // namespace ZLT::Capture
