#include "StartedLibrary.h"
#include "extensionator/OpenGLErrorChecker.h"
#include "extensionator/OpenGLErrorReporter.h"
#include "extensionator/OpenGLForwarder.h"
#include "extensionator/OpenGLRekorder.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/OpenGLWatcher.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

// Every allocation of the program is counted.
static std::atomic<int> allocations{0};

// Not inlined: the compiler would see malloc() and free() behind new and delete, and warn of a mismatch.
[[gnu::noinline]] void* operator new(std::size_t size) {
    ++allocations;
    if (void* block = std::malloc(size))
        return block;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* block) noexcept { std::free(block); }
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept { std::free(block); }

namespace {

struct FixedBuffer : std::streambuf {
    FixedBuffer() { setp(text, text + sizeof(text)); }
    char text[4096];
};

TEST(AllocationTest, aCallThroughAnyLayerMakesNone) {
    const ZLT::OGL::LibraryWithAllOfGL library;
    FakeGL::setRecording(false);
    ZLT::OGL::OpenGLErrorChecker checker;
    FixedBuffer trace, text, data;
    std::ostream traceOut(&trace), textOut(&text), dataOut(&data);
    ZLT::OGL::OpenGLTracer tracer(traceOut, &checker);
    ZLT::OGL::OpenGLRekorder recorder(textOut, dataOut, &checker, true);
    ZLT::OGL::OpenGLForwarder forwarder(&checker);
    ZLT::OGL::OpenGLErrorReporter reporter(&forwarder);
    struct Watcher : ZLT::OGL::OpenGLWatcher {
    } watcher;
    watcher.layer().setInterceptor(&reporter);
    reporter.cgmFinish("", 0); // it looks at the thread once
    const char name[] = "a name that is too long for the short form of a string";
    const float matrix[16] = {};
    const int before = allocations;
    ::operator delete(::operator new(1));
    ASSERT_EQ(before + 1, allocations) << "the count works";

    for (ZLT::OGL::OpenGLInterceptor* gl :
         std::initializer_list<ZLT::OGL::OpenGLInterceptor*>{&tracer, &recorder, &watcher.layer()}) {
        gl->cgmBindTexture(name, 1, 0x0DE1, 5);
        gl->cgmColor4f(name, 2, 0.1f, -1e10f, 3e-20f, 1);
        gl->cgmVertex2d(name, 3, 1.0 / 3, 1e-300);
        gl->cgmColor3ub(name, 4, 'a', 'b', 'c');
        gl->cgmBufferData(name, 8, 0x8892, 1ll << 40, &trace, 0x88E4);
        gl->cgmGetUniformLocation(name, 10, 1, name);
        gl->cgmLoadMatrixf(name, 11, matrix);
        EXPECT_EQ(before + 1, allocations);
    }
    EXPECT_TRUE(traceOut.good() && textOut.good() && dataOut.good());
}

} // namespace
