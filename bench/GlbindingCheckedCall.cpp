#include "GlbindingCheckedCall.h"

#include <glbinding/Binding.h>
#include <glbinding/callbacks.h>
#include <glbinding/gl/gl.h>

#include <stdexcept>

namespace {

void checkByCallback() {
    glbinding::Binding::initialize(1, true, true);
    glbinding::setCallbackMaskExcept(glbinding::CallbackMask::After, {"glGetError"});
    glbinding::setAfterCallback([](const glbinding::FunctionCall&) {
        if (gl::glGetError() != gl::GL_NO_ERROR)
            throw std::runtime_error("GL error");
    });
}

} // namespace

void glbindingBindTexture(benchmark::State& state) {
    checkByCallback();
    for (auto _ : state)
        gl::glBindTexture(gl::GL_TEXTURE_2D, 1);
}

void glbindingUniform4f(benchmark::State& state, int location) {
    checkByCallback();
    float value = 0;
    for (auto _ : state) {
        gl::glUniform4f(location, value, 1, 2, 3);
        value += 1;
    }
}
