#pragma once

#include "capture/Bytes.h"

#include <cstdint>
#include <string>

namespace ZLT::Capture {

/// Where the linker put the variables of the program that is linked next.
struct LinkedPlaces {
    std::uint64_t program = 0;
    std::string places;
    std::uint32_t count = 0;

    /// @param take  of whether it is a uniform variable, its location and its name
    template <class Take>
    void each(const Take& take) const {
        ByteReader from(places);
        for (std::uint32_t i = 0; i < count; ++i) {
            const bool isUniform = from.number() != 0;
            const std::int64_t location = from.signedNumber();
            take(isUniform, location, std::string(from.text()));
        }
    }
};

} // namespace ZLT::Capture
