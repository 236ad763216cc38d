#pragma once

#include <cstdint>
#include <span>

namespace ZLT::Capture {

/// Whether the memory can be read, at its beginning and its end.
bool isReadable(const void* from, std::uint64_t size);

struct Memory {
    const void* from = nullptr;
    std::uint64_t size = 0;
};
/// The same of all of these, of which the system is asked once where it can be.
bool areReadable(std::span<const Memory> all);

} // namespace ZLT::Capture
