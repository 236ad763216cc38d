#include "intercept/Memory.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#if defined(_WIN32)
#include <windows.h>
#else
#include <sys/uio.h>
#include <unistd.h>
#endif

namespace ZLT::Interception {

namespace {

// By the system, which knows what is readable, also while another thread takes it away.
bool copy(const void* from, char* to, std::size_t size) {
#if defined(_WIN32)
    SIZE_T copied = 0;
    return ReadProcessMemory(GetCurrentProcess(), from, to, size, &copied) && copied == size;
#else
    const iovec target = {to, size}, source = {const_cast<void*>(from), size};
    return process_vm_readv(getpid(), &target, 1, &source, 1, 0) == static_cast<ssize_t>(size);
#endif
}

} // namespace

std::size_t readMemory(const void* from, char* to, std::size_t size) {
    constexpr std::uintptr_t step = 64; // divides all pages
    std::size_t done = 0;
    while (done < size) {
        const auto address = reinterpret_cast<std::uintptr_t>(from) + done;
        const std::size_t part = std::min<std::size_t>(step - address % step, size - done);
        if (!copy(reinterpret_cast<const void*>(address), to + done, part))
            break;
        done += part;
        if (std::memchr(to + done - part, 0, part))
            break;
    }
    return done;
}

} // namespace ZLT::Interception
