// A checked call on a real driver, where the driver's share is the larger one.

#include "Comparison.h"
#include "GlbindingCheckedCall.h"
#include "HandWrittenChecker.h"
#include "HeadlessContext.h"
#include "extensionator/OpenGLInterceptor.h"

#include <GL/gl.h>
#include <benchmark/benchmark.h>

namespace {

void bare(benchmark::State& state) {
    for (auto _ : state)
        glBindTexture(GL_TEXTURE_2D, 1);
}
BENCHMARK(bare)->Name("glBindTexture");

void bareAndError(benchmark::State& state) {
    for (auto _ : state) {
        glBindTexture(GL_TEXTURE_2D, 1);
        benchmark::DoNotOptimize(glGetError());
    }
}
BENCHMARK(bareAndError)->Name("glBindTexture, glGetError");

void handWritten(benchmark::State& state) {
    HandWrittenInterceptor* head = handWrittenChecker();
    benchmark::DoNotOptimize(head);
    for (auto _ : state)
        head->bindTexture(__FILE__, __LINE__, GL_TEXTURE_2D, 1);
}
BENCHMARK(handWritten)->Name("hand-written bindTexture");

void chain(benchmark::State& state) {
    for (auto _ : state)
        CGM(BindTexture, GL_TEXTURE_2D, 1);
}
BENCHMARK(chain)->Name("CGM(BindTexture)");

#if defined(WITH_GLBINDING)
BENCHMARK(glbindingBindTexture)->Name("glbinding, after-callback with glGetError");
#endif

} // namespace

int main(int argc, char** argv) {
    makeHeadlessContextCurrent();
    return Bench::run(argc, argv,
                      {{"CGM(BindTexture)", "glBindTexture, glGetError", 1.2},
                       {"CGM(BindTexture)", "hand-written bindTexture"},
                       {"CGM(BindTexture)", "glbinding, after-callback with glGetError"}});
}
