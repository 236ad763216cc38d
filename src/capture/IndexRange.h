#pragma once

#include "capture/CapturedContext.h"

#include <cstddef>
#include <cstdint>

/// @file
/// The vertices that indices name.

namespace ZLT::Capture {

/// From the least to the greatest; empty at first.
struct IndexRange {
    std::uint64_t first = UINT64_MAX, last = 0;
    bool isEmpty() const { return first > last; }
    bool operator==(const IndexRange&) const = default;
};

/// The index that begins another primitive, and is no vertex.
struct RestartIndex {
    bool isThere = false;
    std::uint32_t index = 0;
};
/// Asks the driver, which may be asked.
/// @param type  of the indices
RestartIndex restartIndexOf(const CapturedContext& context, unsigned int type);

/// Adds `count` indices of a type that sizeOfType() knows.
void addIndices(IndexRange& range, const void* indices, unsigned int type, std::size_t count,
                RestartIndex restart);

} // namespace ZLT::Capture
