#pragma once

#include "platform/GL.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace ZLT::OGL::internal {

/// A heading, and the log of a shader or a program behind it.
/// @param length  the length that GL told, with the 0 at the end; a negative one, from a broken driver, is as
/// 0
/// @param read    `glGetShaderInfoLog` or `glGetProgramInfoLog`
template <class Read>
std::string withInfoLog(const char* heading, GLint length, unsigned int object, const Read& read) {
    length = std::max(length, 0);
    // Empty, should the driver write nothing.
    std::vector<char> log(static_cast<std::size_t>(length) + 1);
    GLsizei written = 0;
    read(object, length, &written, log.data());
    return std::string(heading) + log.data();
}

} // namespace ZLT::OGL::internal
