#pragma once

#include "capture/Picture.h"

#include <cstdint>
#include <string_view>

/// @file
/// Small things that reporters need.

namespace ZLT::Capture::Reporting {

/// The picture, its longer side at most this long.
Picture shrunk(const Picture& picture, int longest);
/// Of data that is sent.
std::uint64_t hashOf(std::string_view bytes);

} // namespace ZLT::Capture::Reporting
