#pragma once

#include <benchmark/benchmark.h>

/// @file
/// Calls through glbinding, checked as its users do it: a callback with glGetError behind every function. A
/// context must be current.

void glbindingBindTexture(benchmark::State& state);

/// @param location  of a vec4 of the program in use
void glbindingUniform4f(benchmark::State& state, int location);
