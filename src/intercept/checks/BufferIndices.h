#pragma once

#include "capture/IndexRange.h"

#include <cstdint>

/// @file
/// Sizes of buffers, and the indices in them. Both are kept until the buffer changes.

namespace ZLT::OGL {
class OpenGLCall;
} // namespace ZLT::OGL

namespace ZLT::Interception {

struct CheckedContext;

/// Indices as a draw names them.
struct DrawnIndices {
    const void* from = nullptr; ///< an offset, where they are in a buffer
    std::uint64_t count = 0;
    std::uint32_t type = 0;
    Capture::RestartIndex restart;
};

/// The size of a buffer. Asks the driver where it is not known, by the target that no draw looks at.
/// @return whether it is known then
bool sizeOfBuffer(CheckedContext& context, const OGL::OpenGLCall& call, std::uint32_t buffer,
                  std::uint64_t& size);

/// The range of indices that lie in the bound element buffer; all of them lie inside of it.
/// @return whether they could be read: a buffer that is mapped can't
bool rangeInBuffer(CheckedContext& context, const OGL::OpenGLCall& call, std::uint32_t buffer,
                   const DrawnIndices& indices, Capture::IndexRange& range);

/// After a call that changes buffers.
void noticeBuffers(CheckedContext& context, const OGL::OpenGLCall& call);

} // namespace ZLT::Interception
