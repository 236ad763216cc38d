#include "AutoInitializer.h"
#include "StartedLibrary.h"
#include "extensionator/OpenGLTracer.h"
#include "extensionator/win/wglInterceptor.h"
#include "ogl/ContextWrapped.h"
#include "ogl/TextureUnit.h"

#include <string>

#include <gmock/gmock.h>

using namespace ZLT;
using namespace ZLT::OGL;

namespace {

const auto start = [] { OGL::Library::initialize(OGL::Library::InitOptions()); };

TEST(LibraryTest, itStartsOnceStopsOnceAndLeavesNothing) {
    FakeWindowSystem system;
    system.devices.push_back({"second", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 1000, 0});
    const std::size_t allocated = Core::allocationCount();
    EXPECT_EQ("!Core::Library::isInitialized()", failureOf(start));
    EXPECT_EQ("!isInitialized_", failureOf(OGL::Library::terminate));
    for (int times = 0; times < 100; ++times) {
        Core::Library::initialize();
        EXPECT_FALSE(OGL::Library::isInitialized());
        start();
        EXPECT_TRUE(OGL::Library::isInitialized());
        EXPECT_EQ("!!isInitialized_", failureOf(start));
        EXPECT_TRUE(OGL::Library::isInitialized());
        OpenGLInterceptor::Instance();
        wglInterceptor::Instance();
        EXPECT_LT(allocated, Core::allocationCount());
        Core::Library::terminate();
        EXPECT_EQ("!ZLT::Core::Library::isInitialized()", failureOf(OGL::Library::terminate));
        EXPECT_TRUE(OGL::Library::isInitialized());
        Core::Library::initialize();
        OGL::Library::terminate();
        Core::Library::terminate();
        EXPECT_EQ(allocated, Core::allocationCount());
        EXPECT_EQ(0u, system.windows() + system.classes() + system.contexts());
    }
}

TEST(LibraryTest, eachDriverIsAskedForItsTextureUnits) {
    FakeWindowSystem system;
    system.devices.push_back({"second", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 1000, 0});
    system.devices[0].driver.extensions = "GL_ARB_fragment_program";
    system.devices[0].driver.integers[GL_MAX_TEXTURE_IMAGE_UNITS] = 3;
    const StartedLibrary library; // the second driver has GL 1.3
    std::vector<FakeGL::Value> asked;
    for (const FakeGL::Call& call : FakeGL::calls())
        if (call.function == "glGetIntegerv")
            asked.push_back(call.arguments[0]);
    EXPECT_THAT(asked, testing::ElementsAre(FakeGL::Value(0x8872u), FakeGL::Value(0x84E2u)));
    const ContextOffscreen context;
    context.makeCurrent();
    EXPECT_NE(nullptr, TextureUnit::Unit(2)) << "as many as the best of them has";
}

TEST(LibraryTest, aStartThatFailsCanBeMadeAgain) {
    // The steps until the first context stands, those of the second device, and the last of all.
    for (const std::string function : {"EnumDisplaySettingsA", "RegisterClassExA", "CreateWindowExA",
                                       "ChoosePixelFormat", "wglCreateContext", "wglDeleteContext"}) {
        int failures = 0;
        for (int nth = 1; nth < 12; ++nth) {
            FakeWindowSystem system;
            system.devices.push_back({"second", DISPLAY_DEVICE_ATTACHED_TO_DESKTOP, 1000, 0});
            const std::size_t allocated = Core::allocationCount();
            Core::Library::initialize();
            system.fail(function, nth);
            const bool failed = !failureOf(start).empty();
            if (failed) {
                ++failures;
                EXPECT_FALSE(OGL::Library::isInitialized());
                EXPECT_EQ(nullptr, wglGetCurrentContext());
                system.failNothing();
                EXPECT_EQ("!!pavUnits_", failureOf(start));
                TextureUnit::terminate();
                start();
            }
            OGL::Library::terminate();
            Core::Library::terminate();
            // A context that can't be deleted keeps its window.
            const bool windowStays = failed && function == "wglDeleteContext";
            EXPECT_EQ(allocated + (windowStays ? 1 : 0), Core::allocationCount()) << function << ' ' << nth;
        }
        EXPECT_GE(failures, 2) << function;
    }
}

TEST(LibraryTest, aStartThatFailsAtItsTextureUnitsCanBeMadeAgain) {
    for (const bool older : {false, true}) {
        FakeWindowSystem system;
        const std::size_t allocated = Core::allocationCount();
        Core::Library::initialize();
        // They are the last step, and fail when the room for them has gone.
        FakeGL::setHook([](const FakeGL::Call& call) {
            if (call.function == "glGetIntegerv")
                TextureUnit::terminate();
        });
        EXPECT_EQ("!isInitialized()", failureOf(start));
        FakeGL::setHook({});
        EXPECT_EQ("", failureOf([&] {
                      if (older)
                          OGL::Library::initialize_DEPRECATED_2_5(nullptr, ExtensionManager::InitOptions());
                      else
                          start();
                      OGL::Library::terminate();
                  }));
        Core::Library::terminate();
        EXPECT_EQ(allocated, Core::allocationCount());
    }
}

TEST(LibraryTest, aLayerKeepsItFromStopping) {
    FakeWindowSystem system;
    const std::size_t allocated = Core::allocationCount();
    Core::Library::initialize();
    OpenGLTracer tracer;
    {
        const AutoInitializer library;
        EXPECT_EQ("!!isInitialized_", failureOf([] { const AutoInitializer second; }));
        OpenGLInterceptor::Instance()->addInterceptor(&tracer);
        EXPECT_EQ("!Enforce dynamic_cast<OpenGLErrorChecker *>(gInterceptor) != NULL",
                  failureOf(OGL::Library::terminate));
    }
    EXPECT_TRUE(OGL::Library::isInitialized()) << "the scope's end says nothing";
    tracer.popInterceptor();
    OGL::Library::terminate();
    AutoInitializer().release();
    OGL::Library::terminate();
    AutoInitializer(); // and stops it
    Core::Library::terminate();
    EXPECT_EQ(allocated, Core::allocationCount());
}

TEST(LibraryTest, aContextThatOutlivesItIsUnknownUntilItIsWrapped) {
    const std::string unknown = "!currentContext either not created with ZLT::OGL";
    const auto ask = [] { return failureOf([] { ExtensionManager::Instance()->majorVersion(); }); };
    for (const bool wraps : {false, true}) {
        FakeWindowSystem system;
        Core::Library::initialize();
        start();
        const Context* old = new ContextOffscreen;
        old->makeCurrent();
        OGL::Library::terminate();
        EXPECT_EQ(unknown, ask());
        start();
        EXPECT_EQ(unknown, ask());
        if (wraps) {
            const ContextWrapped again;
            EXPECT_EQ("", ask());
        }
        // The one that ends first takes the record along.
        EXPECT_EQ(wraps ? "!found" : "", failureOf([&] { delete old; }));
        releaseOGLContext();
        OGL::Library::terminate();
        Core::Library::terminate();
    }
}

TEST(LibraryTest, theOlderRouteLeavesManagersAndChainsToTheNextStop) {
    FakeWindowSystem system;
    const std::size_t allocated = Core::allocationCount();
    const auto older = [] { AutoInitializer(nullptr, ExtensionManager::InitOptions()).release(); };
    EXPECT_EQ("!Core::Library::isInitialized()", failureOf(older));
    EXPECT_EQ("!isInitialized_", failureOf(OGL::Library::terminate_DEPRECATED_2_5));
    Core::Library::initialize();
    OpenGLInterceptor::Instance();
    const std::size_t withChain = Core::allocationCount();
    older();
    EXPECT_EQ("!!isInitialized_", failureOf(older));
    EXPECT_EQ("!unit < (*pavUnits_).size()", failureOf([] { TextureUnit::Unit(0); }));
    Core::Library::terminate();
    EXPECT_EQ("!Core::Library::isInitialized()", failureOf(OGL::Library::terminate_DEPRECATED_2_5));
    Core::Library::initialize();
    OGL::Library::terminate_DEPRECATED_2_5();
    EXPECT_EQ("!isInitialized()", failureOf([] { TextureUnit::Unit(0); }));
    EXPECT_EQ(withChain, Core::allocationCount()) << "without a context there were no managers";
    {
        ContextOffscreen client;
        const AutoInitializer library(&client, ExtensionManager::InitOptions());
        EXPECT_EQ(client.renderContext(), wglGetCurrentContext());
        EXPECT_NE(nullptr, TextureUnit::Unit(0));
    }
    EXPECT_LT(withChain, Core::allocationCount());
    start();
    OGL::Library::terminate();
    Core::Library::terminate();
    EXPECT_EQ(allocated, Core::allocationCount());
}

} // namespace
