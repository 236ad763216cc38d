#pragma once

#include <cstddef>

namespace ZLT::Interception {

/// Copies what is readable from `from` on, at most `size` bytes and not far beyond a zero byte.
/// @return how many bytes; 0 where the address is none
std::size_t readMemory(const void* from, char* to, std::size_t size);

} // namespace ZLT::Interception
