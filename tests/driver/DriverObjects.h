#pragma once

#include "StartedDriver.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/TextureState.h"
#include "extensionator/TokenName.h"
#include "ogl/Buffer.h"
#include "ogl/Framebuffer.h"
#include "ogl/PixelUnpackParameters.h"
#include "ogl/Texture1D.h"
#include "ogl/Texture1DArray.h"
#include "ogl/Texture2D.h"
#include "ogl/Texture2DArray.h"
#include "ogl/Texture3D.h"
#include "ogl/TextureRECT.h"
#include "ogl/TextureUnit.h"

#include <algorithm>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

/// @file
/// What the tests of GL objects share: a context, something to draw to, textures of every shape.

namespace ZLT::OGL {

using Format = Texture::Format;
using Type = Texture::Type;
using Internal = Texture::InternalFormat;

/// The library with a context that is current. A test asks for each error of GL that it causes.
class StartedWithContext : public CurrentDriver {
protected:
    void SetUp() override {
        CurrentDriver::SetUp();
        if (IsSkipped())
            return;
        if (!Framebuffer::isSupported() || !Buffer::isSupported() || !TextureRECT::isSupported() ||
            !ExtensionManager::Instance()->isSupported(OPEN_GL_2_0))
            GTEST_SKIP() << "a driver without framebuffer objects, buffers, rectangles or programs";
    }
    void TearDown() override {
        if (context_) {
            EXPECT_EQ(glGetError(), GLenum(GL_NO_ERROR));
        }
        CurrentDriver::TearDown();
    }

    /// Names what the driver can't do.
    void refused(const std::string& what, const std::string& reason) {
        std::cout << "refused, " << ++refusals_ << ": " << what << ": " << reason << "\n";
    }

private:
    int refusals_ = 0;
};

/// A picture of its own to draw to, black, bound as long as it lives.
struct Canvas {
    static constexpr int size = 8;
    Texture2D texture{Internal::RGBA8, size, size, false, nullptr};
    Framebuffer framebuffer;

    Canvas() {
        framebuffer.bind();
        framebuffer.attach(&texture, 0, 0);
        glViewport(0, 0, size, size);
        clear(0, 0, 0);
    }
};

/// A rectangle as high as the picture, by default all of it; texture coordinates go from 0 to 1.
inline void draw(const Colour& colour, float left = -1, float right = 1, float z = 0) {
    glColor3ub(GLubyte(colour[0]), GLubyte(colour[1]), GLubyte(colour[2]));
    glBegin(GL_QUADS);
    for (const auto& [x, y] : {std::pair(left, -1.0f), {right, -1.0f}, {right, 1.0f}, {left, 1.0f}}) {
        glTexCoord2f((x + 1) / 2, (y + 1) / 2);
        glVertex3f(x, y, z);
    }
    glEnd();
}

/// In the active unit.
template <class T>
void bind(const T& texture) {
    if constexpr (std::is_same_v<T, Texture1DArray>)
        glBindTexture(texture.target(), texture.objectID()); // the one shape that a unit doesn't take
    else
        TextureUnit::Unit(0)->bind(&texture);
}

using Texels = std::vector<std::uint32_t>; ///< RGBA, red in the lowest byte.
struct Box {
    std::size_t x, y, z, w, h, d;
    std::size_t count() const { return w * h * d; }
};
inline Box whole(const Texture& texture) {
    return {0, 0, 0, texture.width(0), texture.height(0), texture.depth(0)};
}

/// From memory, or from a buffer and an offset in it.
template <class T, class... From>
void upload(T& texture, const Box& box, From... from) {
    const auto f = Format::RGBA;
    const auto t = Type::UNSIGNED_BYTE;
    const int x = int(box.x), y = int(box.y), z = int(box.z);
    if constexpr (std::is_base_of_v<Texture1, T>)
        texture.subImage(0, x, box.w, f, t, from..., {});
    else if constexpr (std::is_base_of_v<Texture2, T>)
        texture.subImage(0, x, y, box.w, box.h, f, t, from..., {});
    else
        texture.subImage(0, x, y, z, box.w, box.h, box.d, f, t, from..., {});
}

/// To memory, or to a buffer at an offset.
template <class T, class... To>
void download(const T& texture, To... to) {
    if constexpr (std::is_base_of_v<Texture1, T>)
        texture.getPixelData(to..., 0, GL_RGBA, GL_UNSIGNED_BYTE);
    else
        texture.getPixelData(to..., 0, Format::RGBA, Type::UNSIGNED_BYTE, 4);
}

/// Binds the texture and gives it these texels.
template <class T>
void fill(T& texture, const Texels& texels) {
    bind(texture);
    upload(texture, whole(texture), texels.data());
}

/// Binds the texture and reads all of it.
template <class T>
Texels texelsOf(const T& texture) {
    Texels texels(whole(texture).count());
    bind(texture);
    download(texture, texels.data());
    return texels;
}

} // namespace ZLT::OGL
