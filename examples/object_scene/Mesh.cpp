#include "Mesh.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <numbers>

namespace {

using Vector = std::array<float, 3>;

Vector operator-(const Vector& a, const Vector& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }
float dot(const Vector& a, const Vector& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
Vector cross(const Vector& a, const Vector& b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}
Vector unit(const Vector& a) {
    const float length = std::sqrt(dot(a, a));
    return {a[0] / length, a[1] / length, a[2] / length};
}

constexpr float turn = 2 * std::numbers::pi_v<float>;

// The middle of the tube: twice around the axis while it goes three times through the hole.
Vector middle(float t) {
    const float radius = 1.6f + 0.7f * std::cos(3 * t);
    return {radius * std::cos(2 * t), radius * std::sin(2 * t), 0.9f * std::sin(3 * t)};
}

Vertex onTube(float along, float around) {
    const float t = along * turn;
    const Vector centre = middle(t);
    const Vector forward = unit(middle(t + 0.001f) - centre);
    const Vector side = unit(cross(forward, {0.1f, 0.2f, 1}));
    const Vector up = cross(side, forward);
    const float c = std::cos(around * turn);
    const float s = std::sin(around * turn);
    Vertex vertex = {};
    for (int i = 0; i < 3; ++i) {
        vertex.normal[i] = c * side[i] + s * up[i];
        vertex.position[i] = centre[i] + 0.42f * vertex.normal[i];
    }
    vertex.around[0] = along * 30;
    vertex.around[1] = around * 4;
    return vertex;
}

} // namespace

Mesh makeKnot() {
    constexpr int steps = 360;
    constexpr int sides = 40;
    Mesh mesh{{}, {1.2f, -4.6f, 4.2f}};
    for (int i = 0; i < steps; ++i)
        for (int j = 0; j < sides; ++j) {
            const float a = static_cast<float>(i) / steps;
            const float b = static_cast<float>(i + 1) / steps;
            const float c = static_cast<float>(j) / sides;
            const float d = static_cast<float>(j + 1) / sides;
            for (const auto& [along, around] : {std::pair(a, c), {b, c}, {b, d}, {a, c}, {b, d}, {a, d}})
                mesh.vertices.push_back(onTube(along, around));
        }
    return mesh;
}

Picture makePattern() {
    constexpr int size = 128;
    Picture picture{size, size, {}};
    for (int y = 0; y < size; ++y)
        for (int x = 0; x < size; ++x) {
            const bool joint = x % 64 < 4 || y % 64 < 4;
            const bool warm = (x / 64 + y / 64) % 2 == 0;
            const Vector tile = warm ? Vector{214, 96, 44} : Vector{36, 120, 148};
            for (const float channel : joint ? Vector{232, 226, 210} : tile)
                picture.pixels.push_back(static_cast<std::uint8_t>(channel));
        }
    return picture;
}

std::array<float, 16> viewOf(const Mesh& mesh, int width, int height) {
    const Vector back = unit(mesh.eye);
    const Vector right = unit(cross({0, 0, 1}, back));
    const Vector up = cross(back, right);
    constexpr float nearest = 1;
    constexpr float farthest = 20;
    const float zoom = 2.3f;
    const float across = zoom * static_cast<float>(height) / static_cast<float>(width);
    const float scale = (nearest + farthest) / (nearest - farthest);
    const float shift = 2 * nearest * farthest / (nearest - farthest);
    const float distance = dot(back, mesh.eye);
    std::array<float, 16> columns = {};
    for (std::size_t i = 0; i < 3; ++i) {
        columns[4 * i] = across * right[i];
        columns[4 * i + 1] = zoom * up[i];
        columns[4 * i + 2] = scale * back[i];
        columns[4 * i + 3] = -back[i];
    }
    columns[14] = shift - scale * distance;
    columns[15] = distance;
    return columns;
}
