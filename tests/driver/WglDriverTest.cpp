// The WGL chain on the real window system: WGL on Windows, EGL behind the same names on Linux.

#include "Window.h"
#include "extensionator/win/wglInterceptor.h"

#include <GL/gl.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <thread>

using namespace ZLT::OGL;

namespace {

class WglDriverTest : public ::testing::Test {
protected:
    void SetUp() override {
        try {
            window_ = std::make_unique<Window>(64, 48);
            window_->setPixelFormat();
        } catch (const std::runtime_error& error) {
            GTEST_SKIP() << "no driver: " << error.what();
        }
    }
    void TearDown() override {
        wglMakeCurrent(nullptr, nullptr);
        wglInterceptor::destroy();
    }

    std::unique_ptr<Window> window_;
};

} // namespace

TEST_F(WglDriverTest, aContextIsMadeUsedAndDeleted) {
    const HGLRC context = CWGM(CreateContext, window_->device());
    ASSERT_NE(context, nullptr);
    EXPECT_EQ(CWGM(GetCurrentContext), nullptr);
    ASSERT_TRUE(CWGM(MakeCurrent, window_->device(), context));
    EXPECT_EQ(CWGM(GetCurrentContext), context);
    EXPECT_EQ(CWGM(GetCurrentDC), window_->device());
    EXPECT_NE(CWGM(GetProcAddress, "glActiveTexture"), nullptr);

    glViewport(0, 0, 64, 48);
    glClearColor(0, 0, 1, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::array<std::uint8_t, 4> pixel{};
    glReadPixels(63, 47, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    EXPECT_EQ(pixel[0], 0);
    EXPECT_EQ(pixel[2], 255);
    EXPECT_TRUE(CWGM(SwapBuffers, window_->device()));

    EXPECT_TRUE(CWGM(MakeCurrent, nullptr, nullptr));
    EXPECT_EQ(CWGM(GetCurrentContext), nullptr);
    EXPECT_EQ(CWGM(GetCurrentDC), nullptr);
    EXPECT_TRUE(CWGM(DeleteContext, context));
}

TEST_F(WglDriverTest, aFailureComesBackWithAnErrorNumber) {
    const HGLRC context = CWGM(CreateContext, window_->device());
    ASSERT_TRUE(CWGM(DeleteContext, context));
    SetLastError(0);
    EXPECT_FALSE(CWGM(MakeCurrent, window_->device(), context)) << "a context that is gone";
    EXPECT_NE(GetLastError(), 0u);
    SetLastError(0);
    EXPECT_FALSE(CWGM(DeleteContext, context));
    EXPECT_NE(GetLastError(), 0u);
    SetLastError(0);
    EXPECT_EQ(CWGM(CreateContext, nullptr), nullptr);
    EXPECT_NE(GetLastError(), 0u);
    EXPECT_EQ(CWGM(GetProcAddress, "glActiveTexture"), nullptr) << "without a context";
}

TEST_F(WglDriverTest, sharedListsShowATextureOfTheOtherContext) {
    const HGLRC first = CWGM(CreateContext, window_->device());
    const HGLRC second = CWGM(CreateContext, window_->device());
    const HGLRC alone = CWGM(CreateContext, window_->device());
    ASSERT_TRUE(CWGM(ShareLists, first, second));
    ASSERT_TRUE(CWGM(MakeCurrent, window_->device(), first));
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    ASSERT_TRUE(CWGM(MakeCurrent, window_->device(), second));
    EXPECT_TRUE(glIsTexture(texture));
    ASSERT_TRUE(CWGM(MakeCurrent, window_->device(), alone));
    EXPECT_FALSE(glIsTexture(texture));
    for (const HGLRC context : {alone, second, first})
        EXPECT_TRUE(CWGM(DeleteContext, context)) << "the current one too";
    EXPECT_EQ(CWGM(GetCurrentContext), nullptr);
}

TEST_F(WglDriverTest, aContextIsCurrentOnOneThreadAlone) {
    const HGLRC context = CWGM(CreateContext, window_->device());
    ASSERT_TRUE(CWGM(MakeCurrent, window_->device(), context));
    std::thread([&] {
        EXPECT_EQ(CWGM(GetCurrentContext), nullptr);
        SetLastError(0);
        EXPECT_FALSE(CWGM(MakeCurrent, window_->device(), context));
        EXPECT_NE(GetLastError(), 0u);
    }).join();
    EXPECT_TRUE(CWGM(MakeCurrent, nullptr, nullptr));
    std::thread([&] {
        EXPECT_TRUE(CWGM(MakeCurrent, window_->device(), context));
        EXPECT_TRUE(CWGM(MakeCurrent, nullptr, nullptr));
    }).join();
    EXPECT_TRUE(CWGM(DeleteContext, context));
}

#if !defined(_WIN32)
TEST_F(WglDriverTest, handlesThatWereNeverGivenOutAreRefused) {
    int anything = 0;
    const auto foreign = [&]<class Handle>(Handle*& handle) {
        handle = reinterpret_cast<Handle*>(&anything);
    };
    HDC device;
    HGLRC context;
    HWND window;
    foreign(device);
    foreign(context);
    foreign(window);
    EXPECT_EQ(wglCreateContext(device), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    EXPECT_FALSE(wglMakeCurrent(device, context));
    EXPECT_FALSE(wglShareLists(context, context));
    EXPECT_FALSE(SwapBuffers(device));
    EXPECT_EQ(GetDC(window), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_FALSE(DestroyWindow(window));
    EXPECT_EQ(SetPixelFormat(window_->device(), 100000, nullptr), FALSE);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PIXEL_FORMAT);
    // EGL has neither fonts nor layers.
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(wglUseFontBitmapsA(window_->device(), 0, 1, 1));
    EXPECT_EQ(GetLastError(), ERROR_NOT_SUPPORTED);
    EXPECT_EQ(wglCreateLayerContext(window_->device(), 1), nullptr);
}

TEST_F(WglDriverTest, aContextThatWasCurrentOrSharesGetsNoShare) {
    const HGLRC first = wglCreateContext(window_->device());
    const HGLRC second = wglCreateContext(window_->device());
    const HGLRC third = wglCreateContext(window_->device());
    EXPECT_TRUE(wglShareLists(second, third));
    EXPECT_FALSE(wglShareLists(first, second)) << "would part it from the third";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_OPERATION);
    ASSERT_TRUE(wglMakeCurrent(window_->device(), first));
    EXPECT_FALSE(wglShareLists(second, first));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_OPERATION);
    for (const HGLRC context : {third, second, first})
        EXPECT_TRUE(wglDeleteContext(context));
}

TEST_F(WglDriverTest, aThreadThatEndsGivesItsContextBack) {
    const HGLRC context = wglCreateContext(window_->device());
    std::thread([&] { EXPECT_TRUE(wglMakeCurrent(window_->device(), context)); }).join();
    EXPECT_TRUE(wglMakeCurrent(window_->device(), context));
    EXPECT_TRUE(wglDeleteContext(context));
}

TEST_F(WglDriverTest, aWindowThatIsGoneIsRefusedAndItsHandleNotGivenToAnother) {
    const HGLRC context = wglCreateContext(window_->device());
    const HDC device = window_->device();
    ASSERT_TRUE(wglMakeCurrent(device, context));
    window_.reset();
    Window other(64, 48);
    other.setPixelFormat();
    EXPECT_NE(other.device(), device);
    EXPECT_EQ(wglGetCurrentContext(), context);
    EXPECT_FALSE(SwapBuffers(device));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    // EGL swaps the current window alone; a pbuffer has nothing to show.
    const bool pbuffer = !std::getenv("DISPLAY");
    EXPECT_EQ(SwapBuffers(other.device()) == TRUE, pbuffer);
    EXPECT_TRUE(wglMakeCurrent(other.device(), context));
    EXPECT_TRUE(wglDeleteContext(context));
}
#endif
