// Off screen, by EGL, which is loaded while the program runs: no window system is needed.
#include "system.h"

#if !defined(_WIN32)

#include <dlfcn.h>

#include <climits>
#include <cstdlib>
#include <map>
#include <set>

namespace {

using EGLDisplay = void*;
using EGLConfig = void*;
using EGLSurface = void*;
using EGLContext = void*;
using EGLint = std::int32_t;
using EGLBoolean = unsigned int;

enum : EGLint {
    EGL_ALPHA_SIZE = 0x3021,
    EGL_BLUE_SIZE = 0x3022,
    EGL_GREEN_SIZE = 0x3023,
    EGL_RED_SIZE = 0x3024,
    EGL_DEPTH_SIZE = 0x3025,
    EGL_STENCIL_SIZE = 0x3026,
    EGL_SAMPLES = 0x3031,
    EGL_SURFACE_TYPE = 0x3033,
    EGL_NONE = 0x3038,
    EGL_RENDERABLE_TYPE = 0x3040,
    EGL_HEIGHT = 0x3056,
    EGL_WIDTH = 0x3057,
    EGL_CONTEXT_MAJOR_VERSION = 0x3098,
    EGL_CONTEXT_MINOR_VERSION = 0x30FB,
    EGL_CONTEXT_OPENGL_PROFILE_MASK = 0x30FD,
    EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE = 0x31B1,
    EGL_PBUFFER_BIT = 1,
    EGL_OPENGL_BIT = 8,
    EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT = 1,
    EGL_PLATFORM_SURFACELESS_MESA = 0x31DD,
};
constexpr unsigned int EGL_OPENGL_API = 0x30A2;

// The functions of the library that are used here.
struct Library {
    Library() {
        handle = dlopen("libEGL.so.1", RTLD_NOW);
        if (!handle)
            throw std::runtime_error(std::string("nothing can be drawn off screen: ") + dlerror());
        load(getProcAddress, "eglGetProcAddress");
        load(getDisplay, "eglGetDisplay");
        load(initialize, "eglInitialize");
        load(terminate, "eglTerminate");
        load(bindAPI, "eglBindAPI");
        load(getConfigs, "eglGetConfigs");
        load(getConfigAttrib, "eglGetConfigAttrib");
        load(createPbufferSurface, "eglCreatePbufferSurface");
        load(destroySurface, "eglDestroySurface");
        load(createContext, "eglCreateContext");
        load(destroyContext, "eglDestroyContext");
        load(makeCurrent, "eglMakeCurrent");
        load(swapBuffers, "eglSwapBuffers");
        load(getError, "eglGetError");
    }
    template <class Function>
    void load(Function& function, const char* name) const {
        void* const address = dlsym(handle, name);
        if (!address)
            throw std::runtime_error(std::string("libEGL.so.1 has no ") + name);
        std::memcpy(&function, &address, sizeof function);
    }

    void* handle;
    void* (*getProcAddress)(const char*);
    EGLDisplay (*getDisplay)(void*);
    EGLBoolean (*initialize)(EGLDisplay, EGLint*, EGLint*);
    EGLBoolean (*terminate)(EGLDisplay);
    EGLBoolean (*bindAPI)(unsigned int);
    EGLBoolean (*getConfigs)(EGLDisplay, EGLConfig*, EGLint, EGLint*);
    EGLBoolean (*getConfigAttrib)(EGLDisplay, EGLConfig, EGLint, EGLint*);
    EGLSurface (*createPbufferSurface)(EGLDisplay, EGLConfig, const EGLint*);
    EGLBoolean (*destroySurface)(EGLDisplay, EGLSurface);
    EGLContext (*createContext)(EGLDisplay, EGLConfig, EGLContext, const EGLint*);
    EGLBoolean (*destroyContext)(EGLDisplay, EGLContext);
    EGLBoolean (*makeCurrent)(EGLDisplay, EGLSurface, EGLSurface, EGLContext);
    EGLBoolean (*swapBuffers)(EGLDisplay, EGLSurface);
    EGLint (*getError)();
};

struct HeadlessContext : Context {
    HeadlessContext(const Version& its, Context* sharing)
        : version_wanted(its), shares_with(static_cast<HeadlessContext*>(sharing)) {}
    Version version_wanted;
    HeadlessContext* shares_with;
    EGLContext handle = nullptr;
    EGLConfig config = nullptr;
};

struct HeadlessSurface : Surface {
    using Surface::Surface;
    EGLConfig config = nullptr;
    std::map<EGLConfig, EGLSurface> pbuffers; // for contexts of other configurations too
};

class HeadlessSystem : public System {
public:
    HeadlessSystem() {
        using GetPlatformDisplay = EGLDisplay (*)(unsigned int, void*, const EGLint*);
        GetPlatformDisplay get = nullptr;
        void* const address = egl.getProcAddress("eglGetPlatformDisplayEXT");
        std::memcpy(&get, &address, sizeof get);
        if (get)
            display = get(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr);
        if (!display || !egl.initialize(display, nullptr, nullptr)) {
            display = egl.getDisplay(nullptr);
            if (!display || !egl.initialize(display, nullptr, nullptr))
                fail("EGL can't start");
        }
        if (!egl.bindAPI(EGL_OPENGL_API))
            fail("EGL has no OpenGL here");
    }
    ~HeadlessSystem() override { egl.terminate(display); }
    HeadlessSystem(const HeadlessSystem&) = delete;
    HeadlessSystem& operator=(const HeadlessSystem&) = delete;

    std::unique_ptr<Surface> make_surface(const Format& format) override {
        auto made = std::make_unique<HeadlessSurface>(format);
        made->config = choose(format);
        return made;
    }

    std::unique_ptr<Context> make_context(const Version& version, Context* shares_with) override {
        return std::make_unique<HeadlessContext>(version, shares_with);
    }

    void make_current(Context* context, Surface* draw, Surface* read) override {
        if (!context) {
            egl.makeCurrent(display, nullptr, nullptr, nullptr);
            return;
        }
        auto& its = *static_cast<HeadlessContext*>(context);
        if (!its.handle)
            make(its, static_cast<HeadlessSurface*>(draw)->config);
        if (!egl.makeCurrent(display, pbuffer(draw, its.config), pbuffer(read, its.config), its.handle))
            fail("a context can't be made current");
    }

    void destroy(Context& context) override {
        auto& its = static_cast<HeadlessContext&>(context);
        if (contexts.erase(its.handle) > 0)
            egl.destroyContext(display, its.handle);
        its.handle = nullptr;
    }

    void reset() override {
        egl.makeCurrent(display, nullptr, nullptr, nullptr);
        for (const EGLContext context : contexts)
            egl.destroyContext(display, context);
        for (const EGLSurface surface : surfaces)
            egl.destroySurface(display, surface);
        contexts.clear();
        surfaces.clear();
    }

    void resize(Surface& surface, int, int) override {
        auto& its = static_cast<HeadlessSurface&>(surface);
        const bool is_current = &surface == current_surface;
        for (const auto& [config, old] : its.pbuffers) {
            surfaces.erase(old);
            egl.destroySurface(display, old);
        }
        its.pbuffers.clear();
        if (is_current)
            make_current(current_context, current_surface, current_surface);
    }

    void swap(Surface& surface) override {
        for (const auto& [config, pbuffer] : static_cast<HeadlessSurface&>(surface).pbuffers)
            egl.swapBuffers(display, pbuffer);
    }

    void* function(const char* name) override { return egl.getProcAddress(name); }

private:
    [[noreturn]] void fail(const std::string& what) const {
        char code[16];
        std::snprintf(code, sizeof code, "0x%x", static_cast<unsigned int>(egl.getError()));
        throw std::runtime_error(what + ": EGL's error is " + code);
    }

    EGLint value_of(EGLConfig config, EGLint name) const {
        EGLint value = 0;
        egl.getConfigAttrib(display, config, name, &value);
        return value;
    }

    EGLConfig choose(const Format& format) const {
        EGLint count = 0;
        egl.getConfigs(display, nullptr, 0, &count);
        std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
        egl.getConfigs(display, configs.data(), count, &count);
        EGLConfig best = nullptr;
        int least = INT_MAX;
        for (const EGLConfig config : configs) {
            if (!(value_of(config, EGL_SURFACE_TYPE) & EGL_PBUFFER_BIT) ||
                !(value_of(config, EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT))
                continue;
            int distance = 0;
            const auto compare = [&](EGLint name, int wanted, int weight) {
                distance += weight * std::abs(value_of(config, name) - wanted);
            };
            compare(EGL_RED_SIZE, format.red_, 1000);
            compare(EGL_GREEN_SIZE, format.green_, 1000);
            compare(EGL_BLUE_SIZE, format.blue_, 1000);
            compare(EGL_ALPHA_SIZE, format.alpha_, 1000);
            compare(EGL_SAMPLES, format.samples_, 500);
            // More bits round elsewhere, and fewer much more so.
            for (const auto& [name, wanted] :
                 {std::pair(EGL_DEPTH_SIZE, format.depth_), {EGL_STENCIL_SIZE, format.stencil_}})
                compare(name, wanted, value_of(config, name) < wanted ? 10 : 2);
            if (distance < least) {
                least = distance;
                best = config;
            }
        }
        if (!best)
            throw std::runtime_error("EGL has no configuration to draw off screen with");
        return best;
    }

    void make(HeadlessContext& its, EGLConfig config) {
        const Version& version = its.version_wanted;
        std::vector<EGLint> attributes;
        if (version.is_core_ || version.is_forward_compatible_) {
            attributes = {EGL_CONTEXT_MAJOR_VERSION, version.major_, EGL_CONTEXT_MINOR_VERSION,
                          version.minor_};
            if (version.is_forward_compatible_)
                attributes.insert(attributes.end(), {EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE, 1});
            if (version.is_core_)
                attributes.insert(attributes.end(),
                                  {EGL_CONTEXT_OPENGL_PROFILE_MASK, EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT});
        }
        attributes.push_back(EGL_NONE);
        its.config = config;
        its.handle = egl.createContext(display, config, its.shares_with ? its.shares_with->handle : nullptr,
                                       attributes.data());
        if (!its.handle)
            fail("no context of version " + std::to_string(version.major_) + '.' +
                 std::to_string(version.minor_) + " can be made");
        contexts.insert(its.handle);
    }

    EGLSurface pbuffer(Surface* surface, EGLConfig config) {
        EGLSurface& its = static_cast<HeadlessSurface*>(surface)->pbuffers[config];
        const EGLint size[] = {EGL_WIDTH, surface->format.width_, EGL_HEIGHT, surface->format.height_,
                               EGL_NONE};
        if (!its)
            its = egl.createPbufferSurface(display, config, size);
        if (!its)
            fail("no surface of " + std::to_string(surface->format.width_) + " by " +
                 std::to_string(surface->format.height_) + " pixels can be made");
        surfaces.insert(its);
        return its;
    }

    Library egl;
    EGLDisplay display = nullptr;
    std::set<EGLContext> contexts;
    std::set<EGLSurface> surfaces;
};

} // namespace

std::unique_ptr<System> make_headless_system() { return std::make_unique<HeadlessSystem>(); }

#endif
