#include "capture/Readable.h"

#include <algorithm>

#if defined(_WIN32)
#include <windows.h>
#else
#include <cerrno>
#include <fcntl.h>
#include <sys/uio.h>
#include <unistd.h>
#endif

namespace ZLT::Capture {

namespace {

// By the system, which knows what is readable.
bool isByteReadable(const char* from) {
    char byte = 0;
#if defined(_WIN32)
    SIZE_T copied = 0;
    return ReadProcessMemory(GetCurrentProcess(), from, &byte, 1, &copied) && copied == 1;
#else
    const iovec target = {&byte, 1}, source = {const_cast<char*>(from), 1};
    if (process_vm_readv(getpid(), &target, 1, &source, 1, 0) == 1)
        return true;
    // It doesn't read what a driver mapped, and in a sandbox nothing at all; a pipe takes what the program
    // can read.
    int ends[2];
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) != 0)
        return true; // nobody can tell
    const bool isReadable = write(ends[1], from, 1) == 1 || errno != EFAULT;
    close(ends[0]);
    close(ends[1]);
    return isReadable;
#endif
}

} // namespace

bool isReadable(const void* from, std::uint64_t size) {
    const auto* const first = static_cast<const char*>(from);
    const auto begin = reinterpret_cast<std::uintptr_t>(first);
    return size == 0 || (begin + size > begin && isByteReadable(first) && isByteReadable(first + size - 1));
}

bool areReadable(std::span<const Memory> all) {
#if !defined(_WIN32)
    constexpr std::size_t most = 64;
    iovec sources[2 * most];
    char bytes[2 * most];
    while (all.size() > 1) {
        const std::size_t count = std::min(all.size(), most);
        std::size_t ends = 0;
        for (const Memory& memory : all.first(count)) {
            const auto begin = reinterpret_cast<std::uintptr_t>(memory.from);
            if (memory.size == 0)
                continue;
            if (begin + memory.size < begin)
                return false;
            char* const first = static_cast<char*>(const_cast<void*>(memory.from));
            sources[ends++] = {first, 1};
            sources[ends++] = {first + memory.size - 1, 1};
        }
        const iovec target = {bytes, ends};
        if (process_vm_readv(getpid(), &target, 1, sources, ends, 0) != static_cast<ssize_t>(ends))
            return false;
        all = all.subspan(count);
    }
#endif
    return std::ranges::all_of(all,
                               [](const Memory& memory) { return isReadable(memory.from, memory.size); });
}

} // namespace ZLT::Capture
