// Contexts, display devices and extension managers on the real driver: Mesa without X, Mesa on X11, WGL.

#include "PlainWindow.h"
#include "StartedDriver.h"
#include "extensionator/OpenGLInterceptor.h"
#include "extensionator/TextureState.h"
#include "extensionator/win/WglFunctions.h"
#include "ogl/ContextWrapped.h"
#include "ogl/ScopedContextWrapper.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <numeric>
#include <set>
#include <thread>
#include <vector>

using namespace ZLT::OGL;

namespace {

constexpr int width = 64;
constexpr int height = 48;

class ContextDriverTest : public StartedDriver {};

// Through the chain, by the entry that the driver has.
void setActiveUnit(int unit) {
    const auto name = static_cast<unsigned>(GL_TEXTURE0 + unit);
    if (ExtensionManager::Instance()->isSupported(OPEN_GL_1_3))
        CGM(ActiveTexture, name);
    else
        CGM(ActiveTextureARB, name);
}

GLuint newTexture() {
    GLuint name = 0;
    glGenTextures(1, &name);
    glBindTexture(GL_TEXTURE_2D, name);
    return name;
}

} // namespace

TEST_F(ContextDriverTest, contextsComeAndGoInEveryOrderAndLeaveTheCurrentOneAlone) {
    std::array<int, 3> order{};
    std::iota(order.begin(), order.end(), 0);
    const ContextOffscreen current;
    do {
        current.makeCurrent();
        const HDC device = wglGetCurrentDC();
        const GLuint texture = newTexture();
        const PlainWindow window(width, height);
        std::array<std::unique_ptr<Context>, 3> contexts;
        contexts[0] = contextOn(window.handle(), &current);
        contexts[1] = std::make_unique<ContextOffscreen>(contexts[0].get());
        contexts[2] = std::make_unique<ContextOffscreen>();
        EXPECT_EQ(Context::currentContext(), current.renderContext());
        EXPECT_TRUE(contexts[0]->isSharingWithCurrentContext());
        EXPECT_TRUE(contexts[1]->isSharingWithCurrentContext());
        EXPECT_FALSE(contexts[2]->isSharingWithCurrentContext());
        for (const auto& [context, shares] :
             {std::pair{contexts[0].get(), true}, {contexts[1].get(), true}, {contexts[2].get(), false}}) {
            context->makeCurrent();
            EXPECT_EQ(glIsTexture(texture) == GL_TRUE, shares);
            const ScopedContextWrapper restore;
            current.makeCurrent();
        }
        for (const int i : order) {
            // The next one to go is current in its turn, another one then.
            contexts[i]->makeCurrent();
            const bool last = i == order.back();
            if (!last)
                current.makeCurrent();
            contexts[i].reset();
            EXPECT_EQ(Context::currentContext(), last ? nullptr : current.renderContext());
            EXPECT_EQ(wglGetCurrentDC(), last ? nullptr : device);
        }
        current.makeCurrent();
        EXPECT_TRUE(glIsTexture(texture));
        glDeleteTextures(1, &texture);
    } while (std::ranges::next_permutation(order).found);
    releaseOGLContext();
}

TEST_F(ContextDriverTest, theManagerKnowsTheDriverAndItsTableReachesIt) {
    const ContextOffscreen context;
    context.makeCurrent();
    const ExtensionManager* manager = ExtensionManager::Instance();
    const std::string version = reinterpret_cast<const char*>(glGetString(GL_VERSION));
    const unsigned major = static_cast<unsigned>(std::stoul(version));
    EXPECT_EQ(manager->majorVersion(), std::min(major, 3u));
    EXPECT_NE(version.find(manager->additionalVersionInfo()), std::string::npos);

    // Each name of the driver's string that is known, is supported; and nothing else is.
    std::set<int> named;
    for (const ZLT::String& name : manager->driverExtensions())
        named.insert(ExtensionManager::Instance()->nameToEnumGL(name.c_str()));
    for (int value = GL_3DFX_MULTISAMPLE; value <= GL_WIN_SWAP_HINT; ++value)
        EXPECT_EQ(manager->isSupported(teExtension(value)), named.contains(value)) << value;

    if (manager->supportsMultiTexture()) {
        EXPECT_GE(manager->numberOfTextureUnits(), 2u);
        setActiveUnit(1);
        EXPECT_EQ(TextureState::activeTextureUnit(), 1u);
        if (manager->isSupported(GL_ARB_MULTITEXTURE))
            TextureState::setActiveTextureUnit(0);
        else
            setActiveUnit(0);
        EXPECT_EQ(TextureState::activeTextureUnit(), 0u);
        EXPECT_EQ(manager->table().glActiveTexture != nullptr, manager->isSupported(OPEN_GL_1_3));
    } else {
        EXPECT_EQ(manager->numberOfTextureUnits() > 1, manager->isSupported(GL_ARB_FRAGMENT_PROGRAM));
    }
    releaseOGLContext();
}

TEST_F(ContextDriverTest, aResizedWindowIsDrawnToTheLastPixel) {
    const PlainWindow window(width, height);
    const auto context = contextOn(window.handle());
    context->makeCurrent();
    int redBits = 0, stencilBits = 0, others = 0;
    context->getBitDepths(&redBits, &others, &others, &others, &stencilBits, &others);
    EXPECT_EQ(redBits, integerOf(GL_RED_BITS));
    EXPECT_EQ(stencilBits, integerOf(GL_STENCIL_BITS));
    for (const auto& [w, h] : {std::pair{width, height}, {2 * width, 3 * height}, {10, 20}}) {
        ASSERT_TRUE(MoveWindow(window.handle(), 3, 5, w, h, FALSE));
        context->swapBuffers();
        context->makeCurrent();
        glViewport(0, 0, w, h);
        clear(0, 0, 1);
        EXPECT_EQ(pixelAt(w - 1, h - 1), blue) << w << " x " << h;
        context->swapBuffers();
    }
    releaseOGLContext();
}

TEST_F(ContextDriverTest, aMultisampledFormatHasItsSamples) {
    const PlainWindow window(width, height);
    std::unique_ptr<ContextWindowed> context;
    const BufferFormat format(BufferFormat::RGBA8_D24S8);
    const std::string failure = messageOf([&] { context = contextOn(window.handle(), nullptr, format, 4); });
    if (!context) {
        EXPECT_EQ(failure, "Can't find suitable pixel format.");
        GTEST_SKIP() << "the driver has no multisampled window";
    }
    context->makeCurrent();
    EXPECT_GE(integerOf(GL_SAMPLES), 4);
    releaseOGLContext();
}

TEST_F(ContextDriverTest, retraceControlWorksOrIsRefused) {
    const PlainWindow window(width, height);
    const auto context = contextOn(window.handle());
    context->makeCurrent();
    const bool able = Context::supportsVerticalRetraceControl();
    for (const bool on : {false, true}) {
        EXPECT_EQ(messageOf([&] { context->enableSyncToVerticalRetrace(on); }),
                  able ? "" : "ContextWindowed::enableSyncToVerticalRetrace unsupported feature");
        EXPECT_TRUE(!able || _wcgmGetSwapIntervalEXT() == (on ? 1 : 0)) << on;
        context->swapBuffers();
    }
    releaseOGLContext();
}

TEST_F(ContextDriverTest, aWrapperAdoptsAndLetsGoOfAContextOfWgl) {
    PlainWindow window(width, height);
    window.setPixelFormat();
    const HGLRC made = wglCreateContext(window.device());
    ASSERT_TRUE(wglMakeCurrent(window.device(), made));
    EXPECT_EQ(messageOf([] { ExtensionManager::Instance(); }),
              "currentContext either not created with ZLT::OGL");
    const GLuint texture = newTexture();
    {
        const ContextWrapped wrapped;
        EXPECT_GT(ExtensionManager::Instance()->majorVersion(), 0u);
        EXPECT_EQ(wrapped.deviceName(), Context::primaryDisplayDevice().DeviceName);
        EXPECT_TRUE(wrapped.isSharingWithCurrentContext());
        const ContextOffscreen sharing(&wrapped);
        sharing.makeCurrent();
        EXPECT_TRUE(glIsTexture(texture));
        wrapped.makeCurrent();
    }
    EXPECT_EQ(Context::currentContext(), made);
    EXPECT_TRUE(glIsTexture(texture));
    releaseOGLContext();
    EXPECT_TRUE(wglDeleteContext(made));
}

TEST_F(ContextDriverTest, badInputIsRefusedAndNothingIsLeft) {
    const ContextOffscreen current;
    current.makeCurrent();
    const std::size_t before = liveHandles();
    DISPLAY_DEVICEA unknown = Context::primaryDisplayDevice();
    std::memcpy(unknown.DeviceName, "no such display", 16);
    EXPECT_EQ(messageOf([&] { const ContextOffscreen none(unknown); }), "error != 0");
    HWND gone = nullptr;
    {
        const PlainWindow window(width, height);
        gone = window.handle();
        const BufferFormat moreThanAnyDriverHas(255, 255, 255, 255, 8, 255, true);
        EXPECT_EQ(messageOf([&] { contextOn(gone, nullptr, moreThanAnyDriverHas); }),
                  "Can't find suitable pixel format.");
        EXPECT_EQ(Context::currentContext(), current.renderContext());
        contextOn(gone);
        EXPECT_EQ(messageOf([&] { contextOn(gone); }), "") << "the same format once more";
    }
    EXPECT_EQ(messageOf([&] { contextOn(gone); }), "ContextWindowed::ctor invalid DC on window");
    EXPECT_EQ(liveHandles(), before);
    EXPECT_EQ(Context::currentContext(), current.renderContext());
    releaseOGLContext();
}

TEST_F(ContextDriverTest, displayDevicesHaveNamesOfTheirOwnAndAnOffscreenContextEach) {
    std::set<std::string> names;
    for (std::size_t i = 0; i < Context::numDisplayDevice(); ++i) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(i, device);
        names.insert(device.DeviceName);
        EXPECT_TRUE(Context::shareDevice(device, device));
        const ContextOffscreen context(device);
        EXPECT_EQ(context.deviceName(), device.DeviceName);
        context.makeCurrent();
        EXPECT_GT(ExtensionManager::Instance()->majorVersion(), 0u);
        releaseOGLContext();
    }
    EXPECT_EQ(names.size(), Context::numDisplayDevice());
    EXPECT_LT(Context::primaryDisplayIndex(), names.size());
    const PlainWindow window(width, height);
    EXPECT_TRUE(names.contains(Context::displayDeviceFromWindow(window.handle()).DeviceName));
}

TEST_F(ContextDriverTest, aWindowMayGoBeforeItsContextAndIsNotRestored) {
    const ContextOffscreen other;
    auto window = std::make_unique<PlainWindow>(width, height);
    const auto context = contextOn(window->handle());
    context->makeCurrent();
    {
        const ScopedContextWrapper restore;
        other.makeCurrent();
        window.reset();
    }
    EXPECT_NE(Context::currentContext(), context->renderContext()) << "its window is gone";
    EXPECT_NE(messageOf([&] { context->makeCurrent(); }).find("Context::can't make this context current"),
              std::string::npos);
    other.makeCurrent();
    EXPECT_GT(ExtensionManager::Instance()->majorVersion(), 0u);
    releaseOGLContext();
}

TEST_F(ContextDriverTest, aThousandContextsLeaveNothingBehind) {
    const ContextOffscreen first;
    const std::size_t allocations = ZLT::Core::allocationCount();
    for (int i = 0; i < repeated(1000); ++i) {
        const auto context =
            i % 2 ? std::make_unique<ContextOffscreen>(&first) : std::make_unique<ContextOffscreen>();
        context->makeCurrent();
        clear(0, 1, 0);
    }
    EXPECT_EQ(ZLT::Core::allocationCount(), allocations);
}

TEST_F(ContextDriverTest, eightThreadsUseTheirContextsAtOnce) {
    constexpr int threadCount = 8;
    std::vector<std::unique_ptr<ContextOffscreen>> contexts;
    for (int i = 0; i < 2 * threadCount; ++i)
        contexts.push_back(std::make_unique<ContextOffscreen>());
    contexts[0]->makeCurrent();
    const ExtensionManager* expected = ExtensionManager::Instance();
    releaseOGLContext();
    OpenGLInterceptor::Instance();
    std::atomic<int> ready = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t)
        threads.emplace_back([&, t] {
            ++ready;
            while (ready < threadCount) {
            }
            for (int round = 0; round < 10; ++round) {
                const auto& context = contexts[static_cast<std::size_t>(2 * t + round % 2)];
                context->makeCurrent();
                for (int i = 0; i < 100; ++i) {
                    EXPECT_EQ(ExtensionManager::Instance(), expected);
                    setActiveUnit(i % 2);
                }
                const auto shade = static_cast<float>(t) / threadCount;
                clear(shade, 0, 1);
                EXPECT_NEAR(pixelAt(1, 1)[0], 255 * shade, 1);
                releaseOGLContext();
                EXPECT_EQ(ExtensionManager::Instance()->majorVersion(), 0u);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
}
