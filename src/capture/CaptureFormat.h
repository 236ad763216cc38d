#pragma once

#include <cstdint>

/// @file
/// How a capture lies in its file: a head, then chunks. See docs/capture-format.md.

namespace ZLT::Capture {

inline constexpr char fileMagic[8] = {'Z', 'L', 'T', 'C', 'A', 'P', 'T', '\n'};
/// Of the chunks and the records. A reader takes files of its own version and of older ones.
inline constexpr std::uint32_t fileVersion = 1;

struct FileHead {
    char magic[8];
    std::uint32_t version;
    std::uint32_t size; ///< of this head: the first chunk follows
};

enum class ChunkKind : std::uint8_t { Info = 1, Calls, Data, Index };
enum class Codec : std::uint8_t { None, Zstandard };

inline constexpr std::uint32_t chunkMagic = 0x4B4E4843;

struct ChunkHead {
    std::uint32_t magic;
    ChunkKind kind;
    Codec codec;
    std::uint16_t reserved;
    std::uint64_t storedSize; ///< bytes that follow
    std::uint64_t size;       ///< bytes when they are expanded
    std::uint64_t checksum;   ///< XXH3 of the bytes that follow
    std::uint64_t first;      ///< number of the first call, or of the first piece of data
    std::uint64_t count;      ///< of calls, or of pieces
};
static_assert(sizeof(FileHead) == 16 && sizeof(ChunkHead) == 48);

/// Where the bytes of a piece of data begin, behind its size.
constexpr std::uint64_t alignedPiece(std::uint64_t offset) { return (offset + 15) / 16 * 16; }

/// Where a frame ended.
struct FrameEnd {
    std::uint64_t chunk;  ///< among those of calls
    std::uint64_t offset; ///< in its expanded bytes, behind the swap
    std::uint64_t call;   ///< the number of the first call behind it
};

} // namespace ZLT::Capture
