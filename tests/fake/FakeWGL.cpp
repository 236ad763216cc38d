// The window system. On Linux it stands for src/platform/linux.

#include "FakeGL.h"

#if defined(_WIN32)
// Declare the functions as our own, not as imported ones.
#define _GDI32_
#define _USER32_
#endif
#include "FakeWindowSystem.h"

#include "platform/WglTokens.h"

#include <algorithm>
#include <concepts>
#include <mutex>
#include <set>
#include <sstream>
#include <utility>

namespace {

using ZLT::Platform::BOOL;
using Lock = std::lock_guard<std::recursive_mutex>;

template <class Handle>
Handle handle(std::uintptr_t value) {
    return reinterpret_cast<Handle>(value); // NOLINT(performance-no-int-to-ptr)
}
HDC deviceOf(HWND window) { return handle<HDC>(reinterpret_cast<std::uintptr_t>(window) + 0x10000); }
HWND windowOf(HDC device) { return handle<HWND>(reinterpret_cast<std::uintptr_t>(device) - 0x10000); }

template <class... Numbers>
std::string hex(Numbers... numbers) {
    std::ostringstream text;
    text << std::hex;
    ((text << ' ' << static_cast<unsigned int>(numbers)), ...);
    return text.str().substr(1);
}
std::string list(const int* values) {
    std::string text = hex(*values);
    // A key of 0 ends it.
    for (std::size_t i = 1; i % 2 != 0 || values[i] != 0; ++i)
        text += ' ' + hex(values[i]);
    return text + (values[0] == 0 ? "" : " 0");
}

} // namespace

struct FakeWindowSystem::State {
    struct Window {
        std::string windowClass;
        int x = 0, y = 0;
        int format = 0;
    };
    struct Failure {
        std::string function; // empty: any
        int countdown;
        DWORD error;
    };

    explicit State(FakeWindowSystem& owner) : system(owner) {}

    // Notes the call; false when it is to fail.
    template <class... Arguments>
    bool enter(const std::string& function, const Arguments&... arguments) {
        std::string list;
        ((list += (list.empty() ? "" : ", ") + name(arguments)), ...);
        calls.push_back(function + '(' + list + ')');
        bool good = true;
        for (Failure& failure : failures)
            if ((failure.function.empty() || failure.function == function) && --failure.countdown == 0) {
                SetLastError(failure.error);
                good = false;
            }
        return good;
    }
    template <class Result>
    Result refuse(DWORD error) {
        SetLastError(error);
        return Result();
    }

    // "w1" for the first window that is seen.
    std::string alias(char kind, const std::string& key) {
        std::map<std::string, std::string>& known = aliases[kind];
        return known.emplace(key, kind + std::to_string(known.size() + 1)).first->second;
    }
    std::string alias(char kind, const void* value) {
        return value ? alias(kind, std::to_string(reinterpret_cast<std::uintptr_t>(value))) : "0";
    }
    std::string name(HWND window) { return alias('w', static_cast<const void*>(window)); }
    std::string name(HDC device) { return alias('d', static_cast<const void*>(device)); }
    std::string name(HGLRC context) { return alias('c', static_cast<const void*>(context)); }
    static std::string name(const std::string& text) { return text; }
    template <std::integral Number>
    static std::string name(Number number) {
        return hex(number);
    }

    bool isLive(HDC device) const { return device && windows.contains(windowOf(device)); }
    int& formatOf(HDC device) { return windows[windowOf(device)].format; }

    // The one that shows the window, or the nearest.
    FakeDevice* deviceAt(HWND window) {
        FakeDevice* nearest = nullptr;
        long distance = 0;
        const auto beyond = [](long position, long origin) {
            return std::max(0l, std::max(origin - position, position - origin - 999));
        };
        for (FakeDevice& device : system.devices) {
            const long away = beyond(windows[window].x, device.x) + beyond(windows[window].y, device.y);
            if (device.flags & DISPLAY_DEVICE_ATTACHED_TO_DESKTOP && (!nearest || away < distance)) {
                nearest = &device;
                distance = away;
            }
        }
        return nearest;
    }

    FakeWindowSystem& system;
    const unsigned int serial = ++count;
    std::recursive_mutex mutex;
    std::vector<std::string> calls;
    std::vector<Failure> failures;
    std::map<char, std::map<std::string, std::string>> aliases;
    std::set<std::string> classes;
    std::map<HWND, Window> windows;
    std::map<HGLRC, HWND> contexts;
    static unsigned int count;
    static std::uintptr_t lastHandle; // of all systems: a handle never comes back
};
unsigned int FakeWindowSystem::State::count = 0;
std::uintptr_t FakeWindowSystem::State::lastHandle = 0x1000;

namespace {

FakeWindowSystem::State* on = nullptr;

struct Current {
    unsigned int serial; // of the system to which it belongs
    HDC device;
    HGLRC context;
};
thread_local Current currentPair = {};
Current& current() {
    if (currentPair.serial != on->serial)
        currentPair = {on->serial, nullptr, nullptr};
    return currentPair;
}

// Of the current context, or null.
const FakeDriver* currentDriver() {
    const auto found = on->contexts.find(current().context);
    return found == on->contexts.end() ? nullptr : &on->deviceAt(found->second)->driver;
}

const unsigned char* text(const std::string& text) {
    return reinterpret_cast<const unsigned char*>(text.c_str());
}

// For the three functions of GL by which a driver tells of itself.
bool answerAsDriver(const char* function, std::initializer_list<FakeGL::Value> arguments,
                    FakeGL::Value& result) {
    const bool strings = std::strcmp(function, "glGetString") == 0;
    const bool indexed = std::strcmp(function, "glGetStringi") == 0;
    const bool integers = std::strcmp(function, "glGetIntegerv") == 0;
    if (!strings && !indexed && !integers)
        return false;
    const Lock lock(on->mutex);
    const FakeDriver* driver = currentDriver();
    const unsigned int token = arguments.begin()->as<unsigned int>();
    if (!driver)
        return false;
    if (strings) {
        const std::optional<std::string>& known = token == 0x1F00   ? driver->vendor
                                                  : token == 0x1F02 ? driver->version
                                                                    : driver->extensions;
        result = known ? text(*known) : nullptr;
    } else if (indexed) {
        const unsigned int index = (arguments.begin() + 1)->as<unsigned int>();
        if (index >= driver->indexedExtensions.size())
            return false;
        result = text(driver->indexedExtensions[index]);
    } else if (const auto value = driver->integers.find(token); value != driver->integers.end()) {
        *(arguments.begin() + 1)->as<int*>() = value->second;
    }
    return true;
}

// The functions of the WGL extensions.

// For the rest of a function: notes its call, `good` unless it is to fail.
#define ENTER_AS(function, ...)                                                                              \
    const Lock lock(on->mutex);                                                                              \
    const bool good = on->enter(function __VA_OPT__(, ) __VA_ARGS__)
#define ENTER(...) ENTER_AS(__func__ __VA_OPT__(, ) __VA_ARGS__)

const char* WINAPI getExtensionsStringARB(HDC device) {
    ENTER_AS("wglGetExtensionsStringARB", device);
    const FakeDriver* driver = currentDriver();
    return good && driver && driver->wglExtensions ? driver->wglExtensions->c_str() : nullptr;
}

BOOL WINAPI choosePixelFormatARB(HDC device, const int* attributes, const FLOAT* floats, UINT maximum,
                                 int* formats, UINT* count) {
    ENTER_AS("wglChoosePixelFormatARB", device, list(attributes), hex(floats[0], floats[1]), maximum);
    // As a driver does that finds nothing: it says so in the count alone.
    *count = good ? 1 : 0;
    *formats = good ? 9 : -1;
    return TRUE;
}

HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC share, const int* attributes) {
    ENTER_AS("wglCreateContextAttribsARB", device, share, list(attributes));
    const bool able = good && on->isLive(device) && on->formatOf(device) != 0;
    return able ? on->system.makeContext(windowOf(device)) : nullptr;
}

BOOL WINAPI swapIntervalEXT(int interval) {
    ENTER_AS("wglSwapIntervalEXT", interval);
    return good;
}
int WINAPI getSwapIntervalEXT() { return 0; }

template <class Function>
PROC procOf(Function function) {
    return reinterpret_cast<PROC>(reinterpret_cast<void (*)()>(function));
}
const struct {
    const char *name, *extension;
    PROC function;
} extensionFunctions[] = {
    {"wglGetExtensionsStringARB", " ", procOf(getExtensionsStringARB)},
    {"wglChoosePixelFormatARB", "WGL_ARB_pixel_format", procOf(choosePixelFormatARB)},
    {"wglCreateContextAttribsARB", "WGL_ARB_create_context", procOf(createContextAttribsARB)},
    {"wglSwapIntervalEXT", "WGL_EXT_swap_control", procOf(swapIntervalEXT)},
    {"wglGetSwapIntervalEXT", "WGL_EXT_swap_control", procOf(getSwapIntervalEXT)}};

PROC functionOf(const FakeDriver& driver, const std::string& name) {
    if (const auto own = driver.functions.find(name); own != driver.functions.end())
        return own->second;
    for (const auto& known : extensionFunctions)
        if (name == known.name)
            return driver.wglExtensions &&
                           (*driver.wglExtensions + ' ').find(known.extension) < std::string::npos
                       ? known.function
                       : nullptr;
    return reinterpret_cast<PROC>(FakeGL::addressOf(name.c_str()));
}

} // namespace

FakeWindowSystem::FakeWindowSystem() : devices(1), state_(new State(*this)) {
    on = state_.get();
    FakeGL::reset();
    FakeGL::setDriver(answerAsDriver);
}

FakeWindowSystem::~FakeWindowSystem() {
    FakeGL::setDriver(nullptr);
    on = nullptr;
}

std::vector<std::string> FakeWindowSystem::takeCalls() {
    state_->aliases.clear();
    return std::exchange(state_->calls, {});
}

void FakeWindowSystem::fail(const std::string& function, int nth, DWORD error) {
    state_->failures.push_back({function, nth, error});
}
void FakeWindowSystem::failCall(int nth) { fail("", nth); }
void FakeWindowSystem::failNothing() { state_->failures.clear(); }

HWND FakeWindowSystem::makeWindow(int x, int y) {
    const HWND window = handle<HWND>(++state_->lastHandle);
    state_->windows[window] = {"STATIC", x, y};
    return window;
}

HGLRC FakeWindowSystem::makeContext(HWND window) {
    const HGLRC context = handle<HGLRC>(++state_->lastHandle);
    int& format = state_->windows[window].format;
    if (format == 0)
        format = 5;
    state_->contexts[context] = window;
    return context;
}

std::size_t FakeWindowSystem::windows() const { return state_->windows.size(); }
std::size_t FakeWindowSystem::classes() const { return state_->classes.size(); }
std::size_t FakeWindowSystem::contexts() const { return state_->contexts.size(); }

#define SCRIPTED(result, name, parameters, arguments)                                                        \
    result WINAPI name parameters { return FakeGL::Function<result>{#name} arguments; }

#if defined(_WIN32)
extern "C" {
#else
namespace ZLT::Platform {
static thread_local DWORD lastError = 0;
DWORD GetLastError() { return lastError; }
void SetLastError(DWORD error) { lastError = error; }
HMODULE GetModuleHandleA(LPCSTR) { return handle<HMODULE>(1); }
void noticeCurrent() {}
#endif

SCRIPTED(BOOL, wglCopyContext, (HGLRC source, HGLRC destination, UINT mask), (source, destination, mask))
SCRIPTED(HGLRC, wglCreateLayerContext, (HDC device, int layer), (device, layer))
SCRIPTED(BOOL, wglUseFontBitmapsA, (HDC device, DWORD first, DWORD count, DWORD list),
         (device, first, count, list))
SCRIPTED(BOOL, wglUseFontBitmapsW, (HDC device, DWORD first, DWORD count, DWORD list),
         (device, first, count, list))
SCRIPTED(BOOL, wglUseFontOutlinesA,
         (HDC device, DWORD first, DWORD count, DWORD list, FLOAT deviation, FLOAT extrusion, int format,
          LPGLYPHMETRICSFLOAT metrics),
         (device, first, count, list, deviation, extrusion, format, metrics))
SCRIPTED(BOOL, wglUseFontOutlinesW,
         (HDC device, DWORD first, DWORD count, DWORD list, FLOAT deviation, FLOAT extrusion, int format,
          LPGLYPHMETRICSFLOAT metrics),
         (device, first, count, list, deviation, extrusion, format, metrics))
SCRIPTED(BOOL, wglDescribeLayerPlane,
         (HDC device, int format, int layer, UINT size, LPLAYERPLANEDESCRIPTOR descriptor),
         (device, format, layer, size, descriptor))
SCRIPTED(int, wglSetLayerPaletteEntries,
         (HDC device, int layer, int start, int count, const COLORREF* colors),
         (device, layer, start, count, colors))
SCRIPTED(int, wglGetLayerPaletteEntries, (HDC device, int layer, int start, int count, COLORREF* colors),
         (device, layer, start, count, colors))
SCRIPTED(BOOL, wglRealizeLayerPalette, (HDC device, int layer, BOOL realize), (device, layer, realize))
SCRIPTED(BOOL, wglSwapLayerBuffers, (HDC device, UINT planes), (device, planes))
SCRIPTED(DWORD, wglSwapMultipleBuffers, (UINT count, const WGLSWAP* buffers), (count, buffers))

// From here on: scripted without a window system, and modelled with one.
#define SCRIPT(result, ...)                                                                                  \
    if (!on)                                                                                                 \
    return FakeGL::Function<result>{__func__}(__VA_ARGS__)
#define MODEL(result, ...)                                                                                   \
    SCRIPT(result, __VA_ARGS__);                                                                             \
    ENTER(__VA_ARGS__)

HGLRC WINAPI wglGetCurrentContext() {
    SCRIPT(HGLRC);
    const Lock lock(on->mutex);
    return current().context;
}

HDC WINAPI wglGetCurrentDC() {
    SCRIPT(HDC);
    const Lock lock(on->mutex);
    return current().device;
}

HGLRC WINAPI wglCreateContext(HDC device) {
    MODEL(HGLRC, device);
    if (!good)
        return nullptr;
    if (!on->isLive(device) || on->formatOf(device) == 0)
        return on->refuse<HGLRC>(ERROR_INVALID_PIXEL_FORMAT);
    return on->system.makeContext(windowOf(device));
}

BOOL WINAPI wglDeleteContext(HGLRC context) {
    MODEL(BOOL, context);
    if (!good)
        return FALSE;
    if (on->contexts.erase(context) == 0)
        return on->refuse<BOOL>(ERROR_INVALID_HANDLE);
    if (current().context == context)
        current() = {on->serial, nullptr, nullptr};
    return TRUE;
}

BOOL WINAPI wglMakeCurrent(HDC device, HGLRC context) {
    MODEL(BOOL, device, context);
    // A failure leaves nothing current but where nothing was asked for.
    const Current before = std::exchange(current(), {on->serial, nullptr, nullptr});
    if (!good) {
        if (!context)
            current() = before;
        return FALSE;
    }
    if (!context)
        return TRUE;
    if (!on->isLive(device) || !on->contexts.contains(context))
        return on->refuse<BOOL>(ERROR_INVALID_HANDLE);
    current() = {on->serial, device, context};
    return TRUE;
}

BOOL WINAPI wglShareLists(HGLRC first, HGLRC second) {
    MODEL(BOOL, first, second);
    return good && on->contexts.contains(first) && on->contexts.contains(second);
}

BOOL WINAPI SwapBuffers(HDC device) {
    MODEL(BOOL, device);
    return good;
}

PROC WINAPI wglGetProcAddress(LPCSTR name) {
    SCRIPT(PROC, name);
    const Lock lock(on->mutex);
    if (std::strncmp(name, "wgl", 3) == 0 && !on->enter(__func__, name))
        return nullptr;
    const FakeDriver* driver = currentDriver();
    return driver ? functionOf(*driver, name) : nullptr;
}

// And these are there with a window system alone.

BOOL WINAPI EnumDisplayDevicesA(LPCSTR, DWORD index, DISPLAY_DEVICEA* record, DWORD) {
    ENTER(index);
    if (!good || record->cb != sizeof(*record) || index >= on->system.devices.size())
        return FALSE;
    const FakeDevice& device = on->system.devices[index];
    *record = {};
    record->cb = sizeof(*record);
    record->StateFlags = device.flags;
    device.name.copy(record->DeviceName, sizeof(record->DeviceName) - 1);
    return TRUE;
}

BOOL WINAPI EnumDisplaySettingsA(LPCSTR name, DWORD mode, DEVMODEA* settings) {
    ENTER(name, mode);
    const auto device = std::ranges::find(on->system.devices, name, &FakeDevice::name);
    if (!good || settings->dmSize != sizeof(*settings) || device == on->system.devices.end())
        return FALSE;
    settings->dmPosition.x = device->x;
    settings->dmPosition.y = device->y;
    return TRUE;
}

HMONITOR WINAPI MonitorFromWindow(HWND window, DWORD otherwise) {
    ENTER(window, otherwise);
    return good ? reinterpret_cast<HMONITOR>(on->deviceAt(window)) : nullptr;
}

BOOL WINAPI GetMonitorInfoA(HMONITOR monitor, MONITORINFO* information) {
    ENTER();
    if (!good || !monitor || information->cbSize != sizeof(MONITORINFOEXA))
        return FALSE;
    const auto& device = *reinterpret_cast<const FakeDevice*>(monitor);
    // The record came with zeros.
    (device.monitor.empty() ? device.name : device.monitor)
        .copy(static_cast<MONITORINFOEXA*>(information)->szDevice, sizeof(MONITORINFOEXA::szDevice) - 1);
    return TRUE;
}

HCURSOR WINAPI LoadCursorA(HINSTANCE, LPCSTR name) {
    ENTER(reinterpret_cast<std::uintptr_t>(name));
    return good ? handle<HCURSOR>(1) : nullptr;
}

ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* description) {
    const std::string name = description->lpszClassName;
    ENTER(on->alias('k', name), description->style);
    if (!good || description->cbSize != sizeof(*description) || !description->lpfnWndProc)
        return 0;
    return on->classes.insert(name).second ? 1 : on->refuse<ATOM>(ERROR_CLASS_ALREADY_EXISTS);
}

BOOL WINAPI UnregisterClassA(LPCSTR name, HINSTANCE) {
    ENTER(on->alias('k', std::string(name)));
    if (!good)
        return FALSE;
    for (const auto& window : on->windows)
        if (window.second.windowClass == name)
            return on->refuse<BOOL>(ERROR_CLASS_HAS_WINDOWS);
    return on->classes.erase(name) > 0;
}

LRESULT WINAPI DefWindowProcW(HWND, UINT, WPARAM, LPARAM) { return 0; }

// The frame is that of a window with a caption.
BOOL WINAPI AdjustWindowRectEx(RECT* frame, DWORD style, BOOL menu, DWORD exStyle) {
    ENTER(hex(style, menu, exStyle));
    if (good)
        *frame = {frame->left - 3, frame->top - 20, frame->right + 3, frame->bottom + 4};
    return good;
}

HWND WINAPI CreateWindowExA(DWORD exStyle, LPCSTR name, LPCSTR, DWORD style, int x, int y, int width,
                            int height, HWND, HMENU, HINSTANCE, LPVOID) {
    std::ostringstream place;
    place << x << ' ' << y << ' ' << width << ' ' << height;
    ENTER(on->alias('k', std::string(name)), hex(style, exStyle), place.str());
    if (!good)
        return nullptr;
    if (!on->classes.contains(name))
        return on->refuse<HWND>(ERROR_CANNOT_FIND_WND_CLASS);
    const HWND window = on->system.makeWindow(x, y);
    on->windows[window].windowClass = name;
    return window;
}

BOOL WINAPI DestroyWindow(HWND window) {
    ENTER(window);
    return good && on->windows.erase(window) > 0;
}

HDC WINAPI GetDC(HWND window) {
    ENTER(window);
    return good && on->windows.contains(window) ? deviceOf(window) : nullptr;
}

HWND WINAPI WindowFromDC(HDC device) {
    ENTER(device);
    return good && on->isLive(device) ? windowOf(device) : nullptr;
}

BOOL WINAPI GetClientRect(HWND window, RECT* rectangle) {
    ENTER(window);
    *rectangle = {0, 0, 640, 480};
    return good && on->windows.contains(window);
}

int WINAPI ReleaseDC(HWND window, HDC device) {
    ENTER(window, device);
    return good && device == deviceOf(window);
}

int WINAPI ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted) {
    // All the fields that are set, and the size and the version in front; the others must be 0.
    PIXELFORMATDESCRIPTOR rest = *wanted;
    rest.nSize = rest.nVersion = 0;
    rest.dwFlags = 0;
    rest.cColorBits = rest.cAlphaBits = rest.cDepthBits = rest.cStencilBits = 0;
    const PIXELFORMATDESCRIPTOR empty = {};
    ENTER(device, hex(wanted->nSize, wanted->nVersion, wanted->dwFlags, wanted->cColorBits,
                      wanted->cAlphaBits, wanted->cDepthBits, wanted->cStencilBits));
    return good && std::memcmp(&rest, &empty, sizeof(rest)) == 0 ? 7 : 0;
}

int WINAPI DescribePixelFormat(HDC device, int format, UINT size, PIXELFORMATDESCRIPTOR* description) {
    ENTER(device, hex(format, size));
    if (!good)
        return 0;
    description->cRedBits = 255;
    description->cGreenBits = 2;
    description->cBlueBits = 3;
    description->cAlphaBits = 4;
    description->cStencilBits = 5;
    description->cDepthBits = 6;
    return 1;
}

int WINAPI GetPixelFormat(HDC device) {
    ENTER(device);
    return good ? on->formatOf(device) : 0;
}

BOOL WINAPI SetPixelFormat(HDC device, int format, const PIXELFORMATDESCRIPTOR* description) {
    ENTER(device, hex(format, description->nSize));
    if (!good)
        return FALSE;
    int& known = on->formatOf(device);
    if (known != 0 && known != format)
        return on->refuse<BOOL>(ERROR_INVALID_PIXEL_FORMAT);
    known = format;
    return TRUE;
}

#if defined(_WIN32)
} // extern "C"
#else
} // namespace ZLT::Platform
#endif
