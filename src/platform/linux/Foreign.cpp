// What EGL and GLX have current: contexts that somebody else made are seen, made current again, and never
// destroyed.

#include "platform/linux/Handles.h"
#include "platform/linux/XErrors.h"

#include <GL/glx.h>
#include <GL/glxext.h>

#include <algorithm>
#include <atomic>
#include <cstring>

// As in X11/Xlibint.h, which can't be included: its BOOL is another.
extern "C" {
using CloseDisplayHook = int (*)(Display*, XExtCodes*);
CloseDisplayHook XESetCloseDisplay(Display* display, int extension, CloseDisplayHook hook);
}

namespace ZLT::Platform {

namespace {

std::atomic<bool> seen = false;
// Counts the displays that were closed: what was known of their contexts holds no longer.
std::atomic<unsigned> closedDisplays = 0;

// What the system says is current.
struct Native {
    Api api = Api::egl;
    void* display = nullptr;
    void* context = nullptr;
    std::uintptr_t draw = 0;
    std::uintptr_t read = 0;

    bool operator==(const Native&) const = default;
};

std::uintptr_t value(EGLSurface surface) { return reinterpret_cast<std::uintptr_t>(surface); }
EGLSurface surface(std::uintptr_t value) {
    return reinterpret_cast<EGLSurface>(value); // NOLINT(performance-no-int-to-ptr)
}

Native ask() {
    if (const EGLContext context = eglGetCurrentContext(); context != EGL_NO_CONTEXT)
        return {Api::egl, eglGetCurrentDisplay(), context, value(eglGetCurrentSurface(EGL_DRAW)),
                value(eglGetCurrentSurface(EGL_READ))};
    if (const GLXContext context = glXGetCurrentContext())
        return {Api::glx, glXGetCurrentDisplay(), context, glXGetCurrentDrawable(),
                glXGetCurrentReadDrawable()};
    return {};
}

bool isNative(const RenderingContext& context, const Native& native) {
    return context.native && native.api == context.api && native.context == context.native &&
           native.display == context.display;
}

// Its owner closes an X display: nothing of it may be touched any more. Runs in the owner's XCloseDisplay.
int forgetDisplay(Display* display, XExtCodes*) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const auto isOfIt = [&](const auto* record) {
        return record->api == Api::glx && record->display == display;
    };
    for (auto device = state.devices.begin(); device != state.devices.end();) {
        std::erase_if((*device)->guests, [&](const GuestSurface& guest) { return isOfIt(&guest); });
        if ((*device)->isForeign() && isOfIt(*device)) {
            delete *device;
            device = state.devices.erase(device);
        } else {
            ++device;
        }
    }
    for (auto context = state.contexts.begin(); context != state.contexts.end();) {
        const bool ofIt = isOfIt(*context);
        if (ofIt)
            (*context)->native = nullptr;
        if (ofIt && (*context)->isForeign()) {
            delete *context;
            context = state.contexts.erase(context);
        } else {
            ++context;
        }
    }
    ++closedDisplays;
    return 0;
}

// Once for each display: before its first record.
void watchForClosing(State& state, const Native& native) {
    if (native.api != Api::glx)
        return;
    for (const HGLRC context : state.contexts)
        if (context->api == Api::glx && context->display == native.display)
            return;
    auto* display = static_cast<Display*>(native.display);
    if (const XExtCodes* codes = XAddExtension(display))
        XESetCloseDisplay(display, codes->extension, forgetDisplay);
}

HGLRC contextOf(State& state, const Native& native) {
    for (const HGLRC context : state.contexts)
        if (isNative(*context, native))
            return context;
    watchForClosing(state, native);
    auto made = std::make_unique<RenderingContext>();
    made->api = native.api;
    made->display = native.display;
    made->native = native.context;
    made->used = true;
    state.contexts.insert(made.get());
    return made.release();
}

HDC deviceOf(State& state, const Native& native, HGLRC owner) {
    for (const HDC device : state.devices)
        if (device->isForeign() && device->api == native.api && device->display == native.display &&
            device->draw == native.draw && device->read == native.read) {
            device->owner = owner; // the last one was perhaps another
            return device;
        }
    auto made = std::make_unique<DeviceContext>();
    made->api = native.api;
    made->display = native.display;
    made->draw = native.draw;
    made->read = native.read;
    made->owner = owner;
    state.devices.insert(made.get());
    return made.release();
}

Format glxFormat(const DeviceContext& device) {
    auto* display = static_cast<Display*>(device.display);
    const auto native = static_cast<GLXContext>(device.owner->native);
    XErrors errors(display, XErrors::Before::theirs);
    int id = 0;
    int screen = 0;
    glXQueryContext(display, native, GLX_FBCONFIG_ID, &id);
    glXQueryContext(display, native, GLX_SCREEN, &screen);
    // A context made the old way knows no configuration, but its window has a visual.
    XWindowAttributes attributes = {};
    std::uintptr_t visual = 0;
    if (id <= 0 && XGetWindowAttributes(display, device.draw, &attributes))
        visual = XVisualIDFromVisual(attributes.visual);
    Format found = {};
    int count = 0;
    GLXFBConfig* configs = glXGetFBConfigs(display, screen, &count);
    for (int i = 0; i < count; ++i) {
        int number = 0;
        glXGetFBConfigAttrib(display, configs[i], GLX_FBCONFIG_ID, &number);
        const Format format = readFormat(display, configs[i]);
        if (number == id || (visual && format.visual == visual)) {
            found = format;
            break;
        }
    }
    if (configs)
        XFree(configs);
    return found;
}

Format eglFormat(const DeviceContext& device) {
    EGLint id = 0;
    EGLint buffer = EGL_BACK_BUFFER;
    if (!eglQueryContext(device.display, device.owner->native, EGL_CONFIG_ID, &id) || id == 0)
        eglQuerySurface(device.display, surface(device.draw), EGL_CONFIG_ID, &id);
    eglQueryContext(device.display, device.owner->native, EGL_RENDER_BUFFER, &buffer);
    const EGLint wanted[] = {EGL_CONFIG_ID, id, EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!eglChooseConfig(device.display, wanted, &config, 1, &count) || count == 0)
        return {};
    return readFormat(device.display, config, buffer == EGL_BACK_BUFFER);
}

} // namespace

bool foreignContextsSeen() { return seen.load(std::memory_order_relaxed); }

Current askCurrent() {
    const Native native = ask();
    const Current& own = ownCurrent();
    if (own.context && isNative(*own.context, native))
        return own;
    // The records of what is foreign stay until their display is closed: what was found last still holds.
    thread_local Native lastNative;
    thread_local Current last;
    thread_local unsigned lastClosed = 0;
    const unsigned closed = closedDisplays;
    if (!own.context && native == lastNative && closed == lastClosed)
        return last;
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    forgetOwnCurrent();
    lastNative = native;
    lastClosed = closed;
    last = {};
    if (native.context) {
        last.context = contextOf(state, native);
        last.device = last.read = deviceOf(state, native, last.context);
        seen = true;
    }
    return last;
}

bool makeNativeCurrent(const RenderingContext& context, std::uintptr_t draw, std::uintptr_t read) {
    if (context.api == Api::egl) {
        releaseGlx();
        return eglMakeCurrent(context.display, surface(draw), surface(read), context.native) != EGL_FALSE;
    }
    auto* display = static_cast<Display*>(context.display);
    if (eglGetCurrentContext() != EGL_NO_CONTEXT)
        eglMakeCurrent(eglGetCurrentDisplay(), EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
    XErrors errors(display, XErrors::Before::theirs);
    return glXMakeContextCurrent(display, draw, read, static_cast<GLXContext>(context.native)) &&
           !errors.any();
}

bool isCurrentNatively(const RenderingContext& context) { return isNative(context, ask()); }

bool releaseCurrent() {
    const Native native = ask();
    if (!native.context)
        return true;
    if (native.api == Api::egl)
        return eglMakeCurrent(native.display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT) != EGL_FALSE;
    releaseGlx();
    return true;
}

void releaseGlx() {
    if (!glXGetCurrentContext())
        return;
    // Its drawable may be gone.
    Display* display = glXGetCurrentDisplay();
    XErrors errors(display, XErrors::Before::theirs);
    glXMakeContextCurrent(display, None, None, nullptr);
}

Format foreignFormat(const DeviceContext& device) {
    return device.api == Api::egl ? eglFormat(device) : glxFormat(device);
}

bool setSwapInterval(int interval) {
    const Native native = ask();
    if (native.api == Api::egl)
        return eglSwapInterval(native.display, interval) != EGL_FALSE;
    const auto set = reinterpret_cast<PFNGLXSWAPINTERVALEXTPROC>(
        glXGetProcAddressARB(reinterpret_cast<const GLubyte*>("glXSwapIntervalEXT")));
    auto* display = static_cast<Display*>(native.display);
    const char* names = glXQueryExtensionsString(display, DefaultScreen(display));
    if (!set || !names || !std::strstr(names, "GLX_EXT_swap_control"))
        return false;
    XErrors errors(display, XErrors::Before::theirs);
    set(display, native.draw, interval);
    return !errors.any();
}

bool swapNative(Api api, void* display, std::uintptr_t drawable) {
    if (api == Api::egl)
        return eglSwapBuffers(display, surface(drawable)) != EGL_FALSE;
    XErrors errors(static_cast<Display*>(display), XErrors::Before::theirs);
    glXSwapBuffers(static_cast<Display*>(display), drawable);
    return !errors.any();
}

} // namespace ZLT::Platform
