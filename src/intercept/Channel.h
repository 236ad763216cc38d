#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

/// @file
/// The memory that the command and the programs it watches share. Whatever becomes of a program, what it
/// wrote is there: nothing has to be flushed, and a program that closes files it didn't open closes none of
/// ours.
///
/// The command makes the memory and reads it; each watched process takes a slot of its own and writes there.
/// A slot has a ring of records, and counters that are right at any time.

namespace ZLT::Interception {

inline constexpr std::uint32_t channelMagic = 0x5A4C5443;
/// Of the layout below. Command and watched object come from one build; a stranger is refused.
inline constexpr std::uint32_t channelVersion = 3;

/// In the environment of the program: the name by which it opens the memory. Taken out again at the start.
inline constexpr const char* channelVariable = "ZLT_OGL_CHANNEL";

enum class Mode : std::uint32_t { Check, Trace, Capture };

struct Options {
    Mode mode = Mode::Check;
    bool children = false;     ///< the programs that the program starts are watched as well
    bool more = false;         ///< checks that GL itself does not make
    bool trap = false;         ///< stop in a debugger where an error is
    bool markFrames = false;   ///< a comment in the trace at each swap
    bool hashPictures = false; ///< in a capture
    bool goOn = false;         ///< the program runs on after the last frame of a capture
    std::uint64_t firstFrame = 1;
    std::uint64_t lastFrame = UINT64_MAX;
};

#if defined(_WIN32)
inline constexpr std::size_t slotCount = 1; // the system counts all of the memory, also what nobody uses
#else
inline constexpr std::size_t slotCount = 64;
#endif
inline constexpr std::size_t threadSlotCount = 256;
inline constexpr std::size_t laterCapacity = 4096;
inline constexpr std::size_t ringSize = std::size_t(4) << 20; // a power of two

enum class RecordKind : std::uint32_t {
    Pad,    ///< nothing: up to the end of the ring
    Module, ///< the path of a module that the program has loaded
    Site,   ///< a place that calls come from: SiteRecord, then the module's path
    Text,   ///< the beginning of a line that doesn't fit in one record
    Line,   ///< a line of the trace, or its end: the site (of calls, else 0), then the text
    Report, ///< an error that is new: see ReportRecord
    Again,  ///< the number of an error that was reported, which came once more
    Note,   ///< a sentence for the user
    Call,   ///< a record of a capture; the thread's number stands above the kind, see kindOf()
    Data,   ///< a part of data of a capture: DataRecord, then the bytes
};

/// In front of each record. Records begin at multiples of 8.
struct RecordHead {
    std::uint32_t size = 0; ///< with this head, without what fills up to the next one
    RecordKind kind = RecordKind::Pad;
};

/// Threads of a capture are in the higher bits of a kind.
inline constexpr unsigned int threadShift = 8;
constexpr RecordKind callOf(std::uint32_t thread) {
    return static_cast<RecordKind>(static_cast<std::uint32_t>(RecordKind::Call) | thread << threadShift);
}
constexpr RecordKind kindOf(RecordKind kind) {
    return static_cast<RecordKind>(static_cast<std::uint32_t>(kind) & ((1u << threadShift) - 1));
}
constexpr std::uint32_t threadOf(RecordKind kind) { return static_cast<std::uint32_t>(kind) >> threadShift; }

struct DataRecord {
    std::uint32_t number = 0; ///< from 0
    std::uint32_t reserved = 0;
    std::uint64_t size = 0; ///< of all parts
};

struct SiteRecord {
    std::uint32_t site = 0; ///< its number, from 1
    std::uint32_t reserved = 0;
    std::uint64_t address = 0; ///< in the module as it lies in its file
};

/// Counts of one thread, written by it alone.
struct alignas(64) ThreadSlot {
    std::atomic<std::uint64_t> calls;
};

/// Of one watched process. The bytes of the ring that are written and not yet read are [read, written), each
/// modulo the size of the ring.
/// What one side writes shares no cache line with what the other does.
struct ProcessSlot {                    // NOLINT(clang-analyzer-optin.performance.Padding)
    std::atomic<std::uint32_t> process; ///< its number in the system; 0 while the slot is free
    std::atomic<std::uint32_t> reached; ///< whether it called GL at all
    alignas(64) std::atomic<std::uint64_t> written;
    alignas(64) std::atomic<std::uint64_t> read;
    alignas(64) std::atomic<std::uint32_t> threads;
    std::atomic<std::uint32_t> contexts;
    std::atomic<std::uint64_t> frames; ///< swaps so far
    ThreadSlot perThread[threadSlotCount];
    /// Calls of each function that came after the list, in the order of its table.
    std::atomic<std::uint64_t> later[laterCapacity];
    alignas(64) unsigned char ring[ringSize];
};

struct Channel {
    std::uint32_t magic = channelMagic;
    std::uint32_t version = channelVersion;
    std::uint64_t size = 0; ///< of this structure
    Options options;
    std::atomic<std::uint32_t> slotsTaken;
    std::atomic<std::uint32_t> reading; ///< 0 when nobody reads any more
    ProcessSlot slots[slotCount];
};

static_assert(std::atomic<std::uint64_t>::is_always_lock_free);

} // namespace ZLT::Interception
