#include "capture/IndexRange.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Capture {

namespace {

constexpr unsigned int fixedRestart = 0x8D69; // GL_PRIMITIVE_RESTART_FIXED_INDEX, of OpenGL 4.3

// The indices may lie at any address. In blocks, which the compiler makes a loop of vectors.
template <class Index>
void addOf(IndexRange& range, const char* from, std::size_t count, RestartIndex restart) {
    constexpr std::size_t most = 1024;
    Index block[most];
    Index least = static_cast<Index>(-1), greatest = 0;
    bool any = false;
    for (std::size_t done = 0; done < count; done += most) {
        const std::size_t size = std::min(most, count - done);
        std::memcpy(block, from + done * sizeof(Index), size * sizeof(Index));
        if (restart.isThere) {
            for (std::size_t i = 0; i < size; ++i)
                if (block[i] != restart.index) {
                    least = std::min(least, block[i]);
                    greatest = std::max(greatest, block[i]);
                    any = true;
                }
            continue;
        }
        any = true;
        for (std::size_t i = 0; i < size; ++i) {
            least = std::min(least, block[i]);
            greatest = std::max(greatest, block[i]);
        }
    }
    if (!any)
        return;
    range.first = std::min<std::uint64_t>(range.first, least);
    range.last = std::max<std::uint64_t>(range.last, greatest);
}

} // namespace

RestartIndex restartIndexOf(const CapturedContext& context, unsigned int type) {
    const bool hasFixed = context.isVersion(4, 3) || context.has("GL_ARB_ES3_compatibility");
    if (hasFixed && glIsEnabled(fixedRestart))
        return {true, type == GL_UNSIGNED_BYTE ? 0xFFu : type == GL_UNSIGNED_SHORT ? 0xFFFFu : 0xFFFFFFFFu};
    if (context.isVersion(3, 1) && glIsEnabled(GL_PRIMITIVE_RESTART))
        return {true, static_cast<std::uint32_t>(context.integer(GL_PRIMITIVE_RESTART_INDEX))};
    if (context.has("GL_NV_primitive_restart") && glIsEnabled(GL_PRIMITIVE_RESTART_NV))
        return {true, static_cast<std::uint32_t>(context.integer(GL_PRIMITIVE_RESTART_INDEX_NV))};
    return {};
}

void addIndices(IndexRange& range, const void* indices, unsigned int type, std::size_t count,
                RestartIndex restart) {
    const char* const from = static_cast<const char*>(indices);
    if (type == GL_UNSIGNED_BYTE)
        addOf<std::uint8_t>(range, from, count, restart);
    else if (type == GL_UNSIGNED_SHORT)
        addOf<std::uint16_t>(range, from, count, restart);
    else
        addOf<std::uint32_t>(range, from, count, restart);
}

} // namespace ZLT::Capture
