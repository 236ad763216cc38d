// The same call through glbinding, checked as its users do it: a callback behind every function.

#include <benchmark/benchmark.h>
#include <glbinding/Binding.h>
#include <glbinding/callbacks.h>
#include <glbinding/gl/gl.h>

#include <stdexcept>

namespace {

void checkedByCallback(benchmark::State& state) {
    glbinding::Binding::initialize(1, true, true);
    glbinding::setCallbackMaskExcept(glbinding::CallbackMask::After, {"glGetError"});
    glbinding::setAfterCallback([](const glbinding::FunctionCall&) {
        if (gl::glGetError() != gl::GL_NO_ERROR)
            throw std::runtime_error("GL error");
    });
    for (auto _ : state)
        gl::glBindTexture(gl::GL_TEXTURE_2D, 1);
}
BENCHMARK(checkedByCallback)->Name("glbinding, after-callback with glGetError");

} // namespace
