#pragma once

#include <cstddef>

namespace ZLT {

/// Three components: a normal, a position, a colour without alpha.
class float3 {
public:
    float3(float x, float y, float z) : values_{x, y, z} {}

    /// @param index  0 to 2, not checked
    float& operator[](std::size_t index) { return values_[index]; }
    const float& operator[](std::size_t index) const { return values_[index]; }

private:
    float values_[3];
};

/// Four components: a colour, a homogeneous position.
class float4 {
public:
    float4(float x, float y, float z, float w) : values_{x, y, z, w} {}

    /// @param index  0 to 3, not checked
    float& operator[](std::size_t index) { return values_[index]; }
    const float& operator[](std::size_t index) const { return values_[index]; }

private:
    float values_[4];
};

/// Whether exactly one bit of `value` is set; false for 0.
constexpr bool isPowerOfTwo(unsigned int value) { return value != 0 && (value & (value - 1)) == 0; }

} // namespace ZLT
