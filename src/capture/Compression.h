#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace ZLT::Capture {

/// Makes bytes smaller, in memory that it keeps.
class Compressor {
public:
    Compressor();
    ~Compressor();
    Compressor(const Compressor&) = delete;
    Compressor& operator=(const Compressor&) = delete;

    /// The bytes, made smaller; as they are where that makes them no smaller. Valid up to the next call.
    /// @param packed  whether it did
    std::string_view compress(std::string_view bytes, bool& packed);

private:
    struct State;
    std::unique_ptr<State> state_;
};
/// The bytes back, which are `size`. Throws FormatError where they are not.
std::string expand(std::string_view bytes, std::uint64_t size);
/// As much as there is of bytes that were cut off.
std::string expandPart(std::string_view bytes);
/// Of bytes in a file.
std::uint64_t checksumOf(std::string_view bytes);

} // namespace ZLT::Capture
