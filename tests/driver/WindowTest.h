#pragma once

#include "Window.h"

#include <gtest/gtest.h>

#include <memory>
#include <stdexcept>

/// A test on the real driver with a window: WGL on Windows, EGL behind the same names on Linux, on the X
/// server of DISPLAY if there is one. A machine without a driver skips it.
class WindowTest : public testing::Test {
protected:
    static constexpr int width = 64, height = 48;

    void SetUp() override {
        try {
            window_ = std::make_unique<Window>(width, height);
        } catch (const std::runtime_error& error) {
            GTEST_SKIP() << "no driver: " << error.what();
        }
    }
    void TearDown() override { wglMakeCurrent(nullptr, nullptr); }

    std::unique_ptr<Window> window_;
};
