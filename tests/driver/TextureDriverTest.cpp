// Textures on the real driver: what goes in comes out.

#include "DriverObjects.h"

using namespace ZLT::OGL;

namespace {

class TextureDriverTest : public StartedWithContext {};

Texels numbered(const Box& box, std::uint32_t from) {
    Texels result(box.count());
    std::ranges::generate(result, [&] { return from += 0x01030507; });
    return result;
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

TEST_F(TextureDriverTest, everyFormatIsStoredAsItIsAskedFor) {
    for (unsigned internal = 0; internal < 50; ++internal) {
        const Texture2D texture(Internal(internal), 5, 3, false, nullptr);
        bind(texture);
        GLint stored = 0;
        glGetTexLevelParameteriv(GL_TEXTURE_2D, 0, GL_TEXTURE_INTERNAL_FORMAT, &stored);
        const GLenum token = Texture::InternalFormat2GL(Internal(internal));
        EXPECT_EQ(TokenName(unsigned(stored)), std::string(TokenName(token)));
    }
}

TEST_F(TextureDriverTest, texelsComeFromMemoryAndFromBuffersToTheEnd) {
    eachShape([]<class T>(T& texture) {
        const Box size = whole(texture);
        Texels image = numbered(size, 1), read = image;
        fill(texture, image);
        // The last layer, row or texel alone.
        Box end = size;
        std::size_t& length = size.d > 1 ? end.d : size.h > 1 ? end.h : end.w;
        (size.d > 1 ? end.z : size.h > 1 ? end.y : end.x) = std::exchange(length, 1) - 1;
        const Texels part = numbered(end, 1000);
        upload(texture, end, part.data());
        std::ranges::copy_backward(part, image.end());
        EXPECT_EQ(texelsOf(texture), image) << TokenName(texture.target());
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
