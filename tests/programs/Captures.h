#pragma once

#include "RunProgram.h"

/// @file
/// What tests of captures share.

// The scenes of scenes.cpp.
inline constexpr const char* sceneNames[] = {
    "immediate", "lists",  "arrays",  "buffers",      "pixels",       "textures", "evaluators", "fonts",
    "pixmap",    "modes",  "queries", "stacks",       "accumulation", "assembly", "shaders",    "imaging",
    "contexts",  "resize", "samples", "framebuffers", "once",         "core"};

inline Words capture(const std::string& file, const Words& options = {}) {
    return Words{COMMAND, "capture", "--verify", "-o", file} + options;
}

// Of what `capture` says of the file: "5 frames, 652 calls".
inline std::string contentSaid(const Result& captured, const std::string& file) {
    const std::string& said = captured.err;
    const std::size_t start = said.find(": ", said.find(file)) + 2;
    return said.substr(start, said.find(" calls", start) + 6 - start);
}
inline std::string framesOf(const std::string& content) { return content.substr(0, content.find(',')); }
