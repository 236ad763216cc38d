// EGL's configurations as pixel formats. All functions that choose or describe share one numbering.

#include "platform/linux/apis/Egl.h"
#include "platform/linux/calls/Calls.h"
#include "platform/linux/records/Current.h"
#include "platform/linux/windows/Surfaces.h"

#include "platform/WglTokens.h"

#include <algorithm>
#include <limits>
#include <optional>

namespace ZLT::Platform {

namespace {

BYTE byte(int value) { return static_cast<BYTE>(std::min(value, 255)); }

// What a question about formats is asked for: a window or a pbuffer, on a connection.
struct Asked {
    const Connection* connection = nullptr; // null: none
    std::shared_ptr<NativeWindow> window;   // null: any window of our own
    bool anyFormat = false;                 // somebody else's drawable has what it has

    bool drawsTo(const Format& format) const {
        return anyFormat || (format.connection == connection && windowSystem().drawsTo(window.get(), format));
    }
};

Asked askedOf(const Drawable& drawable) {
    return {drawable.connection, drawable.native, drawable.isForeign()};
}

PIXELFORMATDESCRIPTOR describe(const Asked& asked, const Format& format) {
    PIXELFORMATDESCRIPTOR description = {};
    description.nSize = sizeof(description);
    description.nVersion = 1;
    description.dwFlags = PFD_SUPPORT_OPENGL | (asked.drawsTo(format) ? PFD_DRAW_TO_WINDOW : 0) |
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
const Format* formatOf(const Records& all, int number) {
    for (const Connection& connection : all.connections)
        if (connection.has(number))
            return &connection.format(number);
    return nullptr;
}

int numberOfFormats(const Records& all) {
    return all.connections.empty() ? 0 : all.connections.back().last();
}

// The number of the nearest format of the drawable's own that can stand for one of another visual or another
// connection; 0 when there is none.
int siblingOf(const Asked& asked, const Format& wanted) {
    int best = 0;
    int least = std::numeric_limits<int>::max();
    for (int i = asked.connection->first(); asked.connection->has(i); ++i) {
        const Format& format = asked.connection->format(i);
        const int more = excess(format, wanted);
        if (more >= 0 && more < least && format.doubleBuffered == wanted.doubleBuffered &&
            asked.drawsTo(format)) {
            least = more;
            best = i;
        }
    }
    return best;
}

// What the format is, in the terms of WGL_ARB_pixel_format; nothing for an attribute that isn't known.
std::optional<int> valueOf(const Asked& asked, const Format& format, int name) {
    switch (name) {
    case WGL_NUMBER_PIXEL_FORMATS_ARB:
        return numberOfFormats(records());
    case WGL_DRAW_TO_WINDOW_ARB:
        return asked.drawsTo(format);
    case WGL_DRAW_TO_PBUFFER_ARB:
        return format.pbuffer && format.connection == asked.connection;
    case WGL_ACCELERATION_ARB:
        return format.slow ? WGL_NO_ACCELERATION_ARB : WGL_FULL_ACCELERATION_ARB;
    case WGL_SWAP_METHOD_ARB:
        return WGL_SWAP_UNDEFINED_ARB;
    case WGL_SUPPORT_OPENGL_ARB:
        return format.connection == asked.connection;
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
        return format.maxPbufferWidth;
    case WGL_MAX_PBUFFER_HEIGHT_ARB:
        return format.maxPbufferHeight;
    case WGL_MAX_PBUFFER_PIXELS_ARB:
        return format.maxPbufferPixels;
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
long long excessOf(const Asked& asked, const Format& format, const Wanted& wanted) {
    long long bits = 0;
    long long samples = format.samples;
    for (const auto& [name, least] : wanted.attributes) {
        if (name == WGL_SAMPLES_ARB)
            samples -= least;
        else if (name != WGL_SAMPLE_BUFFERS_ARB && name != WGL_COLOR_BITS_ARB && isMinimum(name))
            bits += valueOf(asked, format, name).value_or(0) - least;
    }
    return samples * 100000 + bits * 1000 + format.depth + format.stencil + format.alpha;
}

bool fits(const Asked& asked, const Format& format, const Wanted& wanted) {
    if (wanted.floatingPoint && !format.floatingPoint)
        return false;
    return std::ranges::all_of(wanted.attributes, [&](const auto& attribute) {
        const auto [name, value] = attribute;
        if (name == WGL_PIXEL_TYPE_ARB && wanted.floatingPoint)
            return true;
        const int offered = valueOf(asked, format, name).value_or(0);
        return isMinimum(name) ? offered >= value : offered == value;
    });
}

// A drawable of our own, or null with the error.
std::shared_ptr<Drawable> ownDrawable(const Records& all, HDC device) {
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    return drawable && !drawable->isForeign() ? drawable : fail(ERROR_INVALID_HANDLE);
}

// The questions that a drawable of somebody else's, or the current one whose window is gone, may stand for:
// those of a window on the first display, or on its own.
Asked askedOf(const Records& all, HDC device) {
    if (const std::shared_ptr<Drawable> drawable = find(all.drawables, device)) {
        if (!drawable->isForeign())
            return askedOf(*drawable);
        if (!all.connections.empty())
            return {&all.connections.front(), nullptr, false};
    } else if (device && device == here.device) {
        return askedOf(*pinned()->draw);
    }
    return fail(ERROR_INVALID_HANDLE), Asked();
}

} // namespace

BOOL WINAPI choosePixelFormatARB(HDC handle, const int* integers, const FLOAT* reals, UINT capacity,
                                 int* formats, UINT* count) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const Asked asked = askedOf(all, handle);
    if (!asked.connection)
        return 0;
    if (!count || (capacity > 0 && !formats))
        return fail(ERROR_INVALID_PARAMETER);
    Wanted wanted;
    const Format& any = asked.connection->formats.front();
    const auto add = [&](int name, int value) {
        // The value of the pixel type in the place of an attribute: callers ask for floating point so.
        if (name == WGL_TYPE_RGBA_FLOAT_ARB)
            wanted.floatingPoint = value != 0;
        else if (valueOf(asked, any, name))
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
    for (int i = asked.connection->first(); asked.connection->has(i); ++i) {
        const Format& format = asked.connection->format(i);
        if (fits(asked, format, wanted))
            found.emplace_back(excessOf(asked, format, wanted), i);
    }
    std::ranges::sort(found);
    *count = 0;
    for (; *count < capacity && *count < found.size(); ++*count)
        formats[*count] = found[*count].second;
    return 1;
}

BOOL WINAPI getPixelFormatAttribivARB(HDC handle, int format, int layer, UINT count, const int* attributes,
                                      int* values) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const Asked asked = askedOf(all, handle);
    if (!asked.connection)
        return 0;
    if (layer != 0 || (count > 0 && (!attributes || !values)))
        return fail(ERROR_INVALID_PARAMETER);
    for (UINT i = 0; i < count; ++i) {
        // The number of formats may be asked for without one.
        const Format* described = attributes[i] == WGL_NUMBER_PIXEL_FORMATS_ARB
                                      ? &asked.connection->formats.front()
                                      : formatOf(all, format);
        if (!described)
            return fail(ERROR_INVALID_PIXEL_FORMAT);
        const std::optional<int> value = valueOf(asked, *described, attributes[i]);
        if (!value)
            return fail(ERROR_INVALID_PARAMETER);
        values[i] = *value;
    }
    return 1;
}

BOOL WINAPI getPixelFormatAttribfvARB(HDC device, int format, int layer, UINT count, const int* attributes,
                                      FLOAT* values) {
    if (count > 0 && !values)
        return fail(ERROR_INVALID_PARAMETER);
    std::vector<int> integers(count);
    if (!getPixelFormatAttribivARB(device, format, layer, count, attributes, integers.data()))
        return 0;
    std::ranges::transform(integers, values, [](int value) { return static_cast<FLOAT>(value); });
    return 1;
}

int ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> drawable = ownDrawable(all, device);
    if (!drawable)
        return 0;
    if (!wanted)
        return fail(ERROR_INVALID_PARAMETER);
    const Asked asked = askedOf(*drawable);
    int best = 0;
    int least = std::numeric_limits<int>::max();
    for (int i = asked.connection->first(); asked.connection->has(i); ++i) {
        const Format& format = asked.connection->format(i);
        if (format.floatingPoint || (drawable->window && !asked.drawsTo(format)))
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
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    if (!drawable)
        return fail(ERROR_INVALID_HANDLE);
    const int count = drawable->isForeign() ? 1 : numberOfFormats(all);
    if (!description)
        return count;
    if (size < sizeof(*description))
        return fail(ERROR_INVALID_PARAMETER);
    if (number < 1 || number > count)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    Format format;
    if (drawable->isForeign()) {
        void* const native = drawable->owner ? drawable->owner->native : nullptr;
        guard.unlock();
        format = drawable->api->formatOf(drawable->display, native, drawable->draw);
    } else {
        format = *formatOf(all, number);
    }
    *description = describe(askedOf(*drawable), format);
    return count;
}

int GetPixelFormat(HDC device) {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    const std::shared_ptr<Drawable> drawable = find(all.drawables, device);
    if (!drawable)
        return fail(ERROR_INVALID_HANDLE);
    if (drawable->isForeign())
        return 1;
    return drawable->pixelFormat ? drawable->pixelFormat : fail(ERROR_INVALID_PIXEL_FORMAT);
}

BOOL SetPixelFormat(HDC device, int number, const PIXELFORMATDESCRIPTOR*) {
    Records& all = opened();
    std::unique_lock guard(all.lock);
    const std::shared_ptr<Drawable> drawable = ownDrawable(all, device);
    guard.unlock();
    // Its window may be gone, and the window's number given to another.
    if (!drawable || (drawable->window && windowOf(drawable->window) != drawable))
        return fail(ERROR_INVALID_HANDLE);
    if (!keepOpen(*drawable->connection))
        return 0;
    guard.lock();
    const Asked asked = askedOf(*drawable);
    const Format* wanted = formatOf(all, number);
    if (wanted && !asked.drawsTo(*wanted))
        number = siblingOf(asked, *wanted);
    if (!wanted || number == 0)
        return fail(ERROR_INVALID_PIXEL_FORMAT);
    if (drawable->pixelFormat != 0)
        return drawable->pixelFormat == number ? 1 : fail(ERROR_INVALID_PIXEL_FORMAT);
    void* const config = drawable->connection->format(number).config;
    guard.unlock();
    if (!surfaceFor(*drawable, egl(), drawable->connection->display, config))
        return 0;
    guard.lock();
    drawable->pixelFormat = number;
    return 1;
}

} // namespace ZLT::Platform
