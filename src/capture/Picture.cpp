#include "capture/Picture.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

namespace ZLT::Capture {

std::uint64_t Picture::hash() const { return XXH3_64bits(pixels.data(), pixels.size()); }

} // namespace ZLT::Capture
