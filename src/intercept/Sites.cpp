#include "intercept/Sites.h"

#include "intercept/Lock.h"
#include "intercept/Program.h"
#include "intercept/Thread.h"

#include <atomic>
#include <cstring>
#include <mutex>
#include <unordered_map>

namespace ZLT::Interception {

namespace {

constexpr std::size_t tableSize = 1 << 14;
constexpr std::size_t longestSearch = 16;

struct Entry {
    std::atomic<const void*> address;
    std::atomic<std::uint32_t> site;
};
constinit Entry table[tableSize];

constinit Lock lock;
std::uint32_t last = 0;
// What the table has no room for.
std::unordered_map<const void*, std::uint32_t>& overflow() {
    static auto& map = *new std::unordered_map<const void*, std::uint32_t>;
    return map;
}

std::size_t hashOf(const void* address) {
    return reinterpret_cast<std::uintptr_t>(address) * 0x9E3779B97F4A7C15ull >> 50;
}
static_assert(tableSize == std::size_t(1) << (64 - 50));

std::uint32_t announce(const void* address) {
    SiteRecord record;
    record.site = ++last;
    const char* path = nullptr;
    if (!findModule(address, path, record.address)) {
        path = "";
        record.address = reinterpret_cast<std::uintptr_t>(address);
        record.reserved = 1; // no module
    }
    for (const std::string& module : newModules())
        program().writer().write(RecordKind::Module, module);
    program().writer().write(RecordKind::Site, bytesOf(record), filePath(path));
    return record.site;
}

[[gnu::noinline]] std::uint32_t add(const void* address) {
    const NoSignals calm;
    const std::lock_guard guard(lock);
    for (std::size_t i = 0; i < longestSearch; ++i) {
        Entry& entry = table[(hashOf(address) + i) % tableSize];
        const void* present = entry.address.load(std::memory_order_relaxed);
        if (present == address)
            return entry.site.load(std::memory_order_relaxed);
        if (present)
            continue;
        const std::uint32_t site = announce(address);
        entry.site.store(site, std::memory_order_relaxed);
        entry.address.store(address, std::memory_order_release);
        return site;
    }
    const auto [place, isNew] = overflow().try_emplace(address, 0);
    if (isNew)
        place->second = announce(address);
    return place->second;
}

} // namespace

std::uint32_t siteOf(const void* returnAddress) {
    for (std::size_t i = 0; i < longestSearch; ++i) {
        const Entry& entry = table[(hashOf(returnAddress) + i) % tableSize];
        const void* present = entry.address.load(std::memory_order_acquire);
        if (present == returnAddress) [[likely]]
            return entry.site.load(std::memory_order_relaxed);
        if (!present)
            break;
    }
    return add(returnAddress);
}

std::uint32_t currentSite() { return siteOf(thread.returnAddress); }

void forgetSites() {
    const NoSignals calm;
    if (!program().isActive())
        lock.unlock(); // in a process that was forked off; who has it is not here
    const std::lock_guard guard(lock);
    for (Entry& entry : table)
        entry.address.store(nullptr, std::memory_order_relaxed);
    overflow().clear();
    if (!program().isActive())
        last = 0;
}

} // namespace ZLT::Interception
