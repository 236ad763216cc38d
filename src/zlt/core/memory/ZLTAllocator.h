#pragma once

#include "zlt/core/Memory.h"

#include <cstddef>
#include <limits>
#include <memory>
#include <new>
#include <string>

/// @file
/// The standard-library side of the allocator.

namespace ZLT {

namespace Detail {
// Fixed, whatever line the calls below are on: lists of allocations are filtered by these.
inline constexpr const char* allocatorFile = "..\\..\\zlt\\core\\memory\\ZLTAllocator";
inline constexpr int allocateLine = 101;
inline constexpr int deallocateLine = 116;
} // namespace Detail

/// Allocator of all containers of the library, on the core's `operator new`. Stateless. Its blocks are listed
/// under this header's name, line 101.
template <class T>
class ZLTAllocator {
public:
    using value_type = T;

    ZLTAllocator() noexcept = default;
    template <class U>
    ZLTAllocator(const ZLTAllocator<U>&) noexcept {}

    /// Memory for `count` objects.
    /// @throws std::bad_alloc when there is none, or when the size can't be represented
    T* allocate(std::size_t count) {
        static_assert(alignof(T) <= alignof(std::max_align_t), "over-aligned types are not supported");
        constexpr std::size_t size =
            sizeof(T); // NOLINT(bugprone-sizeof-expression): a pointer's, if T is one
        if (count > (std::numeric_limits<std::size_t>::max)() / size)
            throw std::bad_array_new_length();
        void* p = ::operator new(count* size, MemoryType(0), Detail::allocatorFile, Detail::allocateLine);
        if (!p)
            throw std::bad_alloc();
        return static_cast<T*>(p);
    }

    void deallocate(T* p, std::size_t) noexcept {
        ::operator delete(p, MemoryType(0), Detail::allocatorFile, Detail::deallocateLine);
    }
};

template <class T, class U>
bool operator==(const ZLTAllocator<T>&, const ZLTAllocator<U>&) noexcept {
    return true;
}
template <class T, class U>
bool operator!=(const ZLTAllocator<T>&, const ZLTAllocator<U>&) noexcept {
    return false;
}

/// The string type of the library's interfaces.
using String = std::basic_string<char, std::char_traits<char>, ZLTAllocator<char>>;

} // namespace ZLT
