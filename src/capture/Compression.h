#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace ZLT::Capture {

/// The bytes, made smaller; as they are where that makes them no smaller.
/// @param packed  whether it did
std::string compress(std::string_view bytes, bool& packed);
/// The bytes back, which are `size`. Throws FormatError where they are not.
std::string expand(std::string_view bytes, std::uint64_t size);
/// Of bytes in a file.
std::uint64_t checksumOf(std::string_view bytes);

} // namespace ZLT::Capture
