// What the chain itself costs: a checked call on a driver that does nothing.

#include "Comparison.h"
#include "HandWrittenChecker.h"
#include "LibraryContext.h"
#include "extensionator/ExtensionManager.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/OpenGLForwarder.h"
#include "extensionator/OpenGLWatcher.h"
#include "extensionator/ScopedInterceptor.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <benchmark/benchmark.h>

#include <cstdio>
#include <vector>

namespace {

using ZLT::OGL::OpenGLInterceptor;

// The names of eight textures in turn.
template <class Call>
void bindTextures(benchmark::State& state, Call call) {
    GLuint texture = 0;
    for (auto _ : state) {
        call(texture);
        texture = (texture + 1) & 7;
    }
}

void bare(benchmark::State& state) {
    bindTextures(state, [](GLuint texture) { glBindTexture(GL_TEXTURE_2D, texture); });
}
BENCHMARK(bare)->Name("glBindTexture");

void bareAndError(benchmark::State& state) {
    bindTextures(state, [](GLuint texture) {
        glBindTexture(GL_TEXTURE_2D, texture);
        benchmark::DoNotOptimize(glGetError());
    });
}
BENCHMARK(bareAndError)->Name("glBindTexture, glGetError");

void handWritten(benchmark::State& state) {
    HandWrittenInterceptor* head = handWrittenChecker();
    benchmark::DoNotOptimize(head);
    bindTextures(state,
                 [=](GLuint texture) { head->bindTexture(__FILE__, __LINE__, GL_TEXTURE_2D, texture); });
}
BENCHMARK(handWritten)->Name("hand-written bindTexture");

// Asked for its head at each call, as CGM does.
void handWrittenAsked(benchmark::State& state) {
    bindTextures(state, [](GLuint texture) {
        handWrittenChecker()->bindTexture(__FILE__, __LINE__, GL_TEXTURE_2D, texture);
    });
}
BENCHMARK(handWrittenAsked)->Name("hand-written bindTexture, head asked for");

void chain(benchmark::State& state) {
    bindTextures(state, [](GLuint texture) { CGM(BindTexture, GL_TEXTURE_2D, texture); });
}
BENCHMARK(chain)->Name("CGM(BindTexture)");

void chainByHead(benchmark::State& state) {
    OpenGLInterceptor* head = OpenGLInterceptor::Instance();
    bindTextures(state,
                 [=](GLuint texture) { head->cgmBindTexture(__FILE__, __LINE__, GL_TEXTURE_2D, texture); });
}
BENCHMARK(chainByHead)->Name("head->cgmBindTexture");

// One more layer in front of the checker.
void throughLayer(benchmark::State& state, ZLT::OGL::OpenGLInterceptorDecorator& layer) {
    const ZLT::OGL::ScopedInterceptor installed(layer);
    chainByHead(state);
}

void forwarder(benchmark::State& state) {
    ZLT::OGL::OpenGLForwarder layer;
    throughLayer(state, layer);
}
BENCHMARK(forwarder)->Name("forwarder, head->cgmBindTexture");

void counter(benchmark::State& state) {
    struct Counter : ZLT::OGL::OpenGLWatcher {
        bool before(const ZLT::OGL::OpenGLCall& call) override { return ++calls[call.number()]; }
        std::vector<int> calls = std::vector<int>(ZLT::OGL::openGLEntryCount());
    } watcher;
    throughLayer(state, watcher.layer());
}
BENCHMARK(counter)->Name("watcher that counts, head->cgmBindTexture");

void reporter(benchmark::State& state) {
    ZLT::OGL::OpenGLErrorReporter layer;
    throughLayer(state, layer);
}
BENCHMARK(reporter)->Name("reporter, head->cgmBindTexture");

// An entry outside GL 1.1, which goes by its address: the chain looks it up in the table of the current
// context's driver. The hand-written checker does so too, or knows one driver alone.
template <class Call>
void activateUnits(benchmark::State& state, Call call) {
    GLenum unit = 0;
    for (auto _ : state) {
        call(GL_TEXTURE0 + unit);
        unit = (unit + 1) & 7;
    }
}

void bareAddress(benchmark::State& state) {
    const ActiveTexture activeTexture = activeTextureFunction();
    activateUnits(state, activeTexture);
}
BENCHMARK(bareAddress)->Name("glActiveTexture");

void bareAddressAndError(benchmark::State& state) {
    const ActiveTexture activeTexture = activeTextureFunction();
    activateUnits(state, [=](GLenum unit) {
        activeTexture(unit);
        benchmark::DoNotOptimize(glGetError());
    });
}
BENCHMARK(bareAddressAndError)->Name("glActiveTexture, glGetError");

void handWrittenAddress(benchmark::State& state) {
    HandWrittenInterceptor* head = handWrittenChecker();
    benchmark::DoNotOptimize(head);
    activateUnits(state, [=](GLenum unit) { head->activeTexture(__FILE__, __LINE__, unit); });
}
BENCHMARK(handWrittenAddress)->Name("hand-written activeTexture");

void handWrittenTable(benchmark::State& state) {
    HandWrittenInterceptor* head = handWrittenChecker();
    benchmark::DoNotOptimize(head);
    activateUnits(state, [=](GLenum unit) { head->activeTextureByTable(__FILE__, __LINE__, unit); });
}
BENCHMARK(handWrittenTable)->Name("hand-written activeTexture, table asked for");

void chainAddress(benchmark::State& state) {
    activateUnits(state, [](GLenum unit) { CGM(ActiveTexture, unit); });
}
BENCHMARK(chainAddress)->Name("CGM(ActiveTexture)");

void chainAddressByHead(benchmark::State& state) {
    OpenGLInterceptor* head = OpenGLInterceptor::Instance();
    activateUnits(state, [=](GLenum unit) { head->cgmActiveTexture(__FILE__, __LINE__, unit); });
}
BENCHMARK(chainAddressByHead)->Name("head->cgmActiveTexture");

} // namespace

int main(int argc, char** argv) {
    const Bench::LibraryContext context;
    // The silent driver answers GL_TRUE to everything; with no context, the system's GL answers GL_FALSE.
    if (!CGM(IsTexture, 1)) {
        std::fprintf(stderr, "The chain doesn't reach the silent driver.\n");
        return 1;
    }
    if (ZLT::OGL::ExtensionManager::Instance()->table().glActiveTexture != activeTextureFunction()) {
        std::fprintf(stderr, "The table doesn't hold the silent driver's functions.\n");
        return 1;
    }
    using By = Bench::Comparison::By;
    return Bench::run(
        argc, argv,
        {{"head->cgmBindTexture", "hand-written bindTexture", 1, By::nanoseconds},
         {"CGM(BindTexture)", "hand-written bindTexture", 1, By::nanoseconds},
         {"CGM(BindTexture)", "hand-written bindTexture, head asked for", 1, By::nanoseconds},
         {"CGM(BindTexture)", "glBindTexture, glGetError", 0, By::nanoseconds},
         {"forwarder, head->cgmBindTexture", "head->cgmBindTexture", 1.5, By::nanoseconds},
         {"reporter, head->cgmBindTexture", "head->cgmBindTexture", 1.5, By::nanoseconds},
         {"watcher that counts, head->cgmBindTexture", "head->cgmBindTexture", 0, By::nanoseconds},
         {"head->cgmActiveTexture", "hand-written activeTexture, table asked for", 1, By::nanoseconds},
         {"CGM(ActiveTexture)", "hand-written activeTexture, table asked for", 1, By::nanoseconds},
         {"head->cgmActiveTexture", "hand-written activeTexture", 0, By::nanoseconds},
         {"CGM(ActiveTexture)", "hand-written activeTexture", 0, By::nanoseconds},
         {"CGM(ActiveTexture)", "glActiveTexture, glGetError", 0, By::nanoseconds}});
}
