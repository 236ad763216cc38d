// What only the Linux platform has: when it asks EGL and GLX, monitors of an X server, window classes, and
// windows that another client of the server made.

// In front of Xlib, whose macros have GoogleTest's names.
#include "StartedDriver.h"

#include "ForeignContext.h"
#include "PlainWindow.h"
#include "ogl/ContextWrapped.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>
#include <X11/extensions/Xrandr.h>
#include <dlfcn.h>

#include <chrono>
#include <cstdlib>
#include <thread>

using namespace ZLT::OGL;

namespace {
int asked = 0;
}

// Stands in front of EGL's own: counts how often the platform layer asks.
extern "C" __attribute__((visibility("default"))) EGLContext eglGetCurrentContext() {
    ++asked;
    static const auto real = reinterpret_cast<EGLContext (*)()>(dlsym(RTLD_NEXT, "eglGetCurrentContext"));
    return real();
}

namespace {

class SeamDriverTest : public StartedDriver {};

EGLDisplay otherDisplay() {
    return std::getenv("DISPLAY") ? eglGetDisplay(EGL_DEFAULT_DISPLAY)
                                  : eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
}

template <class Call>
int questionsOf(Call call) {
    const int before = asked;
    call();
    return asked - before;
}

// The program's own connection to the X server.
class Server {
public:
    Server() : display_(XOpenDisplay(nullptr)) {}
    ~Server() {
        if (display_)
            XCloseDisplay(display_);
    }
    explicit operator bool() const { return display_; }
    operator Display*() const { return display_; }
    ::Window root() const { return DefaultRootWindow(display_); }

private:
    Display* display_;
};

HWND handle(::Window window) { return reinterpret_cast<HWND>(window); } // NOLINT(performance-no-int-to-ptr)

} // namespace

// In this order: once a foreign context was seen, the process asks for good.
TEST_F(SeamDriverTest, theSystemIsAskedWhenNothingIsKnownAndForGoodOnceSomebodyElsesContextWasSeen) {
    const ContextOffscreen own;
    own.makeCurrent();
    EXPECT_EQ(questionsOf([&] { EXPECT_EQ(Context::currentContext(), own.renderContext()); }), 0);
    releaseOGLContext();
    EXPECT_GT(questionsOf([] { EXPECT_EQ(Context::currentContext(), nullptr); }), 0);

    const ForeignContext foreign(otherDisplay());
    {
        const ContextWrapped wrapped;
        EXPECT_NE(wrapped.renderContext(), own.renderContext());
        own.makeCurrent();
        EXPECT_GT(questionsOf([&] { EXPECT_EQ(Context::currentContext(), own.renderContext()); }), 0);
        // So a switch behind our back is seen, on this thread and on others.
        ASSERT_TRUE(foreign.makeCurrent());
        EXPECT_EQ(Context::currentContext(), wrapped.renderContext());
        own.makeCurrent();
        std::thread([&] {
            ASSERT_TRUE(foreign.makeCurrent());
            EXPECT_EQ(Context::currentContext(), wrapped.renderContext());
            EXPECT_TRUE(eglMakeCurrent(foreign.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT));
            EXPECT_EQ(Context::currentContext(), nullptr);
        }).join();
        EXPECT_EQ(Context::currentContext(), own.renderContext());
        releaseOGLContext();
    }
}

TEST_F(SeamDriverTest, windowClassesAreKnownByName) {
    WNDCLASSEXA description = {};
    description.cbSize = sizeof(description);
    description.lpszClassName = "seam test";
    EXPECT_NE(RegisterClassExA(&description), 0);
    EXPECT_EQ(RegisterClassExA(&description), 0);
    EXPECT_EQ(GetLastError(), ERROR_CLASS_ALREADY_EXISTS);
    const HWND window =
        CreateWindowExA(0, "seam test", nullptr, WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    EXPECT_FALSE(UnregisterClassA("seam test", nullptr));
    EXPECT_EQ(GetLastError(), ERROR_CLASS_HAS_WINDOWS);
    RECT area = {};
    EXPECT_TRUE(GetClientRect(window, &area));
    EXPECT_EQ(area.right, 8);
    EXPECT_FALSE(ShowWindow(window, SW_SHOWNORMAL)) << "was hidden";
    EXPECT_TRUE(ShowWindow(window, SW_HIDE));
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_FALSE(MoveWindow(window, 0, 0, 9, 9, FALSE));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    EXPECT_TRUE(UnregisterClassA("seam test", nullptr));
    EXPECT_EQ(CreateWindowExA(0, "seam test", nullptr, 0, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(GetLastError(), ERROR_CANNOT_FIND_WND_CLASS);
    EXPECT_EQ(CreateWindowExA(0, "STATIC", nullptr, 0, 0, 0, 0, 8, nullptr, nullptr, nullptr, nullptr),
              nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_PARAMETER);
}

TEST_F(SeamDriverTest, eachMonitorOfAnXServerIsADisplayDevice) {
    const Server server;
    if (!server)
        GTEST_SKIP() << "no X server";
    Library::terminate();
    // The screen in two halves, the right one primary.
    const auto halve = [&](const char* name, int x, int width, bool primary) {
        XRRMonitorInfo monitor = {};
        monitor.name = XInternAtom(server, name, False);
        monitor.primary = primary;
        monitor.x = x;
        monitor.width = width;
        monitor.height = 1024;
        monitor.mwidth = monitor.mheight = 300;
        monitor.noutput = primary ? 0 : 1;
        XRRScreenResources* resources = XRRGetScreenResources(server, server.root());
        monitor.outputs = resources->outputs;
        XRRSetMonitor(server, server.root(), &monitor);
        XRRFreeScreenResources(resources);
    };
    const auto forgetBoth = [&] {
        for (const char* name : {"left", "right"})
            XRRDeleteMonitor(server, server.root(), XInternAtom(server, name, False));
        XSync(server, False);
    };
    const PlainWindow window(64, 48);
    const auto deviceAt = [&](int x, int width) {
        MoveWindow(window.handle(), x, 10, width, 48, FALSE);
        return std::string(Context::displayDeviceFromWindow(window.handle()).DeviceName);
    };
    halve("left", 0, 640, false);
    halve("right", 640, 640, true);
    XSync(server, False);
    Library::initialize(Library::InitOptions());
    ASSERT_EQ(Context::numDisplayDevice(), 2u);
    DISPLAY_DEVICEA left = {}, right = {};
    Context::displayDevice(0, left);
    Context::displayDevice(1, right);
    if (std::string(left.DeviceName) == "right")
        std::swap(left, right);
    EXPECT_STREQ(left.DeviceName, "left");
    EXPECT_STREQ(Context::primaryDisplayDevice().DeviceName, "right");
    EXPECT_TRUE(Context::shareDevice(left, right)) << "one adapter";
    {
        const ContextOffscreen onLeft(left), onRight(right);
        onLeft.makeCurrent();
        const ExtensionManager* leftManager = ExtensionManager::Instance();
        onRight.makeCurrent();
        EXPECT_NE(ExtensionManager::Instance(), leftManager) << "a manager for each name";
        releaseOGLContext();
        EXPECT_EQ(deviceAt(0, 64), "left");
        EXPECT_EQ(deviceAt(620, 64), "right") << "most of it";
        EXPECT_EQ(deviceAt(5000, 64), "right") << "the nearest";
        forgetBoth();
        // Between the two: 100 pixels from the left one, 50 from the right one, whatever its corner says.
        halve("left", 0, 100, false);
        halve("right", 700, 580, true);
        XSync(server, False);
        EXPECT_EQ(deviceAt(200, 450), "right") << "its rectangle";
    }
    Library::terminate();
    forgetBoth();
}

TEST_F(SeamDriverTest, aWindowOfAnotherClientIsDrawnToAndItsEndIsNoticed) {
    const Server server;
    if (!server)
        GTEST_SKIP() << "no X server";
    const auto open = [&] {
        const ::Window window = XCreateSimpleWindow(server, server.root(), 0, 0, 64, 48, 0, 0, 0);
        XMapWindow(server, window);
        XSync(server, False);
        return window;
    };
    const ::Window window = open();
    {
        const auto context = contextOn(handle(window));
        context->makeCurrent();
        clear(0, 1, 0);
        context->swapBuffers();
        glFinish();
        // The server hears of it on another connection than this one.
        unsigned long shown = 0;
        for (int attempt = 0; attempt < 100 && shown != 0x00FF00; ++attempt) {
            XImage* image = XGetImage(server, window, 63, 47, 1, 1, AllPlanes, ZPixmap);
            ASSERT_NE(image, nullptr);
            shown = XGetPixel(image, 0, 0) & 0xFFFFFF;
            XDestroyImage(image);
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        EXPECT_EQ(shown, 0x00FF00u);
        releaseOGLContext();
    }
    EXPECT_FALSE(DestroyWindow(handle(window))) << "somebody else's";
    XDestroyWindow(server, window);
    XSync(server, False);
    EXPECT_EQ(GetDC(handle(window)), nullptr);
    EXPECT_EQ(GetLastError(), ERROR_INVALID_WINDOW_HANDLE);
    // Of another visual than the hidden windows, on which formats are chosen.
    XVisualInfo deep = {};
    if (XMatchVisualInfo(server, DefaultScreen(static_cast<Display*>(server)), 24, DirectColor, &deep)) {
        XSetWindowAttributes attributes = {};
        attributes.colormap = XCreateColormap(server, server.root(), deep.visual, AllocNone);
        const ::Window other = XCreateWindow(server, server.root(), 0, 0, 64, 48, 0, 24, InputOutput,
                                             deep.visual, CWColormap | CWBorderPixel, &attributes);
        XSync(server, False);
        const auto context = contextOn(handle(other), nullptr, BufferFormat(BufferFormat::RGBA8_D24S8), 4);
        context->makeCurrent();
        EXPECT_GE(integerOf(GL_SAMPLES), 4);
        releaseOGLContext();
        XDestroyWindow(server, other);
    }
    // A context whose window went first is refused what needs the window, and goes.
    const ::Window second = open();
    {
        const auto context = contextOn(handle(second));
        context->makeCurrent();
        XDestroyWindow(server, second);
        XSync(server, False);
        EXPECT_FALSE(SwapBuffers(context->deviceContext()));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
        releaseOGLContext();
        EXPECT_THROW(context->makeCurrent(), ZLT::InternalException);
    }
    const ContextOffscreen after;
    after.makeCurrent();
    EXPECT_EQ(glGetError(), unsigned(GL_NO_ERROR));
    releaseOGLContext();
}
