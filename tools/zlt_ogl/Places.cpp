#include "Places.h"

#include <sstream>

namespace ZLT::Interception {

Place placeWithoutLine(const std::string& module, std::uint64_t address) {
    std::ostringstream text;
    text << module.substr(module.find_last_of("/\\") + 1) << (module.empty() ? "0x" : "+0x") << std::hex
         << address;
    return {text.str(), 0, ""};
}

} // namespace ZLT::Interception
