#include "ogl/BufferFormat.h"

#include "zlt/core/Enforce.h"

#include <iterator>

namespace ZLT::OGL {

namespace {

struct Channels {
    unsigned int red, green, blue, alpha;
    bool floatingPoint;
};

// Each with three forms of depth and stencil. The last repeats the one before it: existing clients count
// on its numbers.
constexpr Channels channels[] = {{16, 0, 0, 0, true},    {32, 0, 0, 0, true},   {16, 16, 0, 0, true},
                                 {32, 32, 0, 0, true},   {8, 8, 8, 0, false},   {8, 8, 8, 8, false},
                                 {16, 16, 16, 16, true}, {16, 16, 16, 16, true}};

} // namespace

BufferFormat::BufferFormat(unsigned int red, unsigned int green, unsigned int blue, unsigned int alpha,
                           unsigned int stencil, unsigned int depth, bool floatingPointColor)
    : redBits_(red), greenBits_(green), blueBits_(blue), alphaBits_(alpha), stencilBits_(stencil),
      depthBits_(depth), floatingPointColor_(floatingPointColor) {}

BufferFormat::BufferFormat(tePredefined format) : BufferFormat(0, 0, 0, 0, 0, 0, false) {
    const auto value = static_cast<unsigned int>(format);
    if (value >= 3 * std::size(channels))
        ZLT_RAISE("Trying to construct an buffer-format not recognized by this method");
    const Channels& color = channels[value / 3];
    const bool depth = value % 3 > 0;
    const bool stencil = value % 3 == 2;
    *this = BufferFormat(color.red, color.green, color.blue, color.alpha, stencil ? 8 : 0, depth ? 24 : 0,
                         color.floatingPoint);
}

} // namespace ZLT::OGL
