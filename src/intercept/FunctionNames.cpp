// The functions by their names.

#include "extensionator/OpenGLCall.h"
#include "intercept/RealFunctions.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace ZLT::Interception {

namespace {

#include "intercept/EntriesByName.inl"

constexpr const char* laterNames[] = {
#define X(place, name) #name,
#include "intercept/LaterFunctions.inl"
#undef X
};

} // namespace

unsigned int entryNumber(const char* name) {
    const auto* const found =
        std::lower_bound(std::begin(entriesByName), std::end(entriesByName), name,
                         [](unsigned short entry, const char* wanted) {
                             return std::strcmp(OGL::openGLEntryName(entry), wanted) < 0;
                         });
    if (found == std::end(entriesByName) || std::strcmp(OGL::openGLEntryName(*found), name) != 0)
        return OGL::openGLEntryCount();
    return *found;
}

std::size_t laterCount() { return std::size(laterNames); }
const char* laterName(std::size_t number) { return laterNames[number]; }

std::size_t laterNumber(const char* name) {
    const auto* const found = std::lower_bound(
        std::begin(laterNames), std::end(laterNames), name,
        [](const char* later, const char* wanted) { return std::strcmp(later, wanted) < 0; });
    return found == std::end(laterNames) || std::strcmp(*found, name) != 0
               ? laterCount()
               : static_cast<std::size_t>(found - laterNames);
}

} // namespace ZLT::Interception
