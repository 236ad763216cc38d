#pragma once

#define GL_GLEXT_PROTOTYPES
#include <GLFW/glfw3.h>

#include <GL/glext.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

/// @file
/// What the scenes share.

namespace Scenes {

constexpr int size = 96;
extern int frame;

// A new array each time, so that no address means anything.
template <class Value>
std::vector<Value> fresh(std::initializer_list<Value> values) {
    return values;
}

std::vector<unsigned char> checkered(int width, int height, int components, int rowLength = 0);
void immediate();
void quad();

// scenePrograms.cpp
void assembly();
void shaders();
void framebuffers();

// sceneOnce.cpp
void once();
void core();

// sceneReported.cpp
void reported();

} // namespace Scenes
