#include "capture/Readable.h"

#if defined(_WIN32)
#include <windows.h>
#else
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
    return process_vm_readv(getpid(), &target, 1, &source, 1, 0) == 1;
#endif
}

} // namespace

bool isReadable(const void* from, std::uint64_t size) {
    const auto* const first = static_cast<const char*>(from);
    const auto begin = reinterpret_cast<std::uintptr_t>(first);
    return size == 0 || (begin + size > begin && isByteReadable(first) && isByteReadable(first + size - 1));
}

} // namespace ZLT::Capture
