// Somebody else in the process, on the real driver: contexts and displays of EGL that come and go behind the
// library's back, servers and drivers that are not there, and what a start asks of the X server.

#include "ForeignContext.h"
#include "PlainWindow.h"
#include "StartedDriver.h"
#include "ogl/ContextWrapped.h"
#include "platform/WglTokens.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <dlfcn.h>
#include <xcb/xcb.h>
#include <xcb/xcbext.h>

#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <vector>

using namespace ZLT::OGL;

namespace {

// The function that stands behind one of the same name here.
template <class Function>
Function* next(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

std::atomic<int> roundTrips = 0;
int fakeDevices = 0;  // as many EGL devices, when not 0
bool refuses = false; // EGL makes no surface

EGLBoolean queryDevices(EGLint capacity, EGLDeviceEXT* devices, EGLint* count) {
    *count = devices ? std::min(capacity, fakeDevices) : fakeDevices;
    for (EGLint i = 0; devices && i < *count; ++i)
        devices[i] = reinterpret_cast<EGLDeviceEXT>(std::uintptr_t(i) + 1);
    return EGL_TRUE;
}
const char* queryDeviceString(EGLDeviceEXT, EGLint) { return ""; }

} // namespace

// These stand in front of the libraries' own: the driver's requests are counted as well.
#pragma GCC visibility push(default)
extern "C" {
void* xcb_wait_for_reply(xcb_connection_t* server, unsigned request, xcb_generic_error_t** error) {
    ++roundTrips;
    static auto* const real = next(xcb_wait_for_reply, "xcb_wait_for_reply");
    return real(server, request, error);
}
void* xcb_wait_for_reply64(xcb_connection_t* server, std::uint64_t request, xcb_generic_error_t** error) {
    ++roundTrips;
    static auto* const real = next(xcb_wait_for_reply64, "xcb_wait_for_reply64");
    return real(server, request, error);
}
xcb_generic_error_t* xcb_request_check(xcb_connection_t* server, xcb_void_cookie_t request) {
    ++roundTrips;
    static auto* const real = next(xcb_request_check, "xcb_request_check");
    return real(server, request);
}

__eglMustCastToProperFunctionPointerType eglGetProcAddress(const char* name) {
    using Address = __eglMustCastToProperFunctionPointerType;
    if (fakeDevices && std::strcmp(name, "eglQueryDevicesEXT") == 0)
        return reinterpret_cast<Address>(queryDevices);
    if (fakeDevices && std::strcmp(name, "eglQueryDeviceStringEXT") == 0)
        return reinterpret_cast<Address>(queryDeviceString);
    return next(eglGetProcAddress, "eglGetProcAddress")(name);
}
EGLDisplay eglGetPlatformDisplay(EGLenum platform, void* native, const EGLAttrib* attributes) {
    auto* const real = next(eglGetPlatformDisplay, "eglGetPlatformDisplay");
    return fakeDevices ? real(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr)
                       : real(platform, native, attributes);
}
EGLSurface eglCreatePbufferSurface(EGLDisplay display, EGLConfig config, const EGLint* attributes) {
    auto* const real = next(eglCreatePbufferSurface, "eglCreatePbufferSurface");
    return refuses ? EGL_NO_SURFACE : real(display, config, attributes);
}
EGLSurface eglCreateWindowSurface(EGLDisplay display, EGLConfig config, EGLNativeWindowType window,
                                  const EGLint* attributes) {
    auto* const real = next(eglCreateWindowSurface, "eglCreateWindowSurface");
    return refuses ? EGL_NO_SURFACE : real(display, config, window, attributes);
}
}
#pragma GCC visibility pop

namespace {

// The EGL display of the first device, which without a window system is the library's as well.
EGLDisplay deviceDisplay() {
    const auto query = reinterpret_cast<PFNEGLQUERYDEVICESEXTPROC>(eglGetProcAddress("eglQueryDevicesEXT"));
    EGLDeviceEXT device = nullptr;
    EGLint count = 0;
    query(1, &device, &count);
    return eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
}

Colour drawn() {
    clear(0, 1, 0);
    return pixelAt(1, 1);
}

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator all("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(all), end(all)));
}

class NeighbourDriverTest : public StartedDriver {};

} // namespace

// The first in the process: later on the system is asked always.
TEST_F(NeighbourDriverTest, theFirstForeignContextIsSeenWhileOneOfOursIsBelievedCurrent) {
    const ContextOffscreen own;
    own.makeCurrent();
    const ForeignContext foreign(deviceDisplay());
    {
        const ContextWrapped wrapped;
        EXPECT_NE(wrapped.renderContext(), own.renderContext());
        EXPECT_EQ(eglGetCurrentContext(), foreign.context);
    }
    releaseOGLContext();
}

TEST_F(NeighbourDriverTest, contextsComeAndGoAroundTheFirstForeignContext) {
    const ContextOffscreen own;
    own.makeCurrent();
    auto gone = std::make_unique<ContextOffscreen>();
    const ForeignContext foreign(deviceDisplay());
    gone.reset();
    EXPECT_EQ(eglGetCurrentContext(), foreign.context);
    { const ContextOffscreen other(&own); }
    EXPECT_EQ(eglGetCurrentContext(), foreign.context);
    // Somebody who puts back what it found makes one of ours current by EGL itself.
    own.makeCurrent();
    const HDC device = wglGetCurrentDC();
    const EGLContext context = eglGetCurrentContext();
    const EGLSurface surface = eglGetCurrentSurface(EGL_DRAW);
    const EGLDisplay display = eglGetCurrentDisplay();
    eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    EXPECT_EQ(Context::currentContext(), nullptr);
    eglMakeCurrent(display, surface, surface, context);
    EXPECT_EQ(Context::currentContext(), own.renderContext());
    EXPECT_EQ(wglGetCurrentDC(), device);
    releaseOGLContext();
}

TEST_F(NeighbourDriverTest, aDisplayThatSomebodyTerminatedIsOpenedAgain) {
    if (std::getenv("DISPLAY") || std::getenv("WAYLAND_DISPLAY"))
        GTEST_SKIP() << "no EGL device is shared";
    const PlainWindow window(64, 48);
    for (const bool openedAgain : {false, true}) {
        const auto old = contextOn(window.handle());
        const ContextOffscreen current;
        current.makeCurrent();
        eglTerminate(deviceDisplay());
        if (openedAgain)
            eglInitialize(deviceDisplay(), nullptr, nullptr);
        EXPECT_NE(messageOf([&] { old->makeCurrent(); }).find("Context::can't make this context current"),
                  std::string::npos);
        EXPECT_NE(std::string(ZLT::Platform::lastErrorText()).find("terminated"), std::string::npos)
            << ZLT::Platform::lastErrorText();
        const auto again = contextOn(window.handle());
        again->makeCurrent();
        EXPECT_EQ(drawn(), green);
        const ContextOffscreen sharing(again.get());
        sharing.makeCurrent();
        EXPECT_EQ(drawn(), green);
        releaseOGLContext();
    }
}

TEST_F(NeighbourDriverTest, aVersionThatTheDriverLacksIsSaidToBeThat) {
    const ContextOffscreen context;
    context.makeCurrent();
    const auto create =
        reinterpret_cast<HGLRC (*)(HDC, HGLRC, const int*)>(wglGetProcAddress("wglCreateContextAttribsARB"));
    if (!create)
        GTEST_SKIP() << "the driver has no creation by version";
    const int wanted[] = {WGL_CONTEXT_MAJOR_VERSION_ARB, 9, WGL_CONTEXT_MINOR_VERSION_ARB, 9, 0};
    for (const HGLRC share : {HGLRC(nullptr), context.renderContext()}) {
        SetLastError(0);
        EXPECT_EQ(create(context.deviceContext(), share, wanted), nullptr);
        EXPECT_EQ(GetLastError(), DWORD(ERROR_INVALID_VERSION_ARB));
    }
    releaseOGLContext();
}

// A driver that draws without a surface would let it pass, and nothing would be seen.
TEST_F(NeighbourDriverTest, aWindowForWhichThereIsNoSurfaceIsRefused) {
    PlainWindow window(64, 48);
    refuses = true;
    EXPECT_THROW(window.setPixelFormat(), std::runtime_error);
    refuses = false;
    window.setPixelFormat();
}

TEST_F(NeighbourDriverTest, aCurrentContextWhoseWindowIsGoneIsAskedForFormatsAndFunctions) {
    auto window = std::make_unique<PlainWindow>(64, 48);
    const PlainWindow other(64, 48);
    const auto context = contextOn(window->handle());
    context->makeCurrent();
    window.reset();
    const std::string failure =
        messageOf([&] { contextOn(other.handle(), nullptr, BufferFormat(BufferFormat::RGBA8_D24S8), 4); });
    EXPECT_TRUE(failure.empty() || failure == "Can't find suitable pixel format.") << failure;
    // Names the extension where the display has it.
    const bool has = ExtensionManager::Instance()->initialize(WGL_EXT_SWAP_CONTROL);
    EXPECT_EQ(has, wglGetProcAddress("wglSwapIntervalEXT") != nullptr);
    releaseOGLContext();
}

TEST_F(NeighbourDriverTest, aHundredStartsAndAThousandWindowsLeaveNoDescriptorOpen) {
    // What the driver opens for good it has opened with the first.
    { const ContextOffscreen context; }
    const std::size_t before = openDescriptors();
    for (int i = 0; i < repeated(100); ++i) {
        Library::terminate();
        Library::initialize(Library::InitOptions());
    }
    for (int i = 0; i < repeated(1000); ++i) {
        const PlainWindow window(8, 8);
        contextOn(window.handle())->makeCurrent();
        releaseOGLContext();
    }
    EXPECT_EQ(openDescriptors(), before);
}

// The aims are a third of what it was: 171 and 27.
TEST_F(NeighbourDriverTest, aStartAndAContextAskTheServerLittle) {
    if (!std::getenv("DISPLAY"))
        GTEST_SKIP() << "no X server is asked";
    const int start = roundTrips.exchange(0);
    const ContextOffscreen context;
    std::cout << "round trips: a start " << start << ", an off-screen context " << roundTrips << '\n';
    EXPECT_LE(start, 57);
    EXPECT_LE(roundTrips, 9);
}

// Each in a process of its own: the displays are opened once.

TEST(NeighbourStartDriverTest, fortyDevicesHaveAPlaceEach) {
    fakeDevices = 40;
    ASSERT_EQ(Context::numDisplayDevice(), 40u);
    for (std::size_t i = 0; i < 40; ++i) {
        DISPLAY_DEVICEA device = {};
        Context::displayDevice(i, device);
        DEVMODEA mode = {};
        mode.dmSize = sizeof(mode);
        ASSERT_TRUE(EnumDisplaySettingsA(device.DeviceName, ENUM_CURRENT_SETTINGS, &mode));
        // As the library cuts the position of its hidden windows.
        const HWND window =
            CreateWindowExA(0, "STATIC", nullptr, 0, static_cast<short>(mode.dmPosition.x),
                            static_cast<short>(mode.dmPosition.y), 8, 8, nullptr, nullptr, nullptr, nullptr);
        EXPECT_STREQ(Context::displayDeviceFromWindow(window).DeviceName, device.DeviceName);
        EXPECT_TRUE(DestroyWindow(window));
    }
}

// The environment names what is missing, and ZLT_EXPECTED_NOTE what is to be said of it.
TEST(NeighbourStartDriverTest, saysWhatIsMissing) {
    const char* expected = std::getenv("ZLT_EXPECTED_NOTE");
    if (!expected)
        GTEST_SKIP() << "nothing is missing";
    const std::string notes = ZLT::Platform::startupNotes();
    EXPECT_NE(notes.find(expected), std::string::npos) << notes;
    if (std::getenv("ZLT_EXPECTED_DEVICE")) {
        EXPECT_STREQ(Context::primaryDisplayDevice().DeviceName, std::getenv("ZLT_EXPECTED_DEVICE"));
        return;
    }
    EXPECT_EQ(Context::numDisplayDevice(), 0u);
    ZLT::Core::Library::initialize();
    EXPECT_EQ(messageOf([] { Library::initialize(Library::InitOptions()); }), "Unable to create window");
    EXPECT_FALSE(Library::isInitialized());
    EXPECT_EQ(messageOf([] { const ContextOffscreen context; }), "error != 0");
    EXPECT_NE(std::string(ZLT::Platform::lastErrorText()).find("startupNotes"), std::string::npos);
    EXPECT_EQ(ZLT::Platform::liveHandles(), 0u);
    ZLT::Core::Library::terminate();
}
