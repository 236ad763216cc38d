// EGL: contexts and surfaces on any of its displays.

#include "platform/linux/apis/Egl.h"

#include "platform/linux/records/Errors.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <cstring>

namespace ZLT::Platform {

namespace {

constexpr const char* terminated =
    "The EGL display was terminated by another part of the program: its contexts are lost, new ones can be "
    "made.";

// Read at once: each call of EGL takes away the error of the one before.
Failure failOfEgl() {
    switch (eglGetError()) {
    case EGL_BAD_ALLOC:
        return fail(ERROR_NOT_ENOUGH_MEMORY);
    case EGL_BAD_ACCESS:
        return fail(ERROR_BUSY, "The context or the surface is current on another thread.");
    case EGL_BAD_CONFIG:
    case EGL_BAD_MATCH:
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    case EGL_NOT_INITIALIZED:
    case EGL_BAD_DISPLAY:
        return fail(ERROR_INVALID_HANDLE, terminated);
    case EGL_BAD_CONTEXT:
        return fail(ERROR_INVALID_HANDLE,
                    "EGL does not know the context any more: it was destroyed, or its display terminated.");
    case EGL_BAD_SURFACE:
    case EGL_BAD_CURRENT_SURFACE:
        return fail(ERROR_INVALID_HANDLE, "EGL does not know the surface any more, or its window is gone.");
    case EGL_BAD_NATIVE_WINDOW:
        return fail(ERROR_INVALID_WINDOW_HANDLE);
    default:
        return fail(ERROR_GEN_FAILURE);
    }
}

std::uintptr_t value(EGLSurface surface) { return reinterpret_cast<std::uintptr_t>(surface); }
EGLSurface surfaceOf(std::uintptr_t value) {
    return reinterpret_cast<EGLSurface>(value); // NOLINT(performance-no-int-to-ptr)
}

std::string textOf(const char* text) { return text ? text : ""; }

EGLint attribute(EGLDisplay display, EGLConfig config, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

bool hasExtension(EGLDisplay display, const char* name) {
    return textOf(eglQueryString(display, EGL_EXTENSIONS)).find(name) != std::string::npos;
}

bool hasFloatFormats(EGLDisplay display) { return hasExtension(display, "EGL_EXT_pixel_format_float"); }

Format readFormat(EGLDisplay display, EGLConfig config, bool doubleBuffered, bool floatFormats) {
    const auto get = [&](EGLint name) { return attribute(display, config, name); };
    const EGLint surfaces = get(EGL_SURFACE_TYPE);
    Format format;
    format.config = config;
    format.id = get(EGL_CONFIG_ID);
    format.doubleBuffered = doubleBuffered;
    format.red = get(EGL_RED_SIZE);
    format.green = get(EGL_GREEN_SIZE);
    format.blue = get(EGL_BLUE_SIZE);
    format.alpha = get(EGL_ALPHA_SIZE);
    format.depth = get(EGL_DEPTH_SIZE);
    format.stencil = get(EGL_STENCIL_SIZE);
    format.samples = get(EGL_SAMPLES);
    format.floatingPoint =
        floatFormats && get(EGL_COLOR_COMPONENT_TYPE_EXT) == EGL_COLOR_COMPONENT_TYPE_FLOAT_EXT;
    format.slow = get(EGL_CONFIG_CAVEAT) != EGL_NONE;
    format.pbuffer = (surfaces & EGL_PBUFFER_BIT) != 0;
    format.window = (surfaces & EGL_WINDOW_BIT) != 0;
    format.visual = static_cast<std::uintptr_t>(get(EGL_NATIVE_VISUAL_ID));
    format.minSwapInterval = get(EGL_MIN_SWAP_INTERVAL);
    format.maxSwapInterval = get(EGL_MAX_SWAP_INTERVAL);
    format.maxPbufferWidth = get(EGL_MAX_PBUFFER_WIDTH);
    format.maxPbufferHeight = get(EGL_MAX_PBUFFER_HEIGHT);
    format.maxPbufferPixels = get(EGL_MAX_PBUFFER_PIXELS);
    return format;
}

std::vector<EGLConfig> configsOf(EGLDisplay display) {
    EGLint count = 0;
    eglGetConfigs(display, nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    eglGetConfigs(display, configs.data(), count, &count);
    std::erase_if(configs, [&](EGLConfig config) {
        return !(attribute(display, config, EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT) ||
               !(attribute(display, config, EGL_SURFACE_TYPE) & (EGL_PBUFFER_BIT | EGL_WINDOW_BIT));
    });
    return configs;
}

// Each configuration in both forms of buffering.
std::vector<Format> formatsOf(EGLDisplay display) {
    const bool floatFormats = hasFloatFormats(display);
    std::vector<Format> formats;
    for (const bool doubleBuffered : {true, false})
        for (const EGLConfig config : configsOf(display))
            formats.push_back(readFormat(display, config, doubleBuffered, floatFormats));
    return formats;
}

// Desktop GL is what the calling thread creates contexts of, for as long as this lives.
class DesktopGl {
public:
    DesktopGl() : before_(eglQueryAPI()) { eglBindAPI(EGL_OPENGL_API); }
    DesktopGl(const DesktopGl&) = delete;
    DesktopGl& operator=(const DesktopGl&) = delete;
    ~DesktopGl() { eglBindAPI(before_); }

private:
    EGLenum before_;
};

class Egl : public Api {
public:
    Native current() const override {
        const EGLContext context = eglGetCurrentContext();
        if (context == EGL_NO_CONTEXT)
            return {};
        return {this, eglGetCurrentDisplay(), context, value(eglGetCurrentSurface(EGL_DRAW)),
                value(eglGetCurrentSurface(EGL_READ))};
    }

    bool makeCurrent(const Native& wanted) const override {
        return eglMakeCurrent(wanted.display, surfaceOf(wanted.draw), surfaceOf(wanted.read),
                              wanted.context) ||
               failOfEgl();
    }

    bool release() const override {
        if (eglGetCurrentContext() == EGL_NO_CONTEXT)
            return true;
        return eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) ||
               failOfEgl();
    }

    void* createContext(void* display, void* config, void* share,
                        const std::vector<int>& attributes) const override {
        const DesktopGl api;
        const EGLContext made = eglCreateContext(display, config, share, attributes.data());
        return made != EGL_NO_CONTEXT ? made : failOfEgl();
    }

    void destroyContext(void* display, void* context) const override { eglDestroyContext(display, context); }

    std::uintptr_t windowSurface(void* display, void* config, std::uintptr_t window) const override {
        const EGLSurface made = eglCreateWindowSurface(display, config, EGLNativeWindowType(window), nullptr);
        return made != EGL_NO_SURFACE ? value(made) : failOfEgl();
    }

    std::uintptr_t pbuffer(void* display, void* config, int width, int height, bool largest) const override {
        const EGLint size[] = {EGL_WIDTH,           width,           EGL_HEIGHT, height,
                               EGL_LARGEST_PBUFFER, largest ? 1 : 0, EGL_NONE};
        const EGLSurface made = eglCreatePbufferSurface(display, config, size);
        return made != EGL_NO_SURFACE ? value(made) : failOfEgl();
    }

    bool drawsWithoutSurface(void* display) const override {
        return hasExtension(display, "EGL_KHR_surfaceless_context");
    }

    bool knows(const Surface& surface) const override {
        EGLint id = 0;
        return eglQuerySurface(surface.display, surfaceOf(surface.handle), EGL_CONFIG_ID, &id) != EGL_FALSE;
    }

    void destroySurface(const Surface& surface) const override {
        eglDestroySurface(surface.display, surfaceOf(surface.handle));
    }

    bool swap(void* display, std::uintptr_t surface) const override {
        return eglSwapBuffers(display, surfaceOf(surface)) || failOfEgl();
    }

    bool setSwapInterval(int interval) const override {
        return eglSwapInterval(eglGetCurrentDisplay(), interval) || failOfEgl();
    }

    Format formatOf(void* display, void* context, std::uintptr_t drawable) const override {
        EGLint id = 0;
        EGLint buffer = EGL_BACK_BUFFER;
        if (!context || !eglQueryContext(display, context, EGL_CONFIG_ID, &id) || id == 0)
            eglQuerySurface(display, surfaceOf(drawable), EGL_CONFIG_ID, &id);
        if (context)
            eglQueryContext(display, context, EGL_RENDER_BUFFER, &buffer);
        const EGLint wanted[] = {EGL_CONFIG_ID, id, EGL_NONE};
        EGLConfig config = nullptr;
        EGLint count = 0;
        if (id == 0 || !eglChooseConfig(display, wanted, &config, 1, &count) || count == 0)
            return {};
        return readFormat(display, config, buffer == EGL_BACK_BUFFER, hasFloatFormats(display));
    }

    void* configFor(void* display, void*, const Format& wanted) const override {
        const bool floatFormats = hasFloatFormats(display);
        void* config = nearestConfig(configsOf(display), wanted, [&](EGLConfig candidate) {
            return readFormat(display, candidate, true, floatFormats);
        });
        return config ? config : fail(ERROR_INVALID_PIXEL_FORMAT);
    }
};

EGLDisplay displayOf(const EglDisplayPlace& place) {
    if (!place.platform)
        return eglGetDisplay(EGL_DEFAULT_DISPLAY);
    return eglGetPlatformDisplay(place.platform, place.native, nullptr);
}

bool isOpenWith(const Format& format, EGLDisplay display) {
    EGLint id = 0;
    return isEglDisplayOpen(display) && eglGetConfigAttrib(display, format.config, EGL_CONFIG_ID, &id) &&
           id == format.id;
}

} // namespace

bool isEglDisplayOpen(void* display) { return eglQueryString(display, EGL_VERSION) != nullptr; }

void sizeOfEglSurface(void* display, std::uintptr_t surface, int& width, int& height) {
    eglQuerySurface(display, surfaceOf(surface), EGL_WIDTH, &width);
    eglQuerySurface(display, surfaceOf(surface), EGL_HEIGHT, &height);
}

const Api& egl() {
    static const Egl only;
    return only;
}

Connection* openEglDisplay(const EglDisplayPlace& place, std::string& why) {
    const EGLDisplay display = displayOf(place);
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr)) {
        why = "EGL has no driver that opens it";
        return nullptr;
    }
    Connection made;
    made.display = display;
    made.nativeDisplay = place.nativeDisplay;
    made.toolkits = place.toolkits;
    made.shows = place.shows;
    made.formats = formatsOf(display);
    if (made.formats.empty()) {
        why = "its driver has no format for desktop OpenGL";
        if (!place.toolkits)
            eglTerminate(display);
        return nullptr;
    }
    const char* version = eglQueryString(display, EGL_VERSION);
    made.createsByVersion = version && std::strncmp(version, "1.", 2) == 0 && version[2] >= '5';
    made.adapter = place.adapter.empty() ? textOf(eglQueryString(display, EGL_VENDOR)) : place.adapter;
    made.key = place.key;

    Records& all = records();
    const std::lock_guard guard(all.lock);
    made.offset = all.connections.empty() ? 0 : all.connections.back().last();
    Connection& connection = all.connections.emplace_back(std::move(made));
    for (Format& format : connection.formats)
        format.connection = &connection;
    return &connection;
}

bool keepOpen(Connection& connection) {
    Records& all = records();
    std::unique_lock guard(all.lock);
    const Format any = connection.formats.front();
    guard.unlock();
    if (isOpenWith(any, connection.display))
        return true;
    // A toolkit's display has perhaps lost what it stood on.
    if (connection.toolkits || !eglInitialize(connection.display, nullptr, nullptr))
        return fail(ERROR_INVALID_HANDLE, terminated);
    const std::vector<Format> now = formatsOf(connection.display);
    guard.lock();
    ++connection.generation;
    for (Format& format : connection.formats) {
        format.config = nullptr;
        for (const Format& candidate : now)
            if (candidate.id == format.id && candidate.doubleBuffered == format.doubleBuffered)
                format.config = candidate.config;
    }
    return true;
}

} // namespace ZLT::Platform
