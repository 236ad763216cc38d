#pragma once

#include "zlt/core/Export.h"

#include <cstddef>
#include <iosfwd>

/// @file
/// The allocator. Each block remembers the file and line that asked for it, so that whatever is still
/// allocated can be listed by its site. Recording costs one short lock of one of 16 lists, no allocation and
/// no copy: `file` must be a text that outlives the block, as a string literal does.

namespace ZLT {

/// The kind of memory. There is one kind, and every caller passes 0.
enum MemoryType : int {
    MEMORY_DEFAULT = 0,
};

namespace Core {

/// How many blocks of the allocator are live now. Callable from any thread.
ZLT_CORE_API std::size_t allocationCount() noexcept;

/// Writes one line for each site that has live blocks, sorted by file and line:
/// "file:line: 3 blocks, 384 bytes". Writes nothing when nothing is live. Callable from any thread; other
/// threads may allocate at the same time.
/// @return how many blocks were listed
ZLT_CORE_API std::size_t writeAllocations(std::ostream& out);

} // namespace Core
} // namespace ZLT

/// Allocates `size` bytes, aligned for every fundamental type, and records the site. Null when there is no
/// memory, so a new-expression with this form gives null then and constructs nothing.
ZLT_CORE_API void* operator new(std::size_t size, ZLT::MemoryType type, const char* file, int line) noexcept;

/// Frees a block of the form above; null is ignored. Destroy the object first. A pointer that isn't a live
/// block of this allocator (freed twice, or from elsewhere) ends the process at once, before it can damage
/// the lists.
ZLT_CORE_API void operator delete(void* p, ZLT::MemoryType type, const char* file, int line) noexcept;
