#pragma once

#include <sstream>
#include <string>

namespace ZLT::OGL::internal {

/// The parts in a row, numbers in decimal.
template <class... Parts>
std::string composed(const Parts&... parts) {
    std::ostringstream message;
    (message << ... << parts);
    return message.str();
}

} // namespace ZLT::OGL::internal
