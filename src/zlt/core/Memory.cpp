#include "zlt/core/Memory.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <map>
#include <mutex>
#include <new>
#include <ostream>
#include <string>
#include <thread>
#include <utility>

namespace {

constexpr std::uint32_t liveMark = 0x5A4C5421;
constexpr std::uint32_t freedMark = 0xDEADF4EE;

// Stands in front of each block and links it into the list of its shard.
struct alignas(std::max_align_t) Header {
    Header* previous;
    Header* next;
    const char* file;
    std::size_t size;
    int line;
    std::uint32_t mark;
};

class SpinLock {
public:
    void lock() noexcept {
        while (taken_.exchange(true, std::memory_order_acquire))
            std::this_thread::yield();
    }
    void unlock() noexcept { taken_.store(false, std::memory_order_release); }

private:
    std::atomic<bool> taken_{false};
};

// Sharded by address, so that threads that allocate at the same time seldom meet. Constant-initialised and
// trivially destroyed: static objects of other modules may allocate before and release after everything here.
struct alignas(64) Shard {
    SpinLock lock;
    Header* first = nullptr;
    std::size_t count = 0;
};

constexpr std::size_t shardCount = 16;
constinit std::array<Shard, shardCount> shards;

Shard& shardOf(const Header* header) {
    const auto address = reinterpret_cast<std::uintptr_t>(header);
    return shards[((address >> 5) ^ (address >> 12)) % shardCount];
}

void link(Header* header) {
    Shard& shard = shardOf(header);
    const std::lock_guard guard(shard.lock);
    header->previous = nullptr;
    header->next = shard.first;
    if (shard.first)
        shard.first->previous = header;
    shard.first = header;
    ++shard.count;
}

void unlink(Header* header) {
    Shard& shard = shardOf(header);
    const std::lock_guard guard(shard.lock);
    if (header->mark != liveMark)
        std::abort();
    header->mark = freedMark;
    (header->previous ? header->previous->next : shard.first) = header->next;
    if (header->next)
        header->next->previous = header->previous;
    --shard.count;
}

} // namespace

void* operator new(std::size_t size, ZLT::MemoryType, const char* file, int line) noexcept {
    if (size > SIZE_MAX - sizeof(Header))
        return nullptr;
    auto* header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header)
        return nullptr;
    header->file = file ? file : "";
    header->size = size;
    header->line = line;
    header->mark = liveMark;
    link(header);
    return header + 1;
}

void operator delete(void* p, ZLT::MemoryType, const char*, int) noexcept {
    if (!p)
        return;
    Header* header = static_cast<Header*>(p) - 1;
    unlink(header);
    std::free(header);
}

namespace ZLT::Core {

std::size_t allocationCount() noexcept {
    std::size_t total = 0;
    for (Shard& shard : shards) {
        const std::lock_guard guard(shard.lock);
        total += shard.count;
    }
    return total;
}

std::size_t writeAllocations(std::ostream& out) {
    struct Site {
        std::size_t blocks = 0;
        std::size_t bytes = 0;
    };
    std::map<std::pair<std::string, int>, Site> sites;
    std::size_t total = 0;
    for (Shard& shard : shards) {
        const std::lock_guard guard(shard.lock);
        for (const Header* header = shard.first; header; header = header->next) {
            Site& site = sites[{header->file, header->line}];
            ++site.blocks;
            site.bytes += header->size;
            ++total;
        }
    }
    for (const auto& [place, site] : sites)
        out << place.first << ':' << place.second << ": " << site.blocks
            << (site.blocks == 1 ? " block, " : " blocks, ") << site.bytes
            << (site.bytes == 1 ? " byte\n" : " bytes\n");
    return total;
}

} // namespace ZLT::Core
