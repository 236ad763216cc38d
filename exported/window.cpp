// Windows and contexts by GLFW. There each window has a context of its own; where a context draws to another
// window, or reads from one, the window system is asked itself.
#include "system.h"

#define GLFW_INCLUDE_NONE
#include <GLFW/glfw3.h>

#include <chrono>
#include <thread>

#if defined(_WIN32)
#define GLFW_EXPOSE_NATIVE_WIN32
#define GLFW_EXPOSE_NATIVE_WGL
#include <GLFW/glfw3native.h>
#else
#include <dlfcn.h>
#endif

namespace {

[[noreturn]] void fail(const std::string& what) {
    const char* reason = nullptr;
    glfwGetError(&reason);
    throw std::runtime_error(what + (reason ? std::string(": ") + reason : ""));
}

struct WindowContext : Context {
    WindowContext(const Version& its, Context* sharing)
        : version_wanted(its), shares_with(static_cast<WindowContext*>(sharing)) {}
    Version version_wanted;
    WindowContext* shares_with;
    GLFWwindow* window = nullptr; // whose context it is
};

struct WindowSurface : Surface {
    using Surface::Surface;
    GLFWwindow* window = nullptr;
};

#if !defined(_WIN32)
// A function of a library that GLFW has loaded, or one of GLFW itself that only some builds of it have.
template <class Function>
Function loaded(const char* library, const char* name) {
    void* address = dlsym(RTLD_DEFAULT, name);
    if (!address)
        if (void* const handle = dlopen(library, RTLD_LAZY))
            address = dlsym(handle, name);
    Function function;
    std::memcpy(&function, &address, sizeof function);
    return function;
}

void* handle_of(GLFWwindow* window, const char* function) {
    const auto ask = loaded<void* (*)(GLFWwindow*)>("libglfw.so.3", function);
    void* const handle = ask ? ask(window) : nullptr;
    glfwGetError(nullptr); // of a window that is none of this window system's
    return handle;
}
#endif

// A context is made current with windows that are not its own.
bool make_current_natively(GLFWwindow* draw, GLFWwindow* read, GLFWwindow* owner) {
#if defined(_WIN32)
    const HDC to = GetDC(glfwGetWin32Window(draw));
    const HGLRC context = glfwGetWGLContext(owner);
    if (draw == read)
        return wglMakeCurrent(to, context) != 0;
    using Make = BOOL(WINAPI*)(HDC, HDC, HGLRC);
    const PROC address = wglGetProcAddress("wglMakeContextCurrentARB");
    Make make = nullptr;
    std::memcpy(&make, &address, sizeof make);
    return make && make(to, GetDC(glfwGetWin32Window(read)), context);
#else
    if (void* const context = handle_of(owner, "glfwGetGLXContext")) {
        const auto display = loaded<void* (*)()>("libglfw.so.3", "glfwGetX11Display");
        const auto window = loaded<unsigned long (*)(GLFWwindow*)>("libglfw.so.3", "glfwGetGLXWindow");
        const auto make = loaded<int (*)(void*, unsigned long, unsigned long, void*)>(
            "libGL.so.1", "glXMakeContextCurrent");
        return make && make(display(), window(draw), window(read), context);
    }
    if (void* const context = handle_of(owner, "glfwGetEGLContext")) {
        const auto display = loaded<void* (*)()>("libglfw.so.3", "glfwGetEGLDisplay");
        const auto make = loaded<unsigned (*)(void*, void*, void*, void*)>("libEGL.so.1", "eglMakeCurrent");
        return make && make(display(), handle_of(draw, "glfwGetEGLSurface"),
                            handle_of(read, "glfwGetEGLSurface"), context);
    }
    return false;
#endif
}

class WindowSystem : public System {
public:
    explicit WindowSystem(bool is_visible) : is_visible_(is_visible) {
        if (!glfwInit())
            fail("GLFW can't start");
    }
    ~WindowSystem() override { glfwTerminate(); }
    WindowSystem(const WindowSystem&) = delete;
    WindowSystem& operator=(const WindowSystem&) = delete;

    std::unique_ptr<Surface> make_surface(const Format& format) override {
        return std::make_unique<WindowSurface>(format);
    }

    std::unique_ptr<Context> make_context(const Version& version, Context* shares_with) override {
        return std::make_unique<WindowContext>(version, shares_with);
    }

    void make_current(Context* context, Surface* draw, Surface* read) override {
        if (!context)
            return glfwMakeContextCurrent(nullptr);
        auto& its = *static_cast<WindowContext*>(context);
        auto& to = *static_cast<WindowSurface*>(draw);
        auto& from = *static_cast<WindowSurface*>(read);
        if (!its.window) {
            // The first context of a window is the window's own.
            const bool is_own = !to.window;
            its.window =
                make_window(to.format, its.version_wanted,
                            its.shares_with ? its.shares_with->window : nullptr, is_own && is_visible_);
            if (is_own)
                to.window = its.window;
        }
        for (WindowSurface* const one : {&to, &from})
            if (!one->window)
                one->window = make_window(one->format, its.version_wanted, nullptr, is_visible_);
        is_own_ = to.window == its.window && from.window == its.window;
        if (is_own_)
            glfwMakeContextCurrent(its.window);
        else if (!make_current_natively(to.window, from.window, its.window))
            fail("a context can't be made current with another window");
    }

    // Its window may go on without it, and so it stays too. All go at the end.
    void destroy(Context&) override {}

    void reset() override {
        for (GLFWwindow* const window : windows_)
            glfwDestroyWindow(window);
        windows_.clear();
    }

    void resize(Surface& surface, int width, int height) override {
        GLFWwindow* const window = static_cast<WindowSurface&>(surface).window;
        if (!window)
            return;
        glfwSetWindowSize(window, width, height);
        wait_for_size(window, width, height);
    }

    void swap(Surface& surface) override {
        GLFWwindow* const window = static_cast<WindowSurface&>(surface).window;
        if (!window)
            return;
#if !defined(_WIN32)
        // By EGL, GLFW swaps only what it made current itself.
        void* const surface_of_egl = is_own_ ? nullptr : handle_of(window, "glfwGetEGLSurface");
        const auto swap_natively =
            surface_of_egl ? loaded<unsigned (*)(void*, void*)>("libEGL.so.1", "eglSwapBuffers") : nullptr;
        const auto display = loaded<void* (*)()>("libglfw.so.3", "glfwGetEGLDisplay");
        if (swap_natively && display)
            swap_natively(display(), surface_of_egl);
        else
#endif
            glfwSwapBuffers(window);
        glfwPollEvents();
        is_closed_ = is_closed_ || glfwWindowShouldClose(window);
    }

    void* function(const char* name) override {
        void* address = nullptr;
        const GLFWglproc function = glfwGetProcAddress(name);
        std::memcpy(&address, &function, sizeof address);
#if !defined(_WIN32)
        if (!address) // a context that is current with another window is none for GLFW
            if (const auto ask = loaded<void* (*)(const char*)>("libGL.so.1", "glXGetProcAddressARB"))
                address = ask(name);
#endif
        return address;
    }

    bool is_closed() override { return is_closed_; }

private:
    GLFWwindow* make_window(const Format& format, const Version& version, GLFWwindow* share,
                            bool is_visible) {
        glfwDefaultWindowHints();
        glfwWindowHint(GLFW_VISIBLE, is_visible);
        glfwWindowHint(GLFW_RESIZABLE, GLFW_FALSE);
        glfwWindowHint(GLFW_FOCUSED, GLFW_FALSE);
        // Small ones would be made larger for their title.
        glfwWindowHint(GLFW_DECORATED, format.width_ >= 200 && format.height_ >= 100);
        glfwWindowHint(GLFW_RED_BITS, format.red_);
        glfwWindowHint(GLFW_GREEN_BITS, format.green_);
        glfwWindowHint(GLFW_BLUE_BITS, format.blue_);
        glfwWindowHint(GLFW_ALPHA_BITS, format.alpha_);
        glfwWindowHint(GLFW_DEPTH_BITS, format.depth_);
        glfwWindowHint(GLFW_STENCIL_BITS, format.stencil_);
        for (const int name :
             {GLFW_ACCUM_RED_BITS, GLFW_ACCUM_GREEN_BITS, GLFW_ACCUM_BLUE_BITS, GLFW_ACCUM_ALPHA_BITS})
            glfwWindowHint(name, format.accumulation_);
        glfwWindowHint(GLFW_SAMPLES, format.samples_);
        glfwWindowHint(GLFW_STEREO, format.is_stereo_);
        glfwWindowHint(GLFW_SRGB_CAPABLE, format.is_srgb_);
        glfwWindowHint(GLFW_DOUBLEBUFFER, format.is_double_buffered_);
        if (version.is_core_ || version.is_forward_compatible_) {
            glfwWindowHint(GLFW_CONTEXT_VERSION_MAJOR, version.major_);
            glfwWindowHint(GLFW_CONTEXT_VERSION_MINOR, version.minor_);
            glfwWindowHint(GLFW_OPENGL_FORWARD_COMPAT, version.is_forward_compatible_);
            if (version.is_core_)
                glfwWindowHint(GLFW_OPENGL_PROFILE, GLFW_OPENGL_CORE_PROFILE);
        }
        GLFWwindow* const window =
            glfwCreateWindow(format.width_, format.height_, PROJECT_NAME, nullptr, share);
        if (!window)
            fail("no window of " + std::to_string(format.width_) + " by " + std::to_string(format.height_) +
                 " pixels can be made");
        windows_.push_back(window);
        wait_for_size(window, format.width_, format.height_);
        glfwMakeContextCurrent(window);
        glfwSwapInterval(0);
        return window;
    }

    // A window system takes its time.
    static void wait_for_size(GLFWwindow* window, int width, int height) {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2);
        int now_width = 0, now_height = 0;
        do {
            glfwPollEvents();
            glfwGetFramebufferSize(window, &now_width, &now_height);
            if (now_width == width && now_height == height)
                return;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        } while (std::chrono::steady_clock::now() < end);
    }

    bool is_visible_, is_closed_ = false;
    bool is_own_ = true; // whether what is current is a window with its own context
    std::vector<GLFWwindow*> windows_;
};

} // namespace

std::unique_ptr<System> make_window_system(bool is_visible) {
    return std::make_unique<WindowSystem>(is_visible);
}

#if defined(_WIN32)
// A window that is not shown does it.
std::unique_ptr<System> make_headless_system() { return make_window_system(false); }
#endif
