// Contexts that toolkits made, by GLX and by EGL, taken over by ContextWrapped; toolkits' surfaces on
// Wayland.

// In front of Xlib, whose macros have GoogleTest's names.
#include "StartedDriver.h"

#include "extensionator/OpenGLInterceptor.h"
#include "ogl/ContextWrapped.h"
#include "platform/Wayland.h"

#include <EGL/egl.h>
#define GLFW_EXPOSE_NATIVE_WAYLAND
#define GLFW_EXPOSE_NATIVE_X11
#include <GL/freeglut.h>
#include <GL/glx.h>
#include <GLFW/glfw3.h>
#include <GLFW/glfw3native.h>
#include <SDL.h>
#include <SDL_syswm.h>
#include <cstdlib>
#include <dlfcn.h>
#include <functional>
#include <stdexcept>
#include <thread>

using namespace ZLT::OGL;

namespace {

constexpr int width = 64;
constexpr int height = 48;

// A window of a toolkit, whose context is current.
class ToolkitWindow {
public:
    virtual ~ToolkitWindow() = default;
    virtual HWND handle() const = 0;
    virtual void swap() = 0;
    // Of a second window, which is shown, and on which the toolkit has no context. The size is for Wayland.
    virtual HWND secondHandle(int /*width*/, int /*height*/) { return nullptr; }
};

HWND handleOf(::Window window) { return reinterpret_cast<HWND>(window); } // NOLINT(performance-no-int-to-ptr)

void require(bool done, const char* step) {
    if (!done)
        throw std::runtime_error(std::string(step) + " failed");
}

class Glfw : public ToolkitWindow {
public:
    explicit Glfw(int api) {
        require(glfwInit() == GLFW_TRUE, "glfwInit");
        glfwWindowHint(GLFW_CONTEXT_CREATION_API, api);
        window_ = open();
        glfwMakeContextCurrent(window_);
    }
    ~Glfw() override { glfwTerminate(); }
    HWND handle() const override {
        return handleOf(function<decltype(&glfwGetX11Window)>("glfwGetX11Window")(window_));
    }
    void swap() override { glfwSwapBuffers(window_); }

protected:
    // A GLFW for one window system lacks the functions of the other.
    template <class Function>
    static Function function(const char* name) {
        return reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, name));
    }
    static GLFWwindow* open() {
        GLFWwindow* window = glfwCreateWindow(width, height, "adopted", nullptr, nullptr);
        require(window != nullptr, "glfwCreateWindow");
        return window;
    }
    static GLFWwindow* openSecond() {
        glfwWindowHint(GLFW_CLIENT_API, GLFW_NO_API);
        GLFWwindow* window = open();
        glfwPollEvents();
        return window;
    }
    static void close(GLFWwindow* window) { glfwDestroyWindow(window); }
    static HWND surfaceOf(GLFWwindow* window, int width, int height) {
        return ZLT::Platform::windowFromWayland(
            function<decltype(&glfwGetWaylandDisplay)>("glfwGetWaylandDisplay")(),
            function<decltype(&glfwGetWaylandWindow)>("glfwGetWaylandWindow")(window), width, height);
    }

    GLFWwindow* window_ = nullptr;
};

class Sdl : public ToolkitWindow {
public:
    explicit Sdl(bool egl, const char* driver = "x11") {
        SDL_SetHint(SDL_HINT_VIDEODRIVER, driver);
        SDL_SetHint(SDL_HINT_VIDEO_X11_FORCE_EGL, egl ? "1" : "0");
        // Its frames leak objects of libwayland-client, where our leaks would show as well.
        SDL_SetHint(SDL_HINT_VIDEO_WAYLAND_ALLOW_LIBDECOR, "0");
        require(SDL_Init(SDL_INIT_VIDEO) == 0, "SDL_Init");
        window_ = open();
        context_ = SDL_GL_CreateContext(window_);
        require(context_ != nullptr, "SDL_GL_CreateContext");
    }
    ~Sdl() override {
        SDL_GL_DeleteContext(context_);
        SDL_DestroyWindow(window_);
        SDL_Quit();
    }
    HWND handle() const override { return handleOf(systemOf(window_).info.x11.window); }
    void swap() override { SDL_GL_SwapWindow(window_); }

protected:
    static SDL_SysWMinfo systemOf(SDL_Window* window) {
        SDL_SysWMinfo information;
        SDL_VERSION(&information.version);
        require(SDL_GetWindowWMInfo(window, &information) == SDL_TRUE, "SDL_GetWindowWMInfo");
        return information;
    }
    static SDL_Window* open() {
        SDL_Window* window = SDL_CreateWindow("adopted", 0, 0, width, height, SDL_WINDOW_OPENGL);
        require(window != nullptr, "SDL_CreateWindow");
        return window;
    }
    static SDL_Window* openSecond() {
        SDL_Window* window = open();
        SDL_PumpEvents();
        return window;
    }
    static void close(SDL_Window* window) { SDL_DestroyWindow(window); }
    static HWND surfaceOf(SDL_Window* window, int width, int height) {
        const auto wayland = systemOf(window).info.wl;
        return ZLT::Platform::windowFromWayland(wayland.display, wayland.surface, width, height);
    }

    SDL_Window* window_ = nullptr;

private:
    SDL_GLContext context_ = nullptr;
};

// With a second window, on which it has no context.
template <class Base, class Window>
class ByWayland : public Base {
public:
    using Base::Base;
    ~ByWayland() override {
        for (auto* window : {this->window_, second_})
            if (window)
                DestroyWindow(Base::surfaceOf(window, width, height));
        if (second_)
            Base::close(second_);
    }
    HWND handle() const override { return Base::surfaceOf(this->window_, width, height); }
    HWND secondHandle(int width, int height) override {
        if (!second_)
            second_ = Base::openSecond();
        return Base::surfaceOf(second_, width, height);
    }

private:
    Window* second_ = nullptr;
};

class Glut : public ToolkitWindow {
public:
    Glut() {
        int argc = 1;
        std::string name = "adopted";
        char* argv[] = {name.data(), nullptr};
        glutInit(&argc, argv);
        glutInitDisplayMode(GLUT_DOUBLE | GLUT_RGBA | GLUT_DEPTH);
        glutInitWindowSize(width, height);
        glutCreateWindow("adopted");
    }
    ~Glut() override {
        // GLUT closes its display with the context still current on it.
        releaseOGLContext();
        glutExit();
    }
    HWND handle() const override { return handleOf(glXGetCurrentDrawable()); }
    void swap() override { glutSwapBuffers(); }
};

struct Toolkit {
    const char* name;
    bool egl;
    std::function<std::unique_ptr<ToolkitWindow>()> open;
};

// The native context and drawable, asked of the system itself.
struct Native {
    void* egl = eglGetCurrentContext();
    void* glx = glXGetCurrentContext();
    ::GLXDrawable drawable = glXGetCurrentDrawable();
    void* surface = eglGetCurrentSurface(EGL_DRAW);
    bool operator==(const Native&) const = default;
};

class AdoptionDriverTest : public ::testing::TestWithParam<Toolkit> {
protected:
    void SetUp() override {
        if (!std::getenv("DISPLAY") && !std::getenv("WAYLAND_DISPLAY"))
            GTEST_SKIP() << "no driver: the toolkits need a display server";
        window_ = GetParam().open();
        ZLT::Core::Library::initialize();
        Library::initialize(Library::InitOptions());
    }
    void TearDown() override {
        if (!Library::isInitialized())
            return;
        Library::terminate();
        ZLT::Core::Library::terminate();
        window_.reset();
        EXPECT_EQ(ZLT::Platform::liveHandles(), 0u);
    }

    std::unique_ptr<ToolkitWindow> window_;
};

class SecondWindowDriverTest : public AdoptionDriverTest {};

Colour drawnIn(const Colour& colour, int x = 1, int y = 1) {
    clear(float(colour[0]), float(colour[1]), float(colour[2]));
    return pixelAt(x, y);
}

} // namespace

TEST_P(AdoptionDriverTest, theToolkitsContextIsTheCurrentOneAndStaysIt) {
    const Native before;
    EXPECT_EQ(before.egl != nullptr, GetParam().egl);
    const HGLRC adopted = Context::currentContext();
    ASSERT_NE(adopted, nullptr);
    EXPECT_THROW(ExtensionManager::Instance(), ZLT::InternalException) << "not wrapped yet";
    {
        const ContextWrapped wrapped(wglGetCurrentDC(), adopted, window_->handle());
        EXPECT_EQ(wrapped.renderContext(), adopted);
        EXPECT_TRUE(ExtensionManager::Instance()->isSupported(OPEN_GL_2_0));
        CGM(ActiveTexture, GL_TEXTURE0);
        EXPECT_EQ(Native(), before);

        int redBits = 0, depthBits = -1, others = 0;
        wrapped.getBitDepths(&redBits, &others, &others, &others, &others, &depthBits);
        EXPECT_EQ(redBits, integerOf(GL_RED_BITS));
        EXPECT_EQ(depthBits, integerOf(GL_DEPTH_BITS));

        // Contexts of our own come and go, on this thread and on another.
        const ContextOffscreen own;
        EXPECT_EQ(Native(), before);
        own.makeCurrent();
        EXPECT_EQ(Context::currentContext(), own.renderContext());
        EXPECT_EQ(drawnIn(green), green);
        wrapped.makeCurrent();
        EXPECT_EQ(Native(), before);
        EXPECT_EQ(drawnIn(red), red);
        window_->swap();
        std::thread([&] {
            EXPECT_EQ(Context::currentContext(), nullptr);
            own.makeCurrent();
            EXPECT_EQ(Context::currentContext(), own.renderContext());
            EXPECT_EQ(drawnIn(green), green);
            releaseOGLContext();
        }).join();
        EXPECT_EQ(Context::currentContext(), adopted);
    }
    EXPECT_EQ(Native(), before) << "the wrapper is gone, the context is not";
    EXPECT_FALSE(wglDeleteContext(adopted)) << "somebody else's";
    EXPECT_EQ(drawnIn(red), red);
}

TEST_P(AdoptionDriverTest, aContextOfOursSharesWithTheToolkits) {
    const Native before;
    {
        const ContextWrapped wrapped(wglGetCurrentDC(), Context::currentContext(), window_->handle());
        GLuint texture = 0;
        glGenTextures(1, &texture);
        glBindTexture(GL_TEXTURE_2D, texture);
        const ContextOffscreen sharing(&wrapped);
        EXPECT_EQ(Native(), before);
        EXPECT_TRUE(sharing.isSharingWithCurrentContext());
        sharing.makeCurrent();
        EXPECT_EQ(Context::currentContext(), sharing.renderContext());
        EXPECT_TRUE(glIsTexture(texture));
        EXPECT_EQ(drawnIn(green), green);

        // A third one joins through the second, on a window.
        const HWND window = CreateWindowExA(0, "STATIC", "third", WS_POPUP | WS_VISIBLE, 0, 0, width, height,
                                            nullptr, nullptr, nullptr, nullptr);
        {
            const auto third = contextOn(window, &sharing, BufferFormat(BufferFormat::RGB8_D24));
            third->makeCurrent();
            EXPECT_TRUE(glIsTexture(texture));
            EXPECT_EQ(drawnIn(white), white);
            third->swapBuffers();
        }
        EXPECT_TRUE(DestroyWindow(window));
        wrapped.makeCurrent();
        const ContextOffscreen alone;
        alone.makeCurrent();
        EXPECT_FALSE(glIsTexture(texture));
        wrapped.makeCurrent();
    }
    EXPECT_EQ(Native(), before);
}

TEST_P(AdoptionDriverTest, whatTheToolkitMakesCurrentLaterIsSeen) {
    const HGLRC adopted = Context::currentContext();
    const HDC device = wglGetCurrentDC();
    const ContextWrapped wrapped(device, adopted, nullptr);
    const ContextOffscreen own;
    own.makeCurrent();
    // Behind our back, by the native call alone.
    if (GetParam().egl) {
        EXPECT_TRUE(eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT));
        EXPECT_EQ(Context::currentContext(), nullptr);
    } else {
        releaseOGLContext();
    }
    wrapped.makeCurrent();
    EXPECT_EQ(Context::currentContext(), adopted);
    EXPECT_EQ(wglGetCurrentDC(), device);
    releaseOGLContext();
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    EXPECT_EQ(glXGetCurrentContext(), nullptr);
    wrapped.makeCurrent();
}

TEST_P(AdoptionDriverTest, whatTheToolkitClosedIsNotTouchedAgain) {
    auto wrapped = std::make_unique<ContextWrapped>();
    auto sharing = std::make_unique<ContextOffscreen>(wrapped.get());
    sharing->makeCurrent();
    glClear(GL_COLOR_BUFFER_BIT);
    // When a display closes while a thread of Mesa 22.3's rasterizer still works, Mesa may wait for ever.
    glFinish();
    releaseOGLContext();
    const HDC device = wrapped->deviceContext();
    wrapped->makeCurrent();
    // EGL's own objects don't outlive the display: GLFW closes the connection before it ends EGL, which then
    // destroys them by requests.
    if (GetParam().egl)
        sharing.reset();
    window_.reset();
    EXPECT_EQ(Context::currentContext(), nullptr);
    EXPECT_THROW(wrapped->makeCurrent(), ZLT::InternalException);
    EXPECT_FALSE(SwapBuffers(device));
    if (sharing) {
        EXPECT_THROW(sharing->makeCurrent(), ZLT::InternalException);
    }
    sharing.reset();
    wrapped.reset();
    const ContextOffscreen own;
    own.makeCurrent();
    EXPECT_EQ(drawnIn(green), green);
    releaseOGLContext();
}

TEST_P(SecondWindowDriverTest, hasTheSizeThatTheProgramTellsAndStaysTheToolkits) {
    const HWND window = window_->secondHandle(width, height);
    RECT area = {};
    {
        const auto own = contextOn(window, nullptr, BufferFormat(BufferFormat::RGB8_D24));
        own->makeCurrent();
        for (const int scale : {1, 3}) {
            EXPECT_EQ(window_->secondHandle(scale * width, scale * height), window);
            EXPECT_TRUE(GetClientRect(window, &area));
            EXPECT_EQ(area.right, scale * width);
            EXPECT_EQ(area.bottom, scale * height);
            EXPECT_EQ(drawnIn(green, area.right - 1, area.bottom - 1), green) << "the last pixel";
            own->swapBuffers();
        }
        releaseOGLContext();
    }
    EXPECT_TRUE(DestroyWindow(window));
    EXPECT_FALSE(GetClientRect(window, &area));
}

const auto nameOf = [](const auto& info) { return std::string(info.param.name); };
const Toolkit onWayland[] = {
    {"SdlByWayland", true, [] { return std::make_unique<ByWayland<Sdl, SDL_Window>>(true, "wayland"); }},
    {"GlfwByWayland", true,
     [] { return std::make_unique<ByWayland<Glfw, GLFWwindow>>(GLFW_EGL_CONTEXT_API); }}};
INSTANTIATE_TEST_SUITE_P(Wayland, AdoptionDriverTest, ::testing::ValuesIn(onWayland), nameOf);
INSTANTIATE_TEST_SUITE_P(Wayland, SecondWindowDriverTest, ::testing::ValuesIn(onWayland), nameOf);
INSTANTIATE_TEST_SUITE_P(
    X11, AdoptionDriverTest,
    ::testing::Values(Toolkit{"GlfwByEgl", true, [] { return std::make_unique<Glfw>(GLFW_EGL_CONTEXT_API); }},
                      Toolkit{"GlfwByGlx", false,
                              [] { return std::make_unique<Glfw>(GLFW_NATIVE_CONTEXT_API); }},
                      Toolkit{"SdlByEgl", true, [] { return std::make_unique<Sdl>(true); }},
                      Toolkit{"SdlByGlx", false, [] { return std::make_unique<Sdl>(false); }},
                      Toolkit{"Freeglut", false, [] { return std::make_unique<Glut>(); }}),
    nameOf);
