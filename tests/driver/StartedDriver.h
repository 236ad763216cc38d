#pragma once

#include "LibraryOGL.h"
#include "ogl/BufferFormat.h"
#include "ogl/ContextOffscreen.h"
#include "ogl/ContextWindowed.h"
#include "zlt/core/Core.h"
#include "zlt/core/Exceptions.h"
#include "zlt/core/Memory.h"

#include <GL/gl.h>
#include <GL/glext.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>

/// @file
/// The library, started on the real driver, and what the tests ask the two.

inline std::size_t liveHandles() {
#if defined(_WIN32)
    return 0; // the system counts its own
#else
    return ZLT::Platform::liveHandles();
#endif
}

/// What `call` throws; "" when nothing.
template <class Exception = ZLT::LogicalException, class Call>
std::string messageOf(Call call) {
    try {
        call();
    } catch (const Exception& failure) {
        return failure.what();
    }
    return "";
}

/// A double buffered context on the window.
inline std::unique_ptr<ZLT::OGL::ContextWindowed>
contextOn(HWND window, const ZLT::OGL::Context* share = nullptr,
          const ZLT::OGL::BufferFormat& format = ZLT::OGL::BufferFormat(ZLT::OGL::BufferFormat::RGBA8_D24S8),
          unsigned samples = ZLT::OGL::Context::eNoMultisample) {
    return std::make_unique<ZLT::OGL::ContextWindowed>(window, format, ZLT::OGL::Context::eDoubleBuffered,
                                                       ZLT::OGL::Context::teMultisample(samples), share);
}

/// So many repetitions; under the sanitizers, whose price for each of the driver's threads and libraries is
/// seconds, a twentieth, and a quarter where each window asks Wine's server.
constexpr int repeated(int times) {
#if defined(__SANITIZE_THREAD__) || defined(__SANITIZE_ADDRESS__)
    return times / 20;
#elif defined(_WIN32)
    return times / 4;
#else
    return times;
#endif
}

using Colour = std::array<int, 3>;
constexpr Colour black = {0, 0, 0}, red = {255, 0, 0}, green = {0, 255, 0}, blue = {0, 0, 255},
                 white = {255, 255, 255};

inline Colour pixelAt(int x, int y) {
    std::array<std::uint8_t, 4> bytes{};
    glReadPixels(x, y, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
    return {bytes[0], bytes[1], bytes[2]};
}

inline GLint integerOf(GLenum query) {
    GLint value = -1;
    glGetIntegerv(query, &value);
    return value;
}

inline void clear(float red, float green, float blue) {
    glClearColor(red, green, blue, 1);
    glClear(GL_COLOR_BUFFER_BIT);
}

/// Starts the library, and at the end expects that nothing is left of it.
class StartedDriver : public ::testing::Test {
protected:
    void SetUp() override {
        ZLT::Core::Library::initialize();
        if (ZLT::OGL::Context::numDisplayDevice() == 0)
            GTEST_SKIP() << "no driver: no display device";
        ZLT::OGL::Library::initialize(ZLT::OGL::Library::InitOptions());
    }
    void TearDown() override {
        if (ZLT::OGL::Library::isInitialized())
            ZLT::OGL::Library::terminate();
        EXPECT_EQ(ZLT::Core::writeAllocations(std::cerr), 0u);
        ZLT::Core::Library::terminate();
        EXPECT_EQ(liveHandles(), 0u);
        EXPECT_EQ(ZLT::OGL::Context::currentContext(), nullptr);
    }
};

/// The same, with a context that is current.
class CurrentDriver : public StartedDriver {
protected:
    void SetUp() override {
        StartedDriver::SetUp();
        if (IsSkipped())
            return;
        context_ = std::make_unique<ZLT::OGL::ContextOffscreen>();
        context_->makeCurrent();
        RecordProperty("renderer", reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    }
    void TearDown() override {
        context_.reset();
        StartedDriver::TearDown();
    }

    std::unique_ptr<ZLT::OGL::ContextOffscreen> context_;
};
