// The WGL chain on the real window system: WGL on Windows, EGL behind the same names on Linux.

#include "PlainWindow.h"
#include "StartedDriver.h"
#include "extensionator/Load.h"
#include "extensionator/win/WglFunctions.h"
#include "extensionator/win/wglInterceptor.h"
#include "platform/WglTokens.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <thread>
#include <vector>

using namespace ZLT::OGL;

// A function of an extension, by its name behind wgl.
#define WGL(name) functionAddress<decltype(_wcgm##name)>("wgl" #name)

namespace {

class WglDriverTest : public ::testing::Test {
protected:
    void SetUp() override {
        try {
            window_ = std::make_unique<PlainWindow>(64, 48);
            window_->setPixelFormat();
        } catch (const std::runtime_error& error) {
            GTEST_SKIP() << "no driver: " << error.what();
        }
    }
    void TearDown() override {
        wglMakeCurrent(nullptr, nullptr);
        wglInterceptor::destroy();
    }

    std::unique_ptr<PlainWindow> window_;
};

} // namespace

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

namespace {

// Each failure of the Linux platform leaves a number. Wine leaves none in some places.
void expectErrorNumber() {
#if !defined(_WIN32)
    EXPECT_NE(GetLastError(), 0u);
#endif
}

// The window's context with the extension functions, current.
class WglExtensionDriverTest : public WglDriverTest {
protected:
    void SetUp() override {
        WglDriverTest::SetUp();
        if (!window_ || IsSkipped())
            return;
        context_ = wglCreateContext(window_->device());
        ASSERT_TRUE(wglMakeCurrent(window_->device(), context_));
        const auto names = WGL(GetExtensionsStringARB);
        ASSERT_NE(names, nullptr);
        names_ = std::string(" ") + names(window_->device()) + " ";
    }
    void TearDown() override {
        if (context_) {
            wglMakeCurrent(nullptr, nullptr);
            wglDeleteContext(context_);
        }
        WglDriverTest::TearDown();
    }

    bool names(const std::string& extension) const {
        return names_.find(" " + extension + " ") != std::string::npos;
    }
    int attribute(HDC device, int format, int name) const {
        const auto get = WGL(GetPixelFormatAttribivARB);
        int value = -1;
        EXPECT_TRUE(get(device, format, 0, 1, &name, &value)) << std::hex << name;
        return value;
    }

    // As WGL takes it.
    static std::vector<int> listOf(const std::map<int, int>& attributes) {
        std::vector<int> list;
        for (const auto& [name, value] : attributes)
            list.insert(list.end(), {name, value});
        list.push_back(0);
        return list;
    }
    // The formats, at most 16, that have at least these values.
    std::vector<int> choose(const std::map<int, int>& wanted) const {
        const std::vector<int> list = listOf(wanted);
        std::vector<int> found(16);
        UINT number = 0;
        if (!WGL(ChoosePixelFormatARB)(window_->device(), list.data(), nullptr, 16, found.data(), &number))
            number = 0;
        found.resize(std::min<std::size_t>(number, found.size()));
        return found;
    }

    HGLRC context_ = nullptr;
    std::string names_;
};

} // namespace

TEST_F(WglExtensionDriverTest, theStringNamesExactlyWhatThereIs) {
    for (const auto& [extension, function] : {std::pair{"WGL_ARB_pixel_format", "wglChoosePixelFormatARB"},
                                              {"WGL_ARB_create_context", "wglCreateContextAttribsARB"},
                                              {"WGL_ARB_make_current_read", "wglMakeContextCurrentARB"},
                                              {"WGL_ARB_pbuffer", "wglCreatePbufferARB"},
                                              {"WGL_EXT_swap_control", "wglSwapIntervalEXT"},
                                              {"WGL_ARB_render_texture", "wglBindTexImageARB"}})
        EXPECT_EQ(names(extension), wglGetProcAddress(function) != nullptr) << extension;
    EXPECT_TRUE(names("WGL_ARB_extensions_string"));
    SetLastError(0);
    EXPECT_EQ(wglGetProcAddress("wglNoSuchFunction"), nullptr);
    expectErrorNumber();
}

TEST_F(WglExtensionDriverTest, allWaysToAFormatShareOneNumbering) {
    ASSERT_TRUE(names("WGL_ARB_pixel_format"));
    const HDC device = window_->device();
    const int count = attribute(device, 1, WGL_NUMBER_PIXEL_FORMATS_ARB);
    PIXELFORMATDESCRIPTOR description = {};
    ASSERT_GE(count, DescribePixelFormat(device, 1, sizeof(description), nullptr));
    for (int format = 1; format <= DescribePixelFormat(device, 1, sizeof(description), nullptr); ++format) {
        ASSERT_TRUE(DescribePixelFormat(device, format, sizeof(description), &description));
        if (description.iPixelType != PFD_TYPE_RGBA || !(description.dwFlags & PFD_SUPPORT_OPENGL))
            continue;
        const auto flag = [&](DWORD bit) { return int((description.dwFlags & bit) != 0); };
        for (const auto& [name, value] : {std::pair<int, int>{WGL_RED_BITS_ARB, description.cRedBits},
                                          {WGL_ALPHA_BITS_ARB, description.cAlphaBits},
                                          {WGL_DEPTH_BITS_ARB, description.cDepthBits},
                                          {WGL_STENCIL_BITS_ARB, description.cStencilBits},
                                          {WGL_DOUBLE_BUFFER_ARB, flag(PFD_DOUBLEBUFFER)},
                                          {WGL_DRAW_TO_WINDOW_ARB, flag(PFD_DRAW_TO_WINDOW)}})
            EXPECT_EQ(value, attribute(device, format, name)) << format << ": " << std::hex << name;
    }
    const std::map<int, int> wanted = {{WGL_SUPPORT_OPENGL_ARB, 1}, {WGL_DRAW_TO_WINDOW_ARB, 1},
                                       {WGL_DOUBLE_BUFFER_ARB, 1},  {WGL_RED_BITS_ARB, 8},
                                       {WGL_STENCIL_BITS_ARB, 8},   {WGL_DEPTH_BITS_ARB, 24}};
    const std::vector<int> found = choose(wanted);
    ASSERT_FALSE(found.empty());
    for (const int format : found)
        for (const auto& [name, least] : wanted)
            EXPECT_GE(attribute(device, format, name), least) << format << ": " << std::hex << name;
    EXPECT_EQ(attribute(device, found[0], WGL_SAMPLES_ARB), 0) << "the nearest first";
    EXPECT_TRUE(choose({{WGL_RED_BITS_ARB, 500}}).empty());
}

TEST_F(WglExtensionDriverTest, aPbufferIsADrawableOfItsSize) {
    if (!names("WGL_ARB_pbuffer"))
        GTEST_SKIP() << "the driver has no pbuffers";
    const auto create = WGL(CreatePbufferARB);
    const auto deviceOf = WGL(GetPbufferDCARB);
    const auto query = WGL(QueryPbufferARB);
    const auto release = WGL(ReleasePbufferDCARB);
    const auto destroy = WGL(DestroyPbufferARB);
    const std::vector<int> formats =
        choose({{WGL_SUPPORT_OPENGL_ARB, 1}, {WGL_DRAW_TO_PBUFFER_ARB, 1}, {WGL_RED_BITS_ARB, 8}});
    ASSERT_FALSE(formats.empty());
    const HPBUFFERARB pbuffer = create(window_->device(), formats[0], 300, 200, nullptr);
    ASSERT_NE(pbuffer, nullptr);
    int width = 0, height = 0;
    EXPECT_TRUE(query(pbuffer, WGL_PBUFFER_WIDTH_ARB, &width));
    EXPECT_TRUE(query(pbuffer, WGL_PBUFFER_HEIGHT_ARB, &height));
    EXPECT_EQ(width, 300);
    EXPECT_EQ(height, 200);
    const HDC device = deviceOf(pbuffer);
    EXPECT_EQ(GetPixelFormat(device), formats[0]);
    const HGLRC context = wglCreateContext(device);
    ASSERT_TRUE(wglMakeCurrent(device, context));
    glViewport(0, 0, 300, 200);
    clear(0, 1, 0);
    EXPECT_EQ(pixelAt(299, 199), green);
    EXPECT_TRUE(wglMakeCurrent(window_->device(), context_));
    EXPECT_EQ(release(pbuffer, device), 1);
    EXPECT_TRUE(destroy(pbuffer));
    EXPECT_FALSE(destroy(pbuffer)) << "gone";
    EXPECT_FALSE(wglMakeCurrent(device, context));
    EXPECT_TRUE(wglDeleteContext(context));
}

TEST_F(WglExtensionDriverTest, readingComesFromAnotherWindowThanDrawing) {
    if (!names("WGL_ARB_make_current_read"))
        GTEST_SKIP() << "the driver reads from where it draws";
    const auto makeCurrent = WGL(MakeContextCurrentARB);
    const auto readDevice = WGL(GetCurrentReadDCARB);
    PlainWindow other(64, 48);
    other.setPixelFormat();
    ASSERT_TRUE(wglMakeCurrent(other.device(), context_));
    clear(1, 0, 0);
    ASSERT_TRUE(makeCurrent(window_->device(), other.device(), context_));
    EXPECT_EQ(wglGetCurrentDC(), window_->device());
    EXPECT_EQ(readDevice(), other.device());
    clear(0, 0, 1);
    EXPECT_EQ(pixelAt(1, 1), red);
    EXPECT_TRUE(wglMakeCurrent(window_->device(), context_));
}

TEST_F(WglExtensionDriverTest, aContextIsMadeOfTheVersionAndProfileAskedFor) {
    if (!names("WGL_ARB_create_context") || !names("WGL_ARB_create_context_profile"))
        GTEST_SKIP() << "the driver makes contexts of one kind";
    const auto create = WGL(CreateContextAttribsARB);
    GLuint texture = 0;
    glGenTextures(1, &texture);
    glBindTexture(GL_TEXTURE_2D, texture);
    const std::vector<int> core = listOf({{WGL_CONTEXT_MAJOR_VERSION_ARB, 3},
                                          {WGL_CONTEXT_MINOR_VERSION_ARB, 2},
                                          {WGL_CONTEXT_PROFILE_MASK_ARB, WGL_CONTEXT_CORE_PROFILE_BIT_ARB},
                                          {WGL_CONTEXT_FLAGS_ARB, WGL_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB}});
    const HGLRC made = create(window_->device(), context_, core.data());
    ASSERT_NE(made, nullptr);
    ASSERT_TRUE(wglMakeCurrent(window_->device(), made));
    EXPECT_EQ(integerOf(GL_CONTEXT_PROFILE_MASK), GL_CONTEXT_CORE_PROFILE_BIT);
    EXPECT_GE(integerOf(GL_MAJOR_VERSION), 3);
    EXPECT_TRUE(glIsTexture(texture)) << "shares with the first";
    EXPECT_TRUE(wglMakeCurrent(window_->device(), context_));
    EXPECT_TRUE(wglDeleteContext(made));
    const int future[] = {WGL_CONTEXT_MAJOR_VERSION_ARB, 9, WGL_CONTEXT_MINOR_VERSION_ARB, 9, 0};
    SetLastError(0);
    EXPECT_EQ(create(window_->device(), nullptr, future), nullptr);
    expectErrorNumber();
    EXPECT_EQ(create(nullptr, nullptr, core.data()), nullptr);
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
    PlainWindow other(64, 48);
    other.setPixelFormat();
    EXPECT_NE(other.device(), device);
    EXPECT_EQ(wglGetCurrentContext(), context);
    EXPECT_FALSE(SwapBuffers(device));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    // EGL swaps the current window alone; one that is never shown has nothing to swap.
    const bool shown = std::getenv("DISPLAY");
    EXPECT_EQ(SwapBuffers(other.device()) == TRUE, !shown);
    EXPECT_TRUE(wglMakeCurrent(other.device(), context));
    EXPECT_TRUE(wglDeleteContext(context));
}
#endif
