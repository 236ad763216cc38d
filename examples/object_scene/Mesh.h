#pragma once

#include "Png.h"

#include <array>
#include <vector>

/// A corner of a triangle.
struct Vertex {
    float position[3];
    float normal[3];
    float around[2]; ///< Texture coordinates.
};

/// Triangles, and from where to look at them.
struct Mesh {
    std::vector<Vertex> vertices; ///< Three for each triangle.
    std::array<float, 3> eye;
};

/// A tube in a knot around the origin.
Mesh makeKnot();
/// Its surface: tiles with joints between.
Picture makePattern();
/// From the eye to the origin, with perspective; by columns, as GL takes it.
std::array<float, 16> viewOf(const Mesh& mesh, int width, int height);
