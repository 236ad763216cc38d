#pragma once

#include <cstdint>

namespace ZLT::Capture {

/// Whether the memory can be read, at its beginning and its end.
bool isReadable(const void* from, std::uint64_t size);

} // namespace ZLT::Capture
