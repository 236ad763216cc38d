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

struct Compressor::State {};

std::string_view Compressor::compress(std::string_view bytes, bool& packed) {
    packed = false;
    return bytes;
}

std::string expandPart(std::string_view) { return {}; }

std::string expand(std::string_view, std::uint64_t) {
    throw FormatError("it is compressed with Zstandard, which this build has not");
}

#else

namespace {

// The fastest of those that find repetitions over a whole chunk.
constexpr int level = 1;

struct FreeExpander {
    void operator()(ZSTD_DCtx* context) const { ZSTD_freeDCtx(context); }
};

} // namespace

struct Compressor::State {
    ZSTD_CCtx* context = ZSTD_createCCtx();
    std::unique_ptr<char[]> room;
    std::size_t size = 0;

    State() = default;
    ~State() { ZSTD_freeCCtx(context); }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
};

std::string_view Compressor::compress(std::string_view bytes, bool& packed) {
    const std::size_t most = ZSTD_compressBound(bytes.size());
    if (state_->size < most) {
        state_->room = std::make_unique_for_overwrite<char[]>(most);
        state_->size = most;
    }
    const std::size_t size =
        ZSTD_compressCCtx(state_->context, state_->room.get(), most, bytes.data(), bytes.size(), level);
    packed = !ZSTD_isError(size) && size < bytes.size();
    return packed ? std::string_view(state_->room.get(), size) : bytes;
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

std::string expandPart(std::string_view bytes) {
    struct Stream {
        ZSTD_DStream* stream = ZSTD_createDStream();
        ~Stream() { ZSTD_freeDStream(stream); }
    } const from;
    std::string all, block(ZSTD_DStreamOutSize(), '\0');
    ZSTD_inBuffer in = {bytes.data(), bytes.size(), 0};
    for (;;) {
        ZSTD_outBuffer out = {block.data(), block.size(), 0};
        const std::size_t before = in.pos;
        const std::size_t result = ZSTD_decompressStream(from.stream, &out, &in);
        all.append(block.data(), out.pos);
        if (ZSTD_isError(result) || result == 0 || (out.pos == 0 && in.pos == before))
            return all;
    }
}

#endif

Compressor::Compressor() : state_(std::make_unique<State>()) {}
Compressor::~Compressor() = default;

std::uint64_t checksumOf(std::string_view bytes) { return XXH3_64bits(bytes.data(), bytes.size()); }

} // namespace ZLT::Capture
