#include "capture/Compression.h"

#include "capture/Bytes.h"

#define XXH_INLINE_ALL
#include <xxhash.h>
#if !defined(ZLT_WITHOUT_ZSTD)
#include <zstd.h>
#endif

#include <memory>
#include <new>

namespace ZLT::Capture {

#if defined(ZLT_WITHOUT_ZSTD)

std::string compress(std::string_view bytes, bool& packed) {
    packed = false;
    return std::string(bytes);
}

std::string expand(std::string_view, std::uint64_t) {
    throw FormatError("it is compressed with Zstandard, which this build has not");
}

#else

namespace {

// The fastest of those that find repetitions over a whole chunk.
constexpr int level = 1;

struct FreeCompressor {
    void operator()(ZSTD_CCtx* context) const { ZSTD_freeCCtx(context); }
};
struct FreeExpander {
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

} // namespace

std::string compress(std::string_view bytes, bool& packed) {
    thread_local const std::unique_ptr<ZSTD_CCtx, FreeCompressor> context(ZSTD_createCCtx());
    std::string small(ZSTD_compressBound(bytes.size()), '\0');
    const std::size_t size =
        ZSTD_compressCCtx(context.get(), small.data(), small.size(), bytes.data(), bytes.size(), level);
    packed = !ZSTD_isError(size) && size < bytes.size();
    if (!packed)
        return std::string(bytes);
    small.resize(size);
    return small;
}

std::string expand(std::string_view bytes, std::uint64_t size) {
    // Before so much memory is taken, the frame itself has to claim as much.
    if (ZSTD_getFrameContentSize(bytes.data(), bytes.size()) != size)
        throw FormatError("the compressed bytes are not those of a chunk of " + std::to_string(size) +
                          " bytes");
    thread_local const std::unique_ptr<ZSTD_DCtx, FreeExpander> context(ZSTD_createDCtx());
    std::string all;
    try {
        all.resize(size);
    } catch (const std::exception&) {
        throw FormatError("a chunk of " + std::to_string(size) + " bytes is too large");
    }
    const std::size_t result =
        ZSTD_decompressDCtx(context.get(), all.data(), all.size(), bytes.data(), bytes.size());
    if (ZSTD_isError(result) || result != size)
        throw FormatError(std::string("the compressed bytes are damaged: ") +
                          (ZSTD_isError(result) ? ZSTD_getErrorName(result) : "they end too early"));
    return all;
}

#endif

std::uint64_t checksumOf(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

} // namespace ZLT::Capture
