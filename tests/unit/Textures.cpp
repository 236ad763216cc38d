#include "ObjectsOnDriver.h"
#include "extensionator/TokenName.h"

#include <algorithm>
#include <sstream>
#include <type_traits>

using namespace ZLT::OGL;
using std::to_string;

namespace {

using enum Texture::Filter;
using enum Texture::Format;
using enum Texture::Type;
using enum Texture::WrapMode;
using Internal = Texture::InternalFormat;

constexpr auto rgba8 = Internal::RGBA8;
const PixelUnpackParameters packed;

// The calls in the life of the texture that was the last, around those for its levels.
std::string lifeOf(const FakeObjects& gl, const std::string& target, std::size_t axes,
                   const std::string& levels, const std::string& end = "",
                   const std::string& clamp = ",CLAMP_TO_EDGE) ") {
    const std::string set = "TexParameteri(" + target + ",", bind = "BindTexture(" + target + ",";
    std::string text = "GenTextures(1,p) " + bind + to_string(gl.nextName - 1) + ") " + levels + set +
                       "MIN_FILTER,NEAREST) " + set + "MAG_FILTER,NEAREST) ";
    for (const char axis : std::string("STR").substr(0, axes))
        text += set + "WRAP_" + axis + clamp;
    return text + end + bind + "77) DeleteTextures(1,p)";
}

// Around a transfer to GL.
const std::string push =
    "PushClientAttrib(1) PixelStorei(UNPACK_SWAP_BYTES,0) PixelStorei(UNPACK_LSB_FIRST,0) "
    "PixelStorei(UNPACK_ROW_LENGTH,0) PixelStorei(UNPACK_SKIP_PIXELS,0) PixelStorei(UNPACK_SKIP_ROWS,0) "
    "PixelStorei(UNPACK_IMAGE_HEIGHT,0) PixelStorei(UNPACK_SKIP_IMAGES,0) PixelStorei(UNPACK_ALIGNMENT,1)";
const std::string pop = " PopClientAttrib()";

struct TextureTest : testing::Test, ObjectsOnDriver {
    TextureTest() { // somebody else's are bound, and have to be bound again
        for (const int query : {0x8068, 0x8069, 0x806A, 0x8C1C, 0x8C1D, 0x84F6})
            gl.integers[query] = 77;
        gl.integers[GL_PIXEL_PACK_BUFFER_BINDING] = 78;
        gl.integers[GL_PIXEL_UNPACK_BUFFER_BINDING] = 79;
    }
};

TEST_F(TextureTest, texturesAllocateTheirLevelsAndRestoreTheBinding) {
    const struct {
        void (*make)();
        std::string target;
        std::size_t axes;
        std::vector<std::string> sizes; // by level
    } rows[] = {{[] { Texture1D(rgba8, 5, true); }, "1D", 1, {"5", "2", "1"}},
                {[] { Texture1D(rgba8, 8, false); }, "1D", 1, {"8"}},
                {[] { Texture2D(rgba8, 4, 1, true, nullptr); }, "2D", 2, {"4,1", "2,1", "1,1"}},
                {[] { Texture2D(rgba8, 2, 5, true, nullptr); }, "2D", 2, {"2,5", "1,2", "1,1"}},
                {[] { TextureRECT(rgba8, 6, 4, nullptr); }, "RECTANGLE_ARB", 2, {"6,4"}},
                {[] { Texture1DArray(rgba8, 2, 6, true); }, "1D_ARRAY", 2, {"2,6", "1,3", "1,1"}},
                {[] { Texture3D(rgba8, 2, 1, 5, true); }, "3D", 3, {"2,1,5", "1,1,2", "1,1,1"}},
                {[] { Texture2DArray(rgba8, 2, 4, 6, false); }, "2D_ARRAY", 3, {"2,4,6"}},
                // Beyond 31 bits.
                {[] { Texture1D(rgba8, 0x80000000, true); }, "1D", 1, {"-2147483648"}},
                {[] { Texture2D(rgba8, 0x80000000, 4, true, nullptr); },
                 "2D",
                 2,
                 {"-2147483648,4", "-1073741824,2", "-536870912,1"}}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.target + ' ' + row.sizes[0]);
        std::string levels;
        for (std::size_t level = 0; level < row.sizes.size(); ++level)
            levels += "TexImage" + to_string(row.axes) + "D(" + row.target + "," + to_string(level) +
                      ",RGBA8," + row.sizes[level] + ",0,BGRA,UNSIGNED_BYTE,null) ";
        row.make();
        EXPECT_CALLS(lifeOf(gl, row.target, row.axes, levels));
    }
    Texture3D(rgba8, 3, 6, 4, 2, RGB, FLOAT, memory, packed); // the parameters aren't applied
    EXPECT_CALLS(lifeOf(gl, "3D", 3, "TexImage3D(3D,3,RGBA8,6,4,2,0,RGB,FLOAT,4096) "));
    EXPECT_EQ(memory, Texture2D(rgba8, 1, 2, true, memory).clientStorage());
    const std::string hint = "TexParameteri(RECTANGLE_ARB,STORAGE_HINT_APPLE,STORAGE_";
    const std::string unpack = "_APPLE) PixelStorei(UNPACK_CLIENT_STORAGE_APPLE,";
    const std::string levels = hint + "CACHED" + unpack +
                               "1) TexImage2D(2D,0,RGBA8,1,2,0,BGRA,UNSIGNED_BYTE,4096) "
                               "TexImage2D(2D,1,RGBA8,1,1,0,BGRA,UNSIGNED_BYTE,4096) ";
    EXPECT_CALLS(lifeOf(gl, "2D", 2, levels, hint + "PRIVATE" + unpack + "0) "));
    gl.nextName = 0;
    EXPECT_FAILURE("!Texture:: contructor failed to allocate new GPU texture resource",
                   Texture1D(rgba8, 1, false));
    EXPECT_CALLS("GenTextures(1,p)");
}

TEST(TextureFallbackTest, texturesDoWithWhatTheDriverHas) {
    const struct {
        const char* name;
        void (*make)();
    } shapes[] = {{"1D 5", [] { Texture1D(rgba8, 5, false); }},
                  {"1D 2^32 + 4", [] { Texture1D(rgba8, 0x100000004, false); }}, // the low 32 bits count
                  {"2D 3 x 4", [] { Texture2D(rgba8, 3, 4, false, nullptr); }},
                  {"2D 4 x 3", [] { Texture2D(rgba8, 4, 3, false, nullptr); }},
                  {"3D 3 x 4", [] { Texture3D(rgba8, 3, 4, 4, false); }},
                  {"3D 4 x 3", [] { Texture3D(rgba8, 4, 3, 4, false); }},
                  {"layers", [] { Texture2DArray(rgba8, 4, 4, 3, false); }},
                  {"level", [] { Texture3D(rgba8, 0, 4, 4, 3, RED, BYTE, nullptr, packed); }},
                  {"3D 4 x 8", [] { Texture3D(rgba8, 4, 8, 16, false); }}};
    const struct {
        const char *version, *extensions;
        std::string refused; // and by which class, or for which function that is missing
        bool generates, rectangles;
    } rows[] = {
        {"1.1", "GL_ARB_texture_non_power_of_two",
         "3D 3 x 4: glTexImage3D, 3D 4 x 3: glTexImage3D, layers: glTexImage3D, "
         "level: glTexImage3D, 3D 4 x 8: glTexImage3D, ",
         false, false},
        {"1.3", "GL_SGIS_generate_mipmap",
         "1D 5: Texture2, 2D 3 x 4: Texture2, 2D 4 x 3: Texture2, 3D 3 x 4: Texture3, "
         "3D 4 x 3: Texture3, layers: Texture3, level: Texture3, ",
         true, false},
        {"1.4", "GL_ARB_texture_rectangle",
         "1D 5: Texture2, 3D 3 x 4: Texture3, 3D 4 x 3: Texture3, layers: Texture3, level: Texture3, ", true,
         true},
        {"2.1", "", "", true, false},
        {"3.0", "", "", false, false}};
    const std::string rule = "::ctor hardware only supports power of two textures";
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string(row.version) + ' ' + row.extensions);
        ObjectsOnDriver world(row.version, row.extensions);
        std::string refused;
        for (const auto& [name, make] : shapes) {
            const std::string text = failureOf(make);
            for (const std::string by : {"Texture2", "Texture3", "glTexImage3D"})
                if (text == '!' + by + rule || text == "!The current context has no " + by)
                    refused += name + (": " + by) + ", ";
            EXPECT_EQ(text.empty(), world.calls() != "GenTextures(1,p) DeleteTextures(1,p)") << name;
        }
        EXPECT_EQ(row.refused, refused);
        EXPECT_EQ(row.generates, Texture::supportsAutoMIPGeneration());
        EXPECT_EQ(row.rectangles, TextureRECT::isSupported());
        world.gl.integers[GL_TEXTURE_BINDING_2D] = 77;
        Texture2D(rgba8, 1, 1, true, memory);
        EXPECT_EQ(lifeOf(world.gl, "2D", 2, "TexImage2D(2D,0,RGBA8,1,1,0,BGRA,UNSIGNED_BYTE,4096) ", "",
                         &row == rows ? ",CLAMP) " : ",CLAMP_TO_EDGE) "),
                  world.calls());
    }
}

TEST_F(TextureTest, sizesAreHalvedByLevelButNotTheLayers) {
    const Texture3D cube(Internal::RGB16F, 8, 4, 2, false);
    const Texture2DArray layers(rgba8, 8, 4, 6, false);
    const Texture1DArray rows(rgba8, 8, 6, false); // its layers are a height, which is halved
    const struct {
        const char* name;
        const Texture& texture;
        std::vector<std::string> sizes; // of the levels 0, 1, 4 and 64
    } shapes[] = {{"3D", cube, {"8 x 4 x 2", "4 x 2 x 1", "0 x 0 x 0", "8 x 4 x 2"}},
                  {"2D array", layers, {"8 x 4 x 6", "4 x 2 x 6", "0 x 0 x 6", "8 x 4 x 6"}},
                  {"1D array", rows, {"8 x 6 x 1", "4 x 3 x 1", "0 x 0 x 1", "8 x 6 x 1"}}};
    for (const auto& [name, texture, expected] : shapes) {
        std::vector<std::string> sizes;
        for (const unsigned int level : {0, 1, 4, 64})
            sizes.push_back(to_string(texture.width(level)) + " x " + to_string(texture.height(level)) +
                            " x " + to_string(texture.depth(level)));
        EXPECT_EQ(expected, sizes) << name;
    }
    EXPECT_EQ(8 * 4 * 2 * 3 * 2, cube.sizeInBytes());
    const Texture2D large(Internal::ALPHA, 0x10001, 0x10000, false, nullptr);
    const Texture2D odd(Internal::ALPHA4, 1, 1, false, nullptr);
    const std::string unknown = "!Texture::SizeInBytes Unknown color channels for format GL_CURRENT_BIT";
    for (int times = 0; times < 2; ++times) {
        EXPECT_EQ(0x10000, large.sizeInBytes()) << "the low 32 bits";
        EXPECT_FAILURE(unknown, odd.sizeInBytes());
    }
    EXPECT_EQ(16u * 3 * 2, Texture1D(rgba8, 16, false).pixelDataSize(2, RGB, SHORT));
    EXPECT_EQ(8u * 4, TextureRECT(rgba8, 4, 2, nullptr).pixelDataSize(0, BGRA, BYTE));
    EXPECT_EQ(192u * 2 * 2, layers.pixelDataSize(1, LUMINANCE_ALPHA, HALF_APPLE));
    EXPECT_EQ(64u * 4, cube.pixelDataSize(0, COLOR_INDEX, FLOAT));
    const auto none = Texture::Format(11);
    EXPECT_FAILURE("!pixelDataSize: Unknown type GL_TRIANGLE_STRIP",
                   cube.pixelDataSize(0, RED, UNSIGNED_INT));
    EXPECT_FAILURE("!InternalFormat enums are not all properly sized.", cube.pixelDataSize(0, none, INT));
}

TEST(TextureFormatTest, formatsHaveTheirSizes) {
    const auto nameOf = [](unsigned int token) { return std::string(TokenName(token)).substr(3); };
    const std::string unsized = "!InternalFormat enums are not all properly sized.";
    for (unsigned int i = 0; i < 50; ++i) {
        const auto format = Internal(i);
        const std::string name = nameOf(Texture::InternalFormat2GL(format));
        // The name says how many values a texel has, and with its first number how many bits each of them.
        const auto has = [&](const char* part) { return name.find(part) < name.size(); };
        const std::uint64_t values =
            name[0] == 'R' ? (has("A") ? 4 : 3) : (has("LUMINANCE") && has("ALPHA") ? 2 : 1);
        const std::size_t digits = name.find_first_of("123456789");
        const std::uint64_t bits = digits < name.size() ? std::stoul(name.substr(digits)) : 8;
        const std::string none = name == "RGB4" ? unsized : "";
        const std::string unknown = "!Texture::SizeInBytes Unknown color channels for format ";
        SCOPED_TRACE(name);
        EXPECT_FAILURE(none, EXPECT_EQ(values, Texture::Channels(format)));
        EXPECT_FAILURE(none.empty() && bits % 8 != 0 ? unknown + TokenName(i) : none,
                       EXPECT_EQ(30 * values * bits / 8, Texture::SizeInBytes(format, 2, 3, 5)));
    }
    EXPECT_FAILURE(unsized, Texture::Channels(Internal(50)));
    const char* const ofPixels[] = {
        "COLOR_INDEX 1", "RED 1",  "GREEN 1", "BLUE 1",      "ALPHA 1",          "RGB 3",
        "BGR 3",         "RGBA 4", "BGRA 4",  "LUMINANCE 1", "LUMINANCE_ALPHA 2"};
    for (unsigned int i = 0; i < std::size(ofPixels); ++i)
        EXPECT_EQ(ofPixels[i], nameOf(Texture::Format2GL(Texture::Format(i))) + ' ' +
                                   to_string(Texture::Channels(Texture::Format(i))));
}

// `tokens`: the names of all, by their ordinals, without GL_. All come back by theirs, but for what is
// `refused`.
template <class Enumeration>
void expectTranslation(unsigned int (*toGL)(Enumeration), Enumeration (*fromGL)(unsigned int),
                       const std::string& name, const std::string& tokens,
                       const std::vector<unsigned int>& refused = {0, 1}) {
    const std::string text = "!!\"" + name + " enums are not all properly translated.\"";
    std::istringstream known(tokens);
    unsigned int count = 0;
    for (std::string expected; known >> expected; ++count) {
        const unsigned int token = toGL(Enumeration(count));
        EXPECT_EQ("GL_" + expected, TokenName(token)) << name << ' ' << count;
        const bool back = std::find(refused.begin(), refused.end(), token) == refused.end();
        EXPECT_TRUE(!back || fromGL(token) == Enumeration(count)) << name << ' ' << expected;
    }
    for (const unsigned int token : refused)
        EXPECT_FAILURE(text, fromGL(token)) << token;
    for (const unsigned int ordinal : {count, ~0u})
        EXPECT_FAILURE(text, toGL(Enumeration(ordinal))) << ordinal;
}
#define EXPECT_TRANSLATION(of, name, ...) expectTranslation(of::name##2GL, of::GL2##name, __VA_ARGS__)

TEST(EnumerationTest, enumerationsTranslateBothWays) {
    using T = Texture;
    EXPECT_TRANSLATION(T, Filter, "Filter",
                       "NEAREST LINEAR NEAREST_MIPMAP_NEAREST LINEAR_MIPMAP_NEAREST NEAREST_MIPMAP_LINEAR "
                       "LINEAR_MIPMAP_LINEAR");
    EXPECT_TRANSLATION(T, InternalFormat, "InternalFormat",
                       "ALPHA ALPHA4 ALPHA8 ALPHA12 ALPHA16 LUMINANCE LUMINANCE4 LUMINANCE8 LUMINANCE12 "
                       "LUMINANCE16 LUMINANCE_ALPHA LUMINANCE4_ALPHA4 LUMINANCE6_ALPHA2 LUMINANCE8_ALPHA8 "
                       "LUMINANCE12_ALPHA4 LUMINANCE12_ALPHA12 LUMINANCE16_ALPHA16 INTENSITY INTENSITY4 "
                       "INTENSITY8 INTENSITY12 INTENSITY16 R3_G3_B2 RGB RGB4 RGB5 RGB8 RGB10 RGB12 RGB16 "
                       "RGBA RGBA2 RGBA4 RGB5_A1 RGBA8 RGB10_A2 RGBA12 RGBA16 RGBA32F RGB32F "
                       "ALPHA_FLOAT32_APPLE INTENSITY_FLOAT32_APPLE LUMINANCE_FLOAT32_APPLE "
                       "LUMINANCE_ALPHA_FLOAT32_APPLE RGBA16F RGB16F ALPHA_FLOAT16_APPLE "
                       "INTENSITY_FLOAT16_APPLE LUMINANCE_FLOAT16_APPLE LUMINANCE_ALPHA_FLOAT16_APPLE",
                       {GL_RGB2_EXT, 0});
    EXPECT_TRANSLATION(T, Format, "Format",
                       "COLOR_INDEX RED GREEN BLUE ALPHA RGB BGR RGBA BGRA LUMINANCE LUMINANCE_ALPHA");
    EXPECT_TRANSLATION(T, Type, "Type",
                       "UNSIGNED_BYTE BYTE BITMAP UNSIGNED_SHORT SHORT UNSIGNED_INT INT FLOAT "
                       "UNSIGNED_BYTE_3_3_2 UNSIGNED_BYTE_2_3_3_REV UNSIGNED_SHORT_5_6_5 "
                       "UNSIGNED_SHORT_5_6_5_REV UNSIGNED_SHORT_4_4_4_4 UNSIGNED_SHORT_4_4_4_4_REV "
                       "UNSIGNED_SHORT_5_5_5_1 UNSIGNED_SHORT_1_5_5_5_REV UNSIGNED_INT_8_8_8_8 "
                       "UNSIGNED_INT_8_8_8_8_REV UNSIGNED_INT_10_10_10_2 UNSIGNED_INT_2_10_10_10_REV "
                       "HALF_APPLE");
    EXPECT_TRANSLATION(T, WrapMode, "WrapMode", "CLAMP CLAMP_TO_BORDER CLAMP_TO_EDGE MIRRORED_REPEAT REPEAT");
    EXPECT_TRANSLATION(T, PixelStoreMode, "PixelStoreMode",
                       "PACK_SWAP_BYTES PACK_LSB_FIRST PACK_ROW_LENGTH PACK_IMAGE_HEIGHT PACK_SKIP_PIXELS "
                       "PACK_SKIP_ROWS PACK_SKIP_IMAGES PACK_ALIGNMENT UNPACK_SWAP_BYTES UNPACK_LSB_FIRST "
                       "UNPACK_ROW_LENGTH UNPACK_IMAGE_HEIGHT UNPACK_SKIP_PIXELS UNPACK_SKIP_ROWS "
                       "UNPACK_SKIP_IMAGES UNPACK_ALIGNMENT");
    // The two arrays don't come back.
    EXPECT_TRANSLATION(T, Target, "Target",
                       "TEXTURE_1D TEXTURE_2D TEXTURE_3D TEXTURE_1D_ARRAY TEXTURE_2D_ARRAY "
                       "TEXTURE_RECTANGLE_ARB",
                       {GL_TEXTURE_1D_ARRAY, GL_TEXTURE_2D_ARRAY, GL_TEXTURE_BINDING_3D});
    EXPECT_TRANSLATION(T, TargetBinding, "Target",
                       "TEXTURE_BINDING_1D TEXTURE_BINDING_2D TEXTURE_BINDING_3D TEXTURE_BINDING_1D_ARRAY "
                       "TEXTURE_BINDING_2D_ARRAY TEXTURE_BINDING_RECTANGLE_ARB",
                       {GL_TEXTURE_BINDING_1D_ARRAY, GL_TEXTURE_BINDING_2D_ARRAY, GL_TEXTURE_2D});
    EXPECT_TRANSLATION(Buffer, Type, "Buffer type",
                       "PIXEL_UNPACK_BUFFER PIXEL_PACK_BUFFER ARRAY_BUFFER ELEMENT_ARRAY_BUFFER");
    EXPECT_TRANSLATION(Buffer, Usage, "Buffer type",
                       "STREAM_DRAW STREAM_READ STREAM_COPY STATIC_DRAW STATIC_READ STATIC_COPY "
                       "DYNAMIC_DRAW DYNAMIC_READ DYNAMIC_COPY",
                       {GL_STREAM_COPY + 1});
    EXPECT_TRANSLATION(TextureUnit, Environment, "Environment", "ADD BLEND COMBINE DECAL MODULATE REPLACE");
}

// A class whose base lets nothing out of its destructor may have them as members: that it compiles is the
// test.
struct Base {
    virtual ~Base() = default;
};
struct Textured : Base {
    Texture1D one;
    Texture1DArray ones;
    Texture2D two;
    Texture2DArray twos;
    Texture3D three;
    TextureRECT rectangle;
};
static_assert(std::is_nothrow_destructible_v<Textured>);

// A texture of each shape and a buffer; of these `two` is bound.
struct TransferTest : TextureTest {
    Texture1D one{rgba8, 8, false};
    Texture2D two{rgba8, 8, 4, false, nullptr};
    Texture3D three{rgba8, 8, 4, 2, false};
    Buffer buffer{16, Buffer::Type::ARRAY_BUFFER, Buffer::Usage::STREAM_READ, nullptr}; // is 8
    TransferTest() {
        gl.integers[GL_TEXTURE_BINDING_2D] = static_cast<int>(two.objectID());
        calls();
    }
    ~TransferTest() noexcept override = default;
};

TEST_F(TransferTest, texelsAreWritten) {
    // Beyond the edge, and more than a level has: for GL to refuse.
    one.subImage(3, 4, 8, BGR, SHORT, memory, packed);
    EXPECT_CALLS(push + " TexSubImage1D(1D,3,4,8,BGR,SHORT,4096)" + pop);
    two.subImage(1, 2, -3, 8, 4, RED, FLOAT, memory, packed);
    EXPECT_CALLS(push + " TexSubImage2D(2D,1,2,-3,8,4,RED,FLOAT,4096)" + pop);
    three.subImage(1, 9, 10, 11, 7, 4, 2, BGRA, INT, memory, packed);
    EXPECT_CALLS(push + " TexSubImage3D(3D,1,9,10,11,7,4,2,BGRA,INT,4096)" + pop);
    one.copyTexSubImage(1, 2, 3, 4, 8); // copies nothing
    two.copyTexSubImage(1, 2, 3, 4, 5, 8, 3);
    three.copyTexSubImage(1, 2, 3, 4, 5, 6, 8, 3);
    EXPECT_CALLS("CopyTexSubImage1D(1D,1,2,4,8,0) CopyTexSubImage2D(2D,1,2,3,4,5,8,3) "
                 "CopyTexSubImage3D(3D,1,2,3,4,5,6,8,3)");
    // From a buffer. Only one shape gives GL its tokens, and one ends in another order.
    const std::string bind = push + " BindBuffer(PIXEL_UNPACK_BUFFER,8) ";
    const std::string other = " BindBuffer(PIXEL_UNPACK_BUFFER,79)";
    one.subImage(1, 2, 8, BGR, SHORT, &buffer, 15, packed);
    EXPECT_CALLS(bind + "TexSubImage1D(1D,1,2,8,6,4,15)" + pop + other);
    buffer.convertToPackBuffer();
    two.subImage(1, 2, 3, 8, 4, BGR, SHORT, &buffer, 7, packed);
    EXPECT_CALLS(bind + "TexSubImage2D(2D,1,2,3,8,4,BGR,SHORT,7)" + other + pop);
    gl.integers[GL_PIXEL_UNPACK_BUFFER_BINDING] = 8; // it may be, in the role that it has to have
    three.subImage(1, 2, 3, 4, 8, 4, 2, BGR, SHORT, &buffer, 5, packed);
    EXPECT_CALLS(bind + "TexSubImage3D(3D,1,2,3,4,8,4,2,6,4,5) BindBuffer(PIXEL_UNPACK_BUFFER,8)" + pop);
}

TEST_F(TransferTest, texelsAreRead) {
    const std::string align = "PixelStorei(PACK_ALIGNMENT,", pushAlign = "PushClientAttrib(1) " + align;
    one.getPixelData(memory, 1, 7, GL_BYTE);
    EXPECT_CALLS("GetTexImage(1D,1,7,BYTE,4096)");
    two.getPixelData(memory, 1, RGB, BYTE, 2);
    EXPECT_CALLS(pushAlign + "2) GetTexImage(2D,1,RGB,BYTE,4096)" + pop);
    three.getPixelData(memory, 2, RGB, BYTE, 8);
    EXPECT_CALLS(pushAlign + "8) GetTexImage(3D,2,RGB,BYTE,4096)" + pop);
    const std::string bind = ") BindBuffer(PIXEL_PACK_BUFFER,8) ";
    const std::string other = " BindBuffer(PIXEL_PACK_BUFFER,78)";
    one.getPixelData(&buffer, 99, 1, 7, GL_BYTE);
    EXPECT_CALLS(align + "1" + bind + "GetTexImage(1D,1,7,BYTE,99)" + other);
    buffer.convertToUnpackBuffer();
    two.getPixelData(&buffer, 12, 1, RGB, BYTE, 4);
    EXPECT_CALLS(pushAlign + "4" + bind + "GetTexImage(2D,1,RGB,BYTE,12)" + other + pop);
    three.getPixelData(&buffer, 12, 1, COLOR_INDEX, BYTE, 1);
    EXPECT_CALLS(pushAlign + "1" + bind + "GetTexImage(3D,1,COLOR_INDEX,BYTE,12)" + other + pop);
}

// Where a rule is broken the later ones are too, that of the buffer's offset last.
TEST_F(TransferTest, regionsAreRefusedInOrder) {
    const auto refusal = [&](auto& texture, auto... at) {
        const std::string text = failureOf([&] { texture.subImage(at..., RED, BYTE, memory, packed); });
        EXPECT_FAILURE(text, texture.subImage(at..., RED, BYTE, &buffer, 16, packed));
        return text;
    };
    const std::string level = "!a negative texture image mip-map level supplied";
    EXPECT_EQ("!error subimage width of zero supplied", refusal(one, -1, 0, 0u));
    EXPECT_EQ(level, refusal(one, -1, 0, 9u));
    EXPECT_EQ("!width(9) is greater than width of image (8) ", refusal(one, 0, 0, 9u));
    EXPECT_EQ("!error subimage width of zero supplied", refusal(two, -1, 0, 0, 0u, 0u));
    EXPECT_EQ("!error subimage height of zero supplied", refusal(two, -1, 0, 0, 9u, 0u));
    EXPECT_EQ("!width(9) is greater than width of image (8) ", refusal(two, 0, 0, 0, 9u, 5u));
    EXPECT_EQ("!height(5) is greater than width of image (4) ", refusal(two, 0, 0, 0, 8u, 5u));
    EXPECT_EQ("!error subimage width  of zero supplied", refusal(three, -1, 0, 0, 0, 0u, 0u, 0u));
    EXPECT_EQ("!error subimage height of zero supplied", refusal(three, -1, 0, 0, 0, 9u, 0u, 0u));
    EXPECT_EQ("!error subimage depth  of zero supplied", refusal(three, -1, 0, 0, 0, 9u, 5u, 0u));
    EXPECT_EQ(level, refusal(three, -1, 0, 0, 0, 9u, 5u, 3u));
    EXPECT_EQ("!width(9) is greater than width  of image (8) ", refusal(three, 0, 0, 0, 0, 9u, 5u, 3u));
    EXPECT_EQ("!height(5) is greater than height of image (4) ", refusal(three, 0, 0, 0, 0, 8u, 5u, 3u));
    EXPECT_EQ("!depth(3) is greater than depth  of image (2) ", refusal(three, 0, 0, 0, 0, 8u, 4u, 3u));
    const auto copying = [&](int mip, std::uint64_t width, std::uint64_t height) {
        const std::string text = failureOf([&] { two.copyTexSubImage(mip, 0, 0, 0, 0, width, height); });
        EXPECT_FAILURE(text, three.copyTexSubImage(mip, 0, 0, 0, 0, 0, width, height));
        return text;
    };
    EXPECT_EQ("!error copySubimage width of zero supplied", copying(-1, 0, 0));
    EXPECT_EQ("!error copySubimage height of zero supplied", copying(-1, 9, 0));
    EXPECT_EQ("!width(9) is greater than width of image (8) ", copying(0, 9, 5));
    EXPECT_EQ("!height(5) is greater than width of image (4) ", copying(0, 8, 5));
    EXPECT_FAILURE("!error copySubimage width of zero supplied", one.copyTexSubImage(-1, 0, 0, 0, 0));
    EXPECT_FAILURE("!width(9) is greater than width of image (8) ", one.copyTexSubImage(0, 0, 0, 0, 9));
    EXPECT_CALLS("");
}

TEST_F(TransferTest, buffersAreRefusedInOrder) {
    const auto write = [&](std::uint64_t at) {
        const std::string text = failureOf([&] { one.subImage(0, 0, 8, RED, BYTE, &buffer, at, packed); });
        EXPECT_FAILURE(text, two.subImage(0, 0, 0, 8, 4, RED, BYTE, &buffer, at, packed));
        EXPECT_FAILURE(text, three.subImage(0, 0, 0, 0, 8, 4, 2, RED, BYTE, &buffer, at, packed));
        return text;
    };
    const auto read = [&](auto& texture, Texture::Format format, unsigned int alignment) {
        return failureOf([&] { texture.getPixelData(&buffer, 0, 0, format, BYTE, alignment); });
    };
    buffer.bind(); // in another role: what was pushed stays
    calls();
    EXPECT_EQ("!Buffer::convertToUnpackBuffer cannot convert buffer target while bound", write(0));
    EXPECT_CALLS(push + " " + push + " " + push);
    const std::string bound = "!Buffer::convertToPackBuffer cannot convert buffer target while bound";
    EXPECT_FAILURE(bound, one.getPixelData(&buffer, 0, 0, GL_RGB, GL_BYTE));
    EXPECT_EQ(bound, read(two, RED, 2));
    EXPECT_EQ(bound, read(three, RED, 4));
    EXPECT_CALLS("PixelStorei(PACK_ALIGNMENT,1) PushClientAttrib(1) PixelStorei(PACK_ALIGNMENT,2) "
                 "PushClientAttrib(1) PixelStorei(PACK_ALIGNMENT,4)");
    EXPECT_EQ("!COLOR_INDEX not allowed here!", read(two, COLOR_INDEX, 3));
    EXPECT_EQ("!Invalid row byte alignment (must be of 1, 2, 4, or 8).", read(two, RED, 3));
    EXPECT_EQ("!Invalid row byte alignment (must be of 1, 2, 4, or 8).", read(three, RED, 16));
    buffer.map(GL_READ_ONLY);
    EXPECT_EQ("!offset(16) is greater than pixel buffer object size16", write(16));
    const std::string mapped = "!Pixel Buffer Object cannot be memory mapped during data transfer";
    EXPECT_EQ(mapped, write(15));
    EXPECT_EQ(mapped, read(two, COLOR_INDEX, 3));
    EXPECT_EQ(mapped, read(three, RED, 3));
    EXPECT_CALLS("MapBuffer(ARRAY_BUFFER,READ_ONLY)");
    EXPECT_FAILURE(mapped, one.getPixelData(&buffer, 0, 0, GL_RGB, GL_BYTE));
    EXPECT_CALLS("PixelStorei(PACK_ALIGNMENT,1)");
}

TEST_F(TransferTest, onlyTwoDimensionsTestWhatIsBound) {
    one.setWrap(CLAMP);
    two.setWrap(REPEAT, MIRRORED_REPEAT);
    three.setWrap(CLAMP_TO_BORDER, CLAMP_TO_EDGE, REPEAT);
    three.setFilter(LINEAR_MIPMAP_NEAREST, LINEAR);
    two.setBorderColor(static_cast<const float*>(memory));
    one.enableAutoMIPGeneration(true);
    one.enableAutoMIPGeneration(false);
    EXPECT_CALLS("TexParameteri(1D,WRAP_S,CLAMP) TexParameteri(2D,WRAP_S,REPEAT) "
                 "TexParameteri(2D,WRAP_T,MIRRORED_REPEAT) TexParameteri(3D,WRAP_S,CLAMP_TO_BORDER) "
                 "TexParameteri(3D,WRAP_T,CLAMP_TO_EDGE) TexParameteri(3D,WRAP_R,REPEAT) "
                 "TexParameteri(3D,MIN_FILTER,LINEAR_MIPMAP_NEAREST) TexParameteri(3D,MAG_FILTER,LINEAR) "
                 "TexParameterfv(2D,BORDER_COLOR,4096) TexParameteri(1D,GENERATE_MIPMAP,1) "
                 "TexParameteri(1D,GENERATE_MIPMAP,0)");
    buffer.map(GL_READ_ONLY);
    const std::string index = "!COLOR_INDEX not allowed here!", unbound = "!Texture must be bound";
    EXPECT_FAILURE(index, two.getPixelData(memory, 0, COLOR_INDEX, BYTE, 3));
    EXPECT_FAILURE(index, three.getPixelData(memory, 0, COLOR_INDEX, BYTE, 3));
    gl.integers[GL_TEXTURE_BINDING_2D] = 77;
    EXPECT_EQ(77u, two.getBoundID());
    EXPECT_FAILURE("!Texture must be enabled (bound & active)", two.setWrap(CLAMP, CLAMP));
    EXPECT_FAILURE(unbound, two.getPixelData(memory, 0, COLOR_INDEX, BYTE, 3));
    EXPECT_FAILURE(unbound, two.getPixelData(&buffer, 0, 0, COLOR_INDEX, BYTE, 3));
    struct Opened : Texture2D {
        using Texture::pushAndSetTransferByteAlignment;
    };
    const std::string alignment = "!Invalid row byte alignment (must be of 1, 2, 4, or 8).";
    EXPECT_FAILURE(alignment, Opened::pushAndSetTransferByteAlignment(0));
    Opened::pushAndSetTransferByteAlignment(8);
    EXPECT_CALLS("MapBuffer(ARRAY_BUFFER,READ_ONLY) PushClientAttrib(1) PixelStorei(UNPACK_ALIGNMENT,8)");
}

} // namespace
