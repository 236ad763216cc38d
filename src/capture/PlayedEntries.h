#pragma once

#include "extensionator/OpenGLInterceptor.h"

#include <cstdint>

namespace ZLT::Capture {

/// Calls an entry with the arguments as they lie in 64 bits each.
using PlayEntry = void(OGL::OpenGLInterceptor& gl, const char* file, unsigned int line,
                       const std::uint64_t* arguments, std::uint64_t& result);

/// Of the entry with this number.
PlayEntry* playerOf(std::uint32_t entry);

} // namespace ZLT::Capture
