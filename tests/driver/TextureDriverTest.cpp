// Textures on the real driver: what goes in comes out.

#include "DriverObjects.h"

#include <bit>
#include <cmath>
#include <sstream>
#include <string_view>

using namespace ZLT::OGL;

namespace {

class TextureDriverTest : public StartedWithContext {};

// What internal formats hold: a letter for each channel, and its bits. Drivers give unsized ones 8.
constexpr const char* stored =
    "A8 A4 A8 A12 A16 L8 L4 L8 L12 L16 L8A8 L4A4 L6A2 L8A8 L12A4 L12A12 L16A16 I8 I4 I8 I12 I16 R3G3B2 "
    "R8G8B8 R4G4B4 R5G5B5 R8G8B8 R10G10B10 R12G12B12 R16G16B16 R8G8B8A8 R2G2B2A2 R4G4B4A4 R5G5B5A1 "
    "R8G8B8A8 R10G10B10A2 R12G12B12A12 R16G16B16A16 R32G32B32A32 R32G32B32 A32 I32 L32 L32A32 "
    "R16G16B16A16 R16G16B16 A16 I16 L16 L16A16";
// Luminance and intensity take the place of red.
std::size_t slotOf(char letter) { return letter == 'G' ? 1 : letter == 'B' ? 2 : letter == 'A' ? 3 : 0; }
// The same letters for formats of client memory, in the order of the enumeration.
constexpr const char* channelsOf[] = {"", "R", "G", "B", "A", "RGB", "BGR", "RGBA", "BGRA", "L", "LA"};

// How client memory holds a pixel: unsigned, signed or floating values; or one word with a field for each
// channel, the first one in the highest bits, or reversed in the lowest.
struct Coding {
    Type type;
    unsigned bytes; // of a value or the word
    char kind;
    std::vector<unsigned> fields = {}; // none: values
    bool reversed = false;

    unsigned bits(std::size_t channel) const { return fields.empty() ? 8 * bytes : fields.at(channel); }
    // The lowest bit of a channel in all the pixels.
    std::size_t bit(std::size_t sample, std::size_t channels) const {
        if (fields.empty())
            return sample * 8 * bytes;
        const auto own = fields.begin() + std::ptrdiff_t(sample % channels);
        const unsigned below = std::accumulate(fields.begin(), own, 0u);
        return sample / channels * 8 * bytes + (reversed ? below : 8 * bytes - below - *own);
    }
};
std::vector<Coding> allCodings() {
    std::vector<Coding> result = {{Type::UNSIGNED_BYTE, 1, 'u'}, {Type::UNSIGNED_SHORT, 2, 'u'},
                                  {Type::UNSIGNED_INT, 4, 'u'},  {Type::BYTE, 1, 's'},
                                  {Type::SHORT, 2, 's'},         {Type::INT, 4, 's'},
                                  {Type::FLOAT, 4, 'f'},         {Type::HALF_APPLE, 2, 'f'}};
    unsigned type = unsigned(Type::UNSIGNED_BYTE_3_3_2); // each one's reversed type follows it
    const auto add = [&](unsigned bytes, const std::vector<unsigned>& fields) {
        result.push_back({Type(type++), bytes, 'u', fields, false});
        result.push_back({Type(type++), bytes, 'u', fields, true});
    };
    add(1, {3, 3, 2}), add(2, {5, 6, 5}), add(2, {4, 4, 4, 4}), add(2, {5, 5, 5, 1});
    add(4, {8, 8, 8, 8}), add(4, {10, 10, 10, 2});
    return result;
}

double largest(unsigned bits) { return std::ldexp(1.0, int(bits)) - 1; }

Texels numbered(const Box& box, std::uint32_t from) {
    Texels result(box.count());
    std::ranges::generate(result, [&] { return from += 0x01030507; });
    return result;
}
void paste(Texels& image, const Box& size, const Box& box, const Texels& part) {
    for (std::size_t i = 0; i < part.size(); ++i) {
        const std::size_t x = box.x + i % box.w, y = box.y + i / box.w % box.h;
        const std::size_t z = box.z + i / box.w / box.h;
        image[(z * size.h + y) * size.w + x] = part[i];
    }
}

// One of each shape, in a format that holds bytes exactly.
template <class Each>
void eachShape(const Each& each) {
    Texture1D line(Internal::RGBA8, 8, false);
    Texture2D image(Internal::RGBA8, 6, 5, false, nullptr);
    TextureRECT rectangle(Internal::RGBA8, 7, 3, nullptr);
    Texture1DArray lines(Internal::RGBA8, 8, 4, false);
    Texture3D block(Internal::RGBA8, 4, 6, 5, false);
    Texture2DArray images(Internal::RGBA8, 6, 4, 3, false);
    each(line), each(image), each(rectangle), each(lines), each(block), each(images);
}

} // namespace

TEST_F(TextureDriverTest, everyFormatHoldsWhatItIsGiven) {
    int compared = 0, illegal = 0, overflows = 0;
    std::istringstream all(stored);
    std::string channels;
    for (unsigned internal = 0; all >> channels; ++internal) {
        const bool holdsFloats = internal >= unsigned(Internal::RGBA32F);
        Texture2D texture(Internal(internal), 5, 3, false, nullptr);
        const std::string name = TokenName(Texture::InternalFormat2GL(texture.format()));
        bind(texture);
        std::array<unsigned, 4> kept = {};
        std::istringstream each(channels);
        char letter = 0;
        for (int bits = 0, wanted = 0; each >> letter >> wanted; kept[slotOf(letter)] = unsigned(bits)) {
            const auto place = GLenum(std::string_view("RGBALI").find(letter)); // the order of the tokens
            glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_RED_SIZE + place, &bits);
            if (bits < wanted)
                refused(name + " with all its bits", "the driver stores fewer");
        }
        for (std::size_t format = 1; format < std::size(channelsOf); ++format)
            for (const Coding& coding : allCodings()) {
                const std::string_view letters = channelsOf[format];
                const bool isFloat = coding.kind == 'f', isSigned = coding.kind == 's';
                // Any bytes, without signs, and with floats below 1.
                std::vector<std::uint8_t> given(15 * 16), read(15 * 16);
                for (std::size_t i = 0; i < given.size(); ++i) {
                    const unsigned any = i * 151 % (isSigned ? 128 : 256),
                                   top = coding.bytes == 4 ? 0x3D : 0x3A;
                    given[i] = std::uint8_t(isFloat && (i + 1) % coding.bytes == 0 ? top + any % 2 : any);
                }
                const auto valueAt = [&](const std::vector<std::uint8_t>& memory, std::size_t i) {
                    const unsigned bits = coding.bits(i % letters.size());
                    std::uint32_t raw = 0;
                    for (std::size_t b = 0, at = coding.bit(i, letters.size()); b < bits; ++b, ++at)
                        raw |= std::uint32_t(memory[at / 8] >> at % 8 & 1) << b;
                    if (!isFloat || raw == 0)
                        return raw / largest(bits - isSigned);
                    return bits == 32 ? std::bit_cast<float>(raw)
                                      : std::ldexp(1024 + raw % 1024, int(raw / 1024) - 25);
                };
                texture.subImage(0, 0, 0, 5, 3, Format(format), coding.type, given.data(), {});
                texture.getPixelData(read.data(), 0, Format(format), coding.type, 1);
                const GLenum error = glGetError();
                const std::string what = name + " x " + TokenName(Texture::Format2GL(Format(format))) +
                                         " x " + TokenName(Texture::Type2GL(coding.type));
                if (error == GL_INVALID_OPERATION && !coding.fields.empty())
                    ++illegal;
                else if (error)
                    refused(what, TokenName(error));
                else
                    ++compared;
                std::ostringstream wrong;
                for (std::size_t i = 0; !error && i < 15 * letters.size(); ++i) {
                    const std::size_t slot = slotOf(letters[i % letters.size()]);
                    const double expected = kept[slot] ? valueAt(given, i) : slot == 3,
                                 value = valueAt(read, i);
                    // The float nearest to the largest one is 2^32, which overflows in the driver.
                    const bool overflow = coding.type == Type::UNSIGNED_INT && !value && expected > 0.5;
                    overflows += overflow;
                    const unsigned bits = coding.bits(i % letters.size()) - isSigned;
                    const bool exact =
                        !kept[slot] || (holdsFloats == isFloat && !isSigned && bits <= kept[slot]);
                    // Drivers round twice.
                    const double tolerance =
                        0.6 / largest(std::min(kept[slot], 10u)) + 1 / largest(std::min(bits, 10u));
                    if (std::abs(value + overflow - expected) > (exact ? 1e-9 : tolerance))
                        wrong << i << ": " << value << ", not " << expected << "; ";
                }
                EXPECT_EQ(wrong.str(), "") << what;
            }
    }
    if (overflows > 0)
        refused("the largest UNSIGNED_INT", std::to_string(overflows) + " values of 1.0 came back as 0");
    std::cout << compared << " combinations compared\n";
    EXPECT_GE(compared, 4000);
    // Packed pixels of 3 channels have one format of 10, those of 4 channels two.
    EXPECT_EQ(illegal, 50 * (4 * 9 + 8 * 8));
}

TEST_F(TextureDriverTest, texelsComeFromMemoryAndFromBuffersToEachEdgeAndCorner) {
    eachShape([]<class T>(T& texture) {
        const Box size = whole(texture);
        Texels image = numbered(size, 1), read = image;
        fill(texture, image);
        for (unsigned place = 0; place < 27; ++place) { // at both ends and between, along each axis
            Box box = {0, 0, 0, 2, std::min<std::size_t>(size.h, 2), std::min<std::size_t>(size.d, 2)};
            box.x = (size.w - box.w) * (place % 3) / 2;
            box.y = (size.h - box.h) * (place / 3 % 3) / 2;
            box.z = (size.d - box.d) * (place / 9) / 2;
            const Texels part = numbered(box, 1000 * place);
            upload(texture, box, part.data());
            paste(image, size, box, part);
            EXPECT_EQ(texelsOf(texture), image) << TokenName(texture.target()) << " " << place;
        }
        // For indices, it says, and is a source of pixels until a destination is wanted.
        const auto bytes = std::int64_t(4 * image.size());
        Buffer buffer(bytes + 4, Buffer::Type::ELEMENT_ARRAY_BUFFER, Buffer::Usage::STREAM_COPY, nullptr);
        EXPECT_TRUE(buffer.isUnpackBuffer());
        download(texture, &buffer, 4);
        EXPECT_TRUE(buffer.isPackBuffer());
        buffer.bind();
        buffer.getSubData(4, bytes, read.data());
        EXPECT_EQ(read, image) << TokenName(texture.target());
        const Texels other = numbered(size, 77);
        buffer.subData(4, bytes, other.data());
        Buffer::bindDefaultPackBuffer();
        upload(texture, size, &buffer, 4u);
        // The shapes of one and of three dimensions hand their own numbers to GL.
        const bool understood = std::is_base_of_v<Texture2, T>;
        EXPECT_EQ(glGetError(), GLenum(understood ? GL_NO_ERROR : GL_INVALID_ENUM));
        EXPECT_EQ(texelsOf(texture), understood ? other : image) << TokenName(texture.target());
    });
}
