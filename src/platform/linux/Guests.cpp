// A context of ours that shares with somebody else's has to live where that one lives: on the other's EGL
// display, or in GLX. It draws to the same windows and pbuffers, by surfaces made there.

#include "platform/linux/Handles.h"
#include "platform/linux/XErrors.h"

#include <EGL/eglext.h>
#include <GL/glx.h>
#include <GL/glxext.h>

#include <algorithm>
#include <limits>

namespace ZLT::Platform {

namespace {

bool servesFor(const Format& format, const Format& wanted) {
    return format.pbuffer >= wanted.pbuffer && format.window >= wanted.window &&
           (!wanted.window || format.visual == wanted.visual);
}

// The configuration nearest to the wanted format, or null. GLX has one for each visual where EGL has many.
template <class Config, class Read>
Config nearest(const std::vector<Config>& configs, const Format& wanted, Read read) {
    Config best = nullptr;
    int least = std::numeric_limits<int>::max();
    for (const Config config : configs) {
        const Format format = read(config);
        const int more = excess(format, wanted);
        if (more >= 0 && more < least && servesFor(format, wanted)) {
            least = more;
            best = config;
        }
    }
    return best;
}

EGLConfig findConfig(EGLDisplay display, const Format& wanted) {
    std::vector<EGLConfig> configs;
    for (const Format& format : formatsOf(display))
        configs.push_back(format.config);
    return nearest(configs, wanted, [&](EGLConfig config) { return readFormat(display, config, true); });
}

GLXFBConfig findConfig(Display* display, int screen, const Format& wanted) {
    int count = 0;
    GLXFBConfig* list = glXGetFBConfigs(display, screen, &count);
    std::vector<GLXFBConfig> configs(list ? static_cast<std::size_t>(count) : 0);
    std::copy_n(list, configs.size(), configs.begin());
    if (list)
        XFree(list);
    return nearest(configs, wanted, [&](GLXFBConfig config) {
        Format format = readFormat(display, config);
        format.window = format.window && format.doubleBuffered == wanted.doubleBuffered;
        return format;
    });
}

std::vector<int> glxAttributes(const std::vector<EGLint>& attributes) {
    std::vector<int> translated;
    int flags = 0;
    for (std::size_t i = 0; i + 1 < attributes.size(); i += 2) {
        const int value = attributes[i + 1];
        switch (attributes[i]) {
        case EGL_CONTEXT_MAJOR_VERSION:
            translated.insert(translated.end(), {GLX_CONTEXT_MAJOR_VERSION_ARB, value});
            break;
        case EGL_CONTEXT_MINOR_VERSION:
            translated.insert(translated.end(), {GLX_CONTEXT_MINOR_VERSION_ARB, value});
            break;
        case EGL_CONTEXT_OPENGL_PROFILE_MASK:
            translated.insert(translated.end(), {GLX_CONTEXT_PROFILE_MASK_ARB, value});
            break;
        case EGL_CONTEXT_OPENGL_DEBUG:
            flags |= GLX_CONTEXT_DEBUG_BIT_ARB;
            break;
        case EGL_CONTEXT_OPENGL_FORWARD_COMPATIBLE:
            flags |= GLX_CONTEXT_FORWARD_COMPATIBLE_BIT_ARB;
            break;
        default:
            break;
        }
    }
    translated.insert(translated.end(), {GLX_CONTEXT_FLAGS_ARB, flags, None});
    return translated;
}

GLXContext createGlx(Display* display, GLXFBConfig config, void* share,
                     const std::vector<EGLint>& attributes) {
    const auto create = reinterpret_cast<PFNGLXCREATECONTEXTATTRIBSARBPROC>(
        glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXCreateContextAttribsARB")));
    XErrors errors(display, XErrors::Before::theirs);
    const auto with = static_cast<GLXContext>(share);
    const GLXContext made = create ? create(display, config, with, True, glxAttributes(attributes).data())
                                   : glXCreateNewContext(display, config, GLX_RGBA_TYPE, with, True);
    if (!errors.any())
        return made;
    if (made)
        glXDestroyContext(display, made);
    return nullptr;
}

std::uintptr_t createSurface(const DeviceContext& device, const RenderingContext& context) {
    const auto width = device.width;
    const auto height = device.height;
    if (context.api == Api::egl) {
        const EGLint size[] = {EGL_WIDTH, width, EGL_HEIGHT, height, EGL_NONE};
        return reinterpret_cast<std::uintptr_t>(
            device.xid ? eglCreateWindowSurface(context.display, context.config, device.xid, nullptr)
                       : eglCreatePbufferSurface(context.display, context.config, size));
    }
    auto* display = static_cast<Display*>(context.display);
    const auto config = static_cast<GLXFBConfig>(context.config);
    XErrors errors(display, XErrors::Before::theirs);
    const int size[] = {GLX_PBUFFER_WIDTH, width, GLX_PBUFFER_HEIGHT, height, None};
    const GLXDrawable made = device.xid ? glXCreateWindow(display, config, device.xid, nullptr)
                                        : glXCreatePbuffer(display, config, size);
    return errors.any() ? 0 : made;
}

} // namespace

bool becomeGuest(RenderingContext& context, const RenderingContext& host) {
    const Format& format = context.connection->format(context.pixelFormat);
    void* config = nullptr;
    void* native = nullptr;
    if (host.api == Api::egl) {
        const DesktopGl api;
        config = findConfig(host.display, format);
        if (config)
            native = eglCreateContext(host.display, config, host.native, context.attributes.data());
    } else {
        auto* display = static_cast<Display*>(host.display);
        XErrors errors(display, XErrors::Before::theirs);
        int screen = 0;
        glXQueryContext(display, static_cast<GLXContext>(host.native), GLX_SCREEN, &screen);
        config = errors.any() ? nullptr : findConfig(display, screen, format);
        if (config)
            native = createGlx(display, static_cast<GLXFBConfig>(config), host.native, context.attributes);
    }
    if (!native || !host.native)
        return false;
    destroyNative(context);
    context.api = host.api;
    context.display = host.display;
    context.config = config;
    context.native = native;
    return true;
}

std::uintptr_t surfaceFor(DeviceContext& device, const RenderingContext& context) {
    if (!context.config)
        return reinterpret_cast<std::uintptr_t>(device.surface);
    const auto known = std::ranges::find_if(device.guests, [&](const GuestSurface& guest) {
        return guest.display == context.display && guest.config == context.config;
    });
    if (known != device.guests.end())
        return known->surface;
    const std::uintptr_t made = createSurface(device, context);
    if (made)
        device.guests.push_back({context.api, context.display, context.config, made});
    return made;
}

void destroyGuests(DeviceContext& device) {
    for (const GuestSurface& guest : device.guests) {
        if (guest.api == Api::egl) {
            // NOLINTNEXTLINE(performance-no-int-to-ptr)
            eglDestroySurface(guest.display, reinterpret_cast<EGLSurface>(guest.surface));
            continue;
        }
        auto* display = static_cast<Display*>(guest.display);
        XErrors errors(display, XErrors::Before::theirs);
        if (device.xid)
            glXDestroyWindow(display, guest.surface);
        else
            glXDestroyPbuffer(display, guest.surface);
    }
    device.guests.clear();
}

void destroyNative(const RenderingContext& context) {
    if (!context.native)
        return;
    if (context.api == Api::egl)
        eglDestroyContext(context.display, context.native);
    else
        glXDestroyContext(static_cast<Display*>(context.display), static_cast<GLXContext>(context.native));
}

} // namespace ZLT::Platform
