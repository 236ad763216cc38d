#include "capture/reporting/Shrink.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>

namespace ZLT::Capture::Reporting {

std::uint64_t hashOf(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

Picture shrunk(const Picture& picture, int longest) {
    const int side = std::max(picture.width, picture.height);
    if (side <= longest)
        return picture;
    Picture small;
    small.width = std::max(1, picture.width * longest / side);
    small.height = std::max(1, picture.height * longest / side);
    small.pixels.reserve(static_cast<std::size_t>(small.width) * static_cast<std::size_t>(small.height) * 4);
    for (int y = 0; y < small.height; ++y) {
        const int top = y * picture.height / small.height;
        const int bottom = std::max(top + 1, (y + 1) * picture.height / small.height);
        for (int x = 0; x < small.width; ++x) {
            const int left = x * picture.width / small.width;
            const int right = std::max(left + 1, (x + 1) * picture.width / small.width);
            // The mean of the pixels that lie here.
            std::uint32_t sums[4] = {};
            for (int row = top; row < bottom; ++row) {
                const unsigned char* from =
                    picture.pixels.data() +
                    (static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.width) +
                     static_cast<std::size_t>(left)) *
                        4;
                for (int column = left; column < right; ++column)
                    for (std::uint32_t& sum : sums)
                        sum += *from++;
            }
            const auto count = static_cast<std::uint32_t>((bottom - top) * (right - left));
            for (const std::uint32_t sum : sums)
                small.pixels.push_back(static_cast<unsigned char>(sum / count));
        }
    }
    return small;
}

} // namespace ZLT::Capture::Reporting
