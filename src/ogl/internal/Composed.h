#pragma once

#include <locale>
#include <sstream>
#include <string>

namespace ZLT::OGL::internal {

/// The parts in a row, numbers in decimal.
template <class... Parts>
std::string composed(const Parts&... parts) {
    std::ostringstream message;
    message.imbue(std::locale::classic()); // no grouping of digits, whatever the program has set
    (message << ... << parts);
    return message.str();
}

} // namespace ZLT::OGL::internal
