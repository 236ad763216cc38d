#pragma once

#include "FakeGL.h"

#include <cstddef>
#include <functional>
#include <map>
#include <string>
#include <vector>

/// @file
/// The objects of a GL that draws nothing: names, what is bound, and what questions about them answer.

/// Lives on FakeGL, which must not be reset meanwhile. Functions with results (`glCreateShader`,
/// `glUnmapBuffer` …) are scripted by FakeGL::setResult.
class FakeObjects {
public:
    FakeObjects();
    FakeObjects(const FakeObjects&) = delete;
    FakeObjects& operator=(const FakeObjects&) = delete;
    ~FakeObjects();

    /// What the next `glGen…` gives; counts up, but for 0.
    unsigned int nextName = 5;
    /// For `glGetIntegerv`: bindings by the token of their query, kept by `glBind…` and `glUseProgram`, and
    /// whatever a test sets.
    std::map<unsigned int, int> integers;
    /// For `glGetShaderiv` and `glGetProgramiv`, whatever the object.
    std::map<unsigned int, int> parameters;
    /// What a shader's or a program's log reads.
    std::string infoLog;
    /// The shaders of the program, in the order of attachment.
    std::vector<unsigned int> attached;
    /// Called for what is not answered here: it writes what the driver would, as for `glGetTexImage`.
    std::function<void(const FakeGL::Call& call)> more;

    /// The calls since the last time, as text: numbers by their name in GL from 256 on and as decimals below,
    /// null, small addresses as decimals and others as "p", reals as decimals:
    /// "glBindTexture(GL_TEXTURE_2D, 5)". Questions (`glGet…` but for images and buffers, `glIs…`) are left
    /// out.
    std::vector<std::string> takeCalls();
    /// With the questions.
    std::vector<std::string> takeAllCalls();

private:
    void answer(const FakeGL::Call& call);

    std::size_t taken_ = 0;
};
