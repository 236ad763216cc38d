// EGL's configurations as pixel formats. All functions that choose or describe share one numbering.

#include "platform/linux/Handles.h"

#include "platform/WglTokens.h"

#include <EGL/eglext.h>
#include <GL/glx.h>
#include <X11/Xutil.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <optional>

namespace ZLT::Platform {

namespace {

EGLint attribute(EGLDisplay display, EGLConfig config, EGLint name) {
    EGLint value = 0;
    eglGetConfigAttrib(display, config, name, &value);
    return value;
}

bool hasFloatFormats(EGLDisplay display) {
    const char* extensions = eglQueryString(display, EGL_EXTENSIONS);
    return extensions && std::strstr(extensions, "EGL_EXT_pixel_format_float");
}

BYTE byte(int value) { return static_cast<BYTE>(std::min(value, 255)); }

PIXELFORMATDESCRIPTOR describe(const DeviceContext& device, const Format& format) {
    PIXELFORMATDESCRIPTOR description = {};
    description.nSize = sizeof(description);
    description.nVersion = 1;
    description.dwFlags = PFD_SUPPORT_OPENGL | (drawsToWindow(device, format) ? PFD_DRAW_TO_WINDOW : 0) |
                          (format.doubleBuffered ? PFD_DOUBLEBUFFER : 0) |
                          (format.slow ? PFD_GENERIC_FORMAT : 0);
    description.iPixelType = PFD_TYPE_RGBA;
    description.cColorBits = byte(format.colorBits());
    description.cRedBits = byte(format.red);
    description.cGreenBits = byte(format.green);
    description.cBlueBits = byte(format.blue);
    description.cAlphaBits = byte(format.alpha);
    description.cDepthBits = byte(format.depth);
    description.cStencilBits = byte(format.stencil);
    return description;
}

// How far a number of bits is from the wanted one: too few weigh more than too many.
int distance(int offered, int wanted) {
    return offered < wanted ? 100 * (wanted - offered) : offered - wanted;
}

// The format of a number, whichever connection has it.
const Format* formatOf(const State& state, int number) {
    for (const Connection& connection : state.connections)
        if (connection.has(number))
            return &connection.format(number);
    return nullptr;
}

int numberOfFormats(const State& state) { return state.connections.back().last(); }

// The number of the nearest format of the drawable's own that can stand for one of another visual or another
// EGL device; 0 when there is none.
int siblingOf(const DeviceContext& device, const Format& wanted) {
    int best = 0;
    int least = std::numeric_limits<int>::max();
    for (int i = device.connection->first(); device.connection->has(i); ++i) {
        const Format& format = device.connection->format(i);
        const int more = excess(format, wanted);
        if (more >= 0 && more < least && format.doubleBuffered == wanted.doubleBuffered &&
            drawsToWindow(device, format)) {
            least = more;
            best = i;
        }
    }
    return best;
}

// What the format is, in the terms of WGL_ARB_pixel_format; nothing for an attribute that isn't known.
std::optional<int> valueOf(const DeviceContext& device, const Format& format, int name) {
    switch (name) {
    case WGL_NUMBER_PIXEL_FORMATS_ARB:
        return numberOfFormats(ZLT::Platform::state());
    case WGL_DRAW_TO_WINDOW_ARB:
        return drawsToWindow(device, format);
    case WGL_DRAW_TO_PBUFFER_ARB:
        return format.pbuffer && format.connection == device.connection;
    case WGL_ACCELERATION_ARB:
        return format.slow ? WGL_NO_ACCELERATION_ARB : WGL_FULL_ACCELERATION_ARB;
    case WGL_SWAP_METHOD_ARB:
        return WGL_SWAP_UNDEFINED_ARB;
    case WGL_SUPPORT_OPENGL_ARB:
        return format.connection == device.connection;
    case WGL_SHARE_DEPTH_ARB:
    case WGL_SHARE_STENCIL_ARB:
    case WGL_SHARE_ACCUM_ARB:
        return 1;
    case WGL_DOUBLE_BUFFER_ARB:
        return format.doubleBuffered;
    case WGL_PIXEL_TYPE_ARB:
        return format.floatingPoint ? WGL_TYPE_RGBA_FLOAT_ARB : WGL_TYPE_RGBA_ARB;
    case WGL_COLOR_BITS_ARB:
        return format.colorBits();
    case WGL_RED_BITS_ARB:
        return format.red;
    case WGL_GREEN_BITS_ARB:
        return format.green;
    case WGL_BLUE_BITS_ARB:
        return format.blue;
    case WGL_ALPHA_BITS_ARB:
        return format.alpha;
    case WGL_DEPTH_BITS_ARB:
        return format.depth;
    case WGL_STENCIL_BITS_ARB:
        return format.stencil;
    case WGL_SAMPLE_BUFFERS_ARB:
        return format.samples > 0;
    case WGL_SAMPLES_ARB:
        return format.samples;
    case WGL_MAX_PBUFFER_WIDTH_ARB:
        return attribute(device.connection->display, format.config, EGL_MAX_PBUFFER_WIDTH);
    case WGL_MAX_PBUFFER_HEIGHT_ARB:
        return attribute(device.connection->display, format.config, EGL_MAX_PBUFFER_HEIGHT);
    case WGL_MAX_PBUFFER_PIXELS_ARB:
        return attribute(device.connection->display, format.config, EGL_MAX_PBUFFER_PIXELS);
    // What EGL's configurations never have.
    case WGL_DRAW_TO_BITMAP_ARB:
    case WGL_NEED_PALETTE_ARB:
    case WGL_NEED_SYSTEM_PALETTE_ARB:
    case WGL_SWAP_LAYER_BUFFERS_ARB:
    case WGL_NUMBER_OVERLAYS_ARB:
    case WGL_NUMBER_UNDERLAYS_ARB:
    case WGL_TRANSPARENT_ARB:
    case WGL_TRANSPARENT_RED_VALUE_ARB:
    case WGL_TRANSPARENT_GREEN_VALUE_ARB:
    case WGL_TRANSPARENT_BLUE_VALUE_ARB:
    case WGL_TRANSPARENT_ALPHA_VALUE_ARB:
    case WGL_TRANSPARENT_INDEX_VALUE_ARB:
    case WGL_SUPPORT_GDI_ARB:
    case WGL_STEREO_ARB:
    case WGL_RED_SHIFT_ARB:
    case WGL_GREEN_SHIFT_ARB:
    case WGL_BLUE_SHIFT_ARB:
    case WGL_ALPHA_SHIFT_ARB:
    case WGL_ACCUM_BITS_ARB:
    case WGL_ACCUM_RED_BITS_ARB:
    case WGL_ACCUM_GREEN_BITS_ARB:
    case WGL_ACCUM_BLUE_BITS_ARB:
    case WGL_ACCUM_ALPHA_BITS_ARB:
    case WGL_AUX_BUFFERS_ARB:
        return 0;
    default:
        return std::nullopt;
    }
}

bool isMinimum(int name) {
    return (name >= WGL_COLOR_BITS_ARB && name <= WGL_AUX_BUFFERS_ARB) || name == WGL_SAMPLE_BUFFERS_ARB ||
           name == WGL_SAMPLES_ARB || name == WGL_NUMBER_OVERLAYS_ARB || name == WGL_NUMBER_UNDERLAYS_ARB;
}

struct Wanted {
    std::vector<std::pair<int, int>> attributes;
    bool floatingPoint = false;
};

// Less is better: what the format has beyond what was asked for, samples first.
long long excess(const DeviceContext& device, const Format& format, const Wanted& wanted) {
    long long bits = 0;
    long long samples = format.samples;
    for (const auto& [name, least] : wanted.attributes) {
        if (name == WGL_SAMPLES_ARB)
            samples -= least;
        else if (name != WGL_SAMPLE_BUFFERS_ARB && name != WGL_COLOR_BITS_ARB && isMinimum(name))
            bits += valueOf(device, format, name).value_or(0) - least;
    }
    return samples * 100000 + bits * 1000 + format.depth + format.stencil + format.alpha;
}

bool fits(const DeviceContext& device, const Format& format, const Wanted& wanted) {
    if (wanted.floatingPoint && !format.floatingPoint)
        return false;
    return std::ranges::all_of(wanted.attributes, [&](const auto& attribute) {
        const auto [name, value] = attribute;
        if (name == WGL_PIXEL_TYPE_ARB && wanted.floatingPoint)
            return true;
        const int offered = valueOf(device, format, name).value_or(0);
        return isMinimum(name) ? offered >= value : offered == value;
    });
}

HDC knownDevice(State& state, HDC device) {
    return state.devices.contains(device) && !device->isForeign() ? device : nullptr;
}

// For the questions that a drawable of somebody else's may stand for: those of a window on the first display.
const DeviceContext* askedDevice(State& state, HDC device) {
    if (!state.devices.contains(device) || state.connections.empty())
        return nullptr;
    if (!device->isForeign())
        return device;
    static DeviceContext window;
    window.connection = &state.connections.front();
    if (state.server)
        window.visual = XVisualIDFromVisual(DefaultVisual(state.server, DefaultScreen(state.server)));
    return &window;
}

} // namespace

int excess(const Format& format, const Format& wanted) {
    if (format.samples != wanted.samples || format.floatingPoint != wanted.floatingPoint)
        return -1;
    int more = 0;
    for (const auto bits :
         {&Format::red, &Format::green, &Format::blue, &Format::alpha, &Format::depth, &Format::stencil}) {
        if (format.*bits < wanted.*bits)
            return -1;
        more += format.*bits - wanted.*bits;
    }
    return more;
}

bool drawsToWindow(const DeviceContext& device, const Format& format) {
    if (device.isForeign())
        return true;
    if (format.connection != device.connection)
        return false;
    if (!device.connection->x11)
        return format.pbuffer;
    return format.window && format.doubleBuffered && format.visual == device.visual;
}

Format readFormat(EGLDisplay display, EGLConfig config, bool doubleBuffered) {
    const auto get = [&](EGLint name) { return attribute(display, config, name); };
    const EGLint surfaces = get(EGL_SURFACE_TYPE);
    Format format = {};
    format.config = config;
    format.doubleBuffered = doubleBuffered;
    format.red = get(EGL_RED_SIZE);
    format.green = get(EGL_GREEN_SIZE);
    format.blue = get(EGL_BLUE_SIZE);
    format.alpha = get(EGL_ALPHA_SIZE);
    format.depth = get(EGL_DEPTH_SIZE);
    format.stencil = get(EGL_STENCIL_SIZE);
    format.samples = get(EGL_SAMPLES);
    format.floatingPoint =
        hasFloatFormats(display) && get(EGL_COLOR_COMPONENT_TYPE_EXT) == EGL_COLOR_COMPONENT_TYPE_FLOAT_EXT;
    format.slow = get(EGL_CONFIG_CAVEAT) != EGL_NONE;
    format.pbuffer = (surfaces & EGL_PBUFFER_BIT) != 0;
    format.window = (surfaces & EGL_WINDOW_BIT) != 0;
    format.visual = static_cast<std::uintptr_t>(get(EGL_NATIVE_VISUAL_ID));
    return format;
}

Format readFormat(Display* display, GLXFBConfig config) {
    const auto get = [&](int name) {
        int value = 0;
        glXGetFBConfigAttrib(display, config, name, &value);
        return value;
    };
    const int drawables = get(GLX_DRAWABLE_TYPE);
    Format format = {};
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

std::vector<Format> formatsOf(EGLDisplay display) {
    EGLint count = 0;
    eglGetConfigs(display, nullptr, 0, &count);
    std::vector<EGLConfig> configs(static_cast<std::size_t>(count));
    eglGetConfigs(display, configs.data(), count, &count);
    std::vector<Format> formats;
    for (const bool doubleBuffered : {true, false})
        for (const EGLConfig config : configs) {
            const Format format = readFormat(display, config, doubleBuffered);
            if ((attribute(display, config, EGL_RENDERABLE_TYPE) & EGL_OPENGL_BIT) &&
                (format.pbuffer || format.window))
                formats.push_back(format);
        }
    return formats;
}

BOOL WINAPI choosePixelFormatARB(HDC handle, const int* integers, const FLOAT* reals, UINT capacity,
                                 int* formats, UINT* count) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const DeviceContext* device = askedDevice(state, handle);
    if (!device)
        return fail(ERROR_INVALID_HANDLE);
    if (!count || (capacity > 0 && !formats))
        return fail(ERROR_INVALID_PARAMETER);
    Wanted wanted;
    const Format& any = device->connection->formats.front();
    const auto add = [&](int name, int value) {
        // The value of the pixel type in the place of an attribute: callers ask for floating point so.
        if (name == WGL_TYPE_RGBA_FLOAT_ARB)
            wanted.floatingPoint = value != 0;
        else if (valueOf(*device, any, name))
            wanted.attributes.emplace_back(name, value);
        else
            return false;
        return true;
    };
    for (; integers && integers[0] != 0; integers += 2)
        if (!add(integers[0], integers[1]))
            return fail(ERROR_INVALID_PARAMETER);
    for (; reals && reals[0] != 0; reals += 2)
        if (!add(static_cast<int>(reals[0]), static_cast<int>(reals[1])))
            return fail(ERROR_INVALID_PARAMETER);

    std::vector<std::pair<long long, int>> found;
    for (int i = device->connection->first(); device->connection->has(i); ++i) {
        const Format& format = device->connection->format(i);
        if (fits(*device, format, wanted))
            found.emplace_back(excess(*device, format, wanted), i);
    }
    std::ranges::sort(found);
    *count = 0;
    for (; *count < capacity && *count < found.size(); ++*count)
        formats[*count] = found[*count].second;
    return TRUE;
}

BOOL WINAPI getPixelFormatAttribivARB(HDC handle, int format, int layer, UINT count, const int* attributes,
                                      int* values) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const DeviceContext* device = askedDevice(state, handle);
    if (!device)
        return fail(ERROR_INVALID_HANDLE);
    if (layer != 0 || (count > 0 && (!attributes || !values)))
        return fail(ERROR_INVALID_PARAMETER);
    for (UINT i = 0; i < count; ++i) {
        // The number of formats may be asked for without one.
        const Format* described = attributes[i] == WGL_NUMBER_PIXEL_FORMATS_ARB
                                      ? &device->connection->formats.front()
                                      : formatOf(state, format);
        if (!described)
            return fail(ERROR_INVALID_PIXEL_FORMAT);
        const std::optional<int> value = valueOf(*device, *described, attributes[i]);
        if (!value)
            return fail(ERROR_INVALID_PARAMETER);
        values[i] = *value;
    }
    return TRUE;
}

BOOL WINAPI getPixelFormatAttribfvARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      FLOAT* values) {
    if (count > 0 && !values)
        return fail(ERROR_INVALID_PARAMETER);
    std::vector<int> integers(count);
    if (!getPixelFormatAttribivARB(device, format, layer, count, attributes, integers.data()))
        return FALSE;
    std::ranges::transform(integers, values, [](int value) { return static_cast<FLOAT>(value); });
    return TRUE;
}

} // namespace ZLT::Platform

using namespace ZLT::Platform;

int ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!knownDevice(state, device))
        return fail(ERROR_INVALID_HANDLE);
    if (!wanted)
        return fail(ERROR_INVALID_PARAMETER);
    int best = 0;
    int least = std::numeric_limits<int>::max();
    for (int i = device->connection->first(); device->connection->has(i); ++i) {
        const Format& format = device->connection->format(i);
        if (format.floatingPoint || (device->window && !drawsToWindow(*device, format)))
            continue;
        const bool doubleWanted = (wanted->dwFlags & PFD_DOUBLEBUFFER) != 0;
        const int away =
            distance(format.colorBits(), wanted->cColorBits) + distance(format.alpha, wanted->cAlphaBits) +
            distance(format.depth, wanted->cDepthBits) + distance(format.stencil, wanted->cStencilBits) +
            10 * format.samples + (format.doubleBuffered == doubleWanted ? 0 : 50) + (format.slow ? 50 : 0);
        if (away < least) {
            least = away;
            best = i;
        }
    }
    return best ? best : fail(ERROR_INVALID_PIXEL_FORMAT);
}

int DescribePixelFormat(HDC device, int number, UINT size, PIXELFORMATDESCRIPTOR* description) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.devices.contains(device))
        return fail(ERROR_INVALID_HANDLE);
    const int count = device->isForeign() ? 1 : numberOfFormats(state);
    if (!description)
        return count;
    if (size < sizeof(*description))
        return fail(ERROR_INVALID_PARAMETER);
    if (number < 1 || number > count)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    *description = describe(*device, device->isForeign() ? foreignFormat(*device) : *formatOf(state, number));
    return count;
}

int GetPixelFormat(HDC device) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!state.devices.contains(device))
        return fail(ERROR_INVALID_HANDLE);
    if (device->isForeign())
        return 1;
    return device->pixelFormat ? device->pixelFormat : fail(ERROR_INVALID_PIXEL_FORMAT);
}

BOOL SetPixelFormat(HDC device, int number, const PIXELFORMATDESCRIPTOR*) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!knownDevice(state, device))
        return fail(ERROR_INVALID_HANDLE);
    if (device->xid) {
        // It may be gone, and its number given to another.
        const HWND handle = device->window;
        const WindowRecord* window = windowOf(state, handle);
        if (!window)
            return FALSE;
        if (!state.devices.contains(device))
            return fail(ERROR_INVALID_HANDLE);
    }
    const Format* wanted = formatOf(state, number);
    if (wanted && !drawsToWindow(*device, *wanted))
        number = siblingOf(*device, *wanted);
    if (!wanted || number == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (device->pixelFormat != 0)
        return device->pixelFormat == number ? TRUE : fail(ERROR_INVALID_PIXEL_FORMAT);
    const EGLDisplay display = device->connection->display;
    const EGLConfig config = device->connection->format(number).config;
    if (device->xid) {
        device->surface = eglCreateWindowSurface(display, config, device->xid, nullptr);
    } else {
        const EGLint size[] = {EGL_WIDTH, device->width, EGL_HEIGHT, device->height, EGL_NONE};
        device->surface = eglCreatePbufferSurface(display, config, size);
    }
    if (device->surface == EGL_NO_SURFACE)
        return failOfEGL();
    device->pixelFormat = number;
    return TRUE;
}
