// GLX: contexts that others made, and ours that share with them.

#include "platform/linux/apis/Glx.h"

#include "platform/linux/apis/XErrors.h"
#include "platform/linux/records/Errors.h"

#include <EGL/egl.h>
#include <GL/glx.h>
#include <GL/glxext.h>
#include <X11/Xlibint.h>
#undef min
#undef max

#include <cstring>

namespace ZLT::Platform {

namespace {

Display* displayOf(void* display) { return static_cast<Display*>(display); }
GLXContext contextOf(void* context) { return static_cast<GLXContext>(context); }

template <class Function>
Function function(const char* name) {
    return reinterpret_cast<Function>(glXGetProcAddressARB(reinterpret_cast<const GLubyte*>(name)));
}

Format readFormat(Display* display, GLXFBConfig config) {
    const auto get = [&](int name) {
        int value = 0;
        glXGetFBConfigAttrib(display, config, name, &value);
        return value;
    };
    const int drawables = get(GLX_DRAWABLE_TYPE);
    Format format;
    format.config = config;
    format.id = get(GLX_FBCONFIG_ID);
    format.doubleBuffered = get(GLX_DOUBLEBUFFER) != 0;
    format.red = get(GLX_RED_SIZE);
    format.green = get(GLX_GREEN_SIZE);
    format.blue = get(GLX_BLUE_SIZE);
    format.alpha = get(GLX_ALPHA_SIZE);
    format.depth = get(GLX_DEPTH_SIZE);
    format.stencil = get(GLX_STENCIL_SIZE);
    format.samples = get(GLX_SAMPLES);
    format.floatingPoint = (get(GLX_RENDER_TYPE) & GLX_RGBA_FLOAT_BIT_ARB) != 0;
    format.pbuffer = (drawables & GLX_PBUFFER_BIT) != 0;
    format.window = (drawables & GLX_WINDOW_BIT) != 0;
    format.visual = static_cast<std::uintptr_t>(get(GLX_VISUAL_ID));
    return format;
}

std::vector<GLXFBConfig> configsOf(Display* display, GLXContext context) {
    int screen = 0;
    glXQueryContext(display, context, GLX_SCREEN, &screen);
    int count = 0;
    GLXFBConfig* list = glXGetFBConfigs(display, screen, &count);
    if (!list)
        return {};
    std::vector<GLXFBConfig> configs(list, list + count);
    XFree(list);
    return configs;
}

std::vector<int> glxAttributes(const std::vector<int>& attributes) {
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

class Glx : public Api {
public:
    Native current() const override {
        const GLXContext context = glXGetCurrentContext();
        if (!context)
            return {};
        return {this, glXGetCurrentDisplay(), context, glXGetCurrentDrawable(), glXGetCurrentReadDrawable()};
    }

    bool makeCurrent(const Native& wanted) const override {
        XErrors errors(displayOf(wanted.display));
        const bool made = glXMakeContextCurrent(displayOf(wanted.display), wanted.draw, wanted.read,
                                                contextOf(wanted.context)) != False;
        return (made && !errors.any()) || refused();
    }

    bool release() const override {
        if (!glXGetCurrentContext())
            return true;
        Display* display = glXGetCurrentDisplay();
        const XErrors errors(display); // its drawable may be gone
        glXMakeContextCurrent(display, None, None, nullptr);
        return true;
    }

    void* createContext(void* display, void* config, void* share,
                        const std::vector<int>& attributes) const override {
        const auto create = function<PFNGLXCREATECONTEXTATTRIBSARBPROC>("glXCreateContextAttribsARB");
        const auto fbConfig = static_cast<GLXFBConfig>(config);
        XErrors errors(displayOf(display));
        const GLXContext made =
            create ? create(displayOf(display), fbConfig, contextOf(share), True,
                            glxAttributes(attributes).data())
                   : glXCreateNewContext(displayOf(display), fbConfig, GLX_RGBA_TYPE, contextOf(share), True);
        if (!errors.any() && made)
            return made;
        if (made)
            glXDestroyContext(displayOf(display), made);
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    }

    void destroyContext(void* display, void* context) const override {
        glXDestroyContext(displayOf(display), contextOf(context));
    }

    std::uintptr_t windowSurface(void* display, void* config, std::uintptr_t window) const override {
        XErrors errors(displayOf(display));
        const GLXDrawable made =
            glXCreateWindow(displayOf(display), static_cast<GLXFBConfig>(config), window, nullptr);
        return errors.any() ? refused() : made;
    }

    std::uintptr_t pbuffer(void* display, void* config, int width, int height, bool largest) const override {
        const int size[] = {GLX_PBUFFER_WIDTH, width, GLX_PBUFFER_HEIGHT, height, GLX_LARGEST_PBUFFER,
                            largest ? 1 : 0,   None};
        XErrors errors(displayOf(display));
        const GLXDrawable made = glXCreatePbuffer(displayOf(display), static_cast<GLXFBConfig>(config), size);
        return errors.any() ? refused() : made;
    }

    bool drawsWithoutSurface(void*) const override { return false; }

    bool knows(const Surface&) const override { return true; }

    void destroySurface(const Surface& surface) const override {
        const XErrors errors(displayOf(surface.display)); // its window may be gone
        if (surface.window)
            glXDestroyWindow(displayOf(surface.display), surface.handle);
        else
            glXDestroyPbuffer(displayOf(surface.display), surface.handle);
    }

    bool swap(void* display, std::uintptr_t surface) const override {
        XErrors errors(displayOf(display));
        glXSwapBuffers(displayOf(display), surface);
        return !errors.any() || refused();
    }

    bool setSwapInterval(int interval) const override {
        const auto set = function<PFNGLXSWAPINTERVALEXTPROC>("glXSwapIntervalEXT");
        Display* display = glXGetCurrentDisplay();
        const char* names = glXQueryExtensionsString(display, DefaultScreen(display));
        if (!set || !names || !std::strstr(names, "GLX_EXT_swap_control"))
            return fail(ERROR_NOT_SUPPORTED, "The display has no GLX_EXT_swap_control.");
        XErrors errors(display);
        set(display, glXGetCurrentDrawable(), interval);
        return !errors.any() || refused();
    }

    Format formatOf(void* display, void* context, std::uintptr_t drawable) const override {
        if (!context)
            return {};
        const XErrors errors(displayOf(display));
        int id = 0;
        glXQueryContext(displayOf(display), contextOf(context), GLX_FBCONFIG_ID, &id);
        // A context made the old way knows no configuration, but its window has a visual.
        XWindowAttributes attributes = {};
        std::uintptr_t visual = 0;
        if (id <= 0 && XGetWindowAttributes(displayOf(display), drawable, &attributes))
            visual = XVisualIDFromVisual(attributes.visual);
        for (const GLXFBConfig config : configsOf(displayOf(display), contextOf(context))) {
            const Format format = readFormat(displayOf(display), config);
            if (format.id == id || (visual && format.visual == visual))
                return format;
        }
        return {};
    }

    // GLX has one configuration for each visual where EGL has many.
    void* configFor(void* display, void* context, const Format& wanted) const override {
        const XErrors errors(displayOf(display));
        void* config = nearestConfig(
            configsOf(displayOf(display), contextOf(context)), wanted, [&](GLXFBConfig candidate) {
                Format format = readFormat(displayOf(display), candidate);
                format.window = format.window && format.doubleBuffered == wanted.doubleBuffered;
                return format;
            });
        return config ? config : fail(ERROR_INVALID_PIXEL_FORMAT);
    }

private:
    static Failure refused() {
        return fail(ERROR_INVALID_HANDLE, "The X server refused: the window or the drawable is gone.");
    }
};

void (*closedFunction)(void* display) = nullptr;

int displayCloses(Display* display, XExtCodes*) {
    closedFunction(display);
    return 0;
}

} // namespace

const Api& glx() {
    static const Glx only;
    return only;
}

void watchForClosing(void* display, void (*closed)(void* display)) {
    closedFunction = closed;
    if (const XExtCodes* codes = XAddExtension(displayOf(display)))
        XESetCloseDisplay(displayOf(display), codes->extension, displayCloses);
}

} // namespace ZLT::Platform
