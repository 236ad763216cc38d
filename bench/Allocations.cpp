// Stands in front of the C library's allocator, on which the one of C++ rests, and counts.

#include "Allocations.h"

#include <cerrno>
#include <cstddef>

namespace {

constinit thread_local unsigned long count = 0;

}

unsigned long allocations() { return count; }

bool allocationsAreCounted() {
    const unsigned long before = allocations();
    int* volatile memory = new int; // seen by others, so that it is not left out
    delete memory;
    return allocations() == before + 1;
}

#if !defined(_WIN32)
#pragma GCC visibility push(default)
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t number, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

void* malloc(std::size_t size) {
    ++count;
    return __libc_malloc(size);
}
void* calloc(std::size_t number, std::size_t size) {
    ++count;
    return __libc_calloc(number, size);
}
void* realloc(void* memory, std::size_t size) {
    ++count;
    return __libc_realloc(memory, size);
}
void* memalign(std::size_t alignment, std::size_t size) {
    ++count;
    return __libc_memalign(alignment, size);
}
void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
    *memory = memalign(alignment, size);
    return *memory ? 0 : ENOMEM;
}

} // extern "C"
#pragma GCC visibility pop
#endif
