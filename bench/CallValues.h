#pragma once

#include <bit>
#include <cmath>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

/// @file
/// The arguments of the traced calls, the same in all programs that make them.

namespace CallValues {

/// glBindTexture goes through these names, 1 to 256.
inline constexpr unsigned int textureCount = 256;

/// Number of floats, of which glColor4f takes four after four: so many that no branch predictor learns them.
inline constexpr std::size_t floatCount = std::size_t(1) << 16;

/// @param kind  "short": 0 to 1 in steps of 1/64. "random": anything from 0 to 1. "any": random bits, but
/// finite
inline std::vector<float> floats(const std::string& kind) {
    std::mt19937 random(1);
    std::uniform_real_distribution<float> fraction(0, 1);
    std::vector<float> values;
    while (values.size() < floatCount) {
        float value = 0;
        if (kind == "short")
            value = static_cast<float>(random() % 65) / 64;
        else if (kind == "random")
            value = fraction(random);
        else
            value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        if (std::isfinite(value))
            values.push_back(value);
    }
    return values;
}

} // namespace CallValues
