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
    bool enter(const std::string& function, std::initializer_list<std::string> arguments) {
        std::string line = function + '(';
        for (const std::string& argument : arguments)
            line += (&argument == arguments.begin() ? "" : ", ") + argument;
        calls.push_back(line + ')');
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

const char* WINAPI getExtensionsStringARB(HDC device) {
    const Lock lock(on->mutex);
    if (!on->enter("wglGetExtensionsStringARB", {on->name(device)}) || !currentDriver())
        return nullptr;
    const std::optional<std::string>& names = currentDriver()->wglExtensions;
    return names ? names->c_str() : nullptr;
}

BOOL WINAPI choosePixelFormatARB(HDC device, const int* attributes, const FLOAT* floats, UINT maximum,
                                 int* formats, UINT* count) {
    const Lock lock(on->mutex);
    const bool good = on->enter("wglChoosePixelFormatARB", {on->name(device), list(attributes),
                                                            hex(floats[0], floats[1]), hex(maximum)});
    // As a driver does that finds nothing: it says so in the count alone.
    *count = good ? 1 : 0;
    *formats = good ? 9 : -1;
    return TRUE;
}

HGLRC WINAPI createContextAttribsARB(HDC device, HGLRC share, const int* attributes) {
    const Lock lock(on->mutex);
    if (!on->enter("wglCreateContextAttribsARB", {on->name(device), on->name(share), list(attributes)}) ||
        !on->isLive(device) || on->formatOf(device) == 0)
        return nullptr;
    return on->system.makeContext(windowOf(device));
}

BOOL WINAPI swapIntervalEXT(int interval) {
    const Lock lock(on->mutex);
    return on->enter("wglSwapIntervalEXT", {hex(interval)});
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
#define MODEL(result, name, arguments)                                                                       \
    if (!on)                                                                                                 \
        return FakeGL::Function<result>{#name} arguments;                                                    \
    const Lock lock(on->mutex)

HGLRC WINAPI wglGetCurrentContext() {
    MODEL(HGLRC, wglGetCurrentContext, ());
    return current().context;
}

HDC WINAPI wglGetCurrentDC() {
    MODEL(HDC, wglGetCurrentDC, ());
    return current().device;
}

HGLRC WINAPI wglCreateContext(HDC device) {
    MODEL(HGLRC, wglCreateContext, (device));
    if (!on->enter("wglCreateContext", {on->name(device)}))
        return nullptr;
    if (!on->isLive(device) || on->formatOf(device) == 0)
        return on->refuse<HGLRC>(ERROR_INVALID_PIXEL_FORMAT);
    return on->system.makeContext(windowOf(device));
}

BOOL WINAPI wglDeleteContext(HGLRC context) {
    MODEL(BOOL, wglDeleteContext, (context));
    if (!on->enter("wglDeleteContext", {on->name(context)}))
        return FALSE;
    if (on->contexts.erase(context) == 0)
        return on->refuse<BOOL>(ERROR_INVALID_HANDLE);
    if (current().context == context)
        current() = {on->serial, nullptr, nullptr};
    return TRUE;
}

BOOL WINAPI wglMakeCurrent(HDC device, HGLRC context) {
    MODEL(BOOL, wglMakeCurrent, (device, context));
    const bool good = on->enter("wglMakeCurrent", {on->name(device), on->name(context)});
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
    MODEL(BOOL, wglShareLists, (first, second));
    if (!on->enter("wglShareLists", {on->name(first), on->name(second)}))
        return FALSE;
    return on->contexts.contains(first) && on->contexts.contains(second);
}

BOOL WINAPI SwapBuffers(HDC device) {
    MODEL(BOOL, SwapBuffers, (device));
    return on->enter("SwapBuffers", {on->name(device)});
}

PROC WINAPI wglGetProcAddress(LPCSTR name) {
    MODEL(PROC, wglGetProcAddress, (name));
    const bool ofWgl = std::strncmp(name, "wgl", 3) == 0;
    if (ofWgl && !on->enter("wglGetProcAddress", {name}))
        return nullptr;
    const FakeDriver* driver = currentDriver();
    return driver ? functionOf(*driver, name) : nullptr;
}

// And these are there with a window system alone.

BOOL WINAPI EnumDisplayDevicesA(LPCSTR, DWORD index, DISPLAY_DEVICEA* record, DWORD) {
    const Lock lock(on->mutex);
    if (!on->enter("EnumDisplayDevicesA", {hex(index)}) || record->cb != sizeof(*record) ||
        index >= on->system.devices.size())
        return FALSE;
    const FakeDevice& device = on->system.devices[index];
    *record = {};
    record->cb = sizeof(*record);
    record->StateFlags = device.flags;
    device.name.copy(record->DeviceName, sizeof(record->DeviceName) - 1);
    return TRUE;
}

BOOL WINAPI EnumDisplaySettingsA(LPCSTR name, DWORD mode, DEVMODEA* settings) {
    const Lock lock(on->mutex);
    if (!on->enter("EnumDisplaySettingsA", {name, hex(mode)}) || settings->dmSize != sizeof(*settings))
        return FALSE;
    for (const FakeDevice& device : on->system.devices)
        if (device.name == name) {
            settings->dmPosition.x = device.x;
            settings->dmPosition.y = device.y;
            return TRUE;
        }
    return FALSE;
}

HMONITOR WINAPI MonitorFromWindow(HWND window, DWORD otherwise) {
    const Lock lock(on->mutex);
    const bool good = on->enter("MonitorFromWindow", {on->name(window), hex(otherwise)});
    return good ? reinterpret_cast<HMONITOR>(on->deviceAt(window)) : nullptr;
}

BOOL WINAPI GetMonitorInfoA(HMONITOR monitor, MONITORINFO* information) {
    const Lock lock(on->mutex);
    if (!on->enter("GetMonitorInfoA", {}) || !monitor || information->cbSize != sizeof(MONITORINFOEXA))
        return FALSE;
    const auto& device = *reinterpret_cast<const FakeDevice*>(monitor);
    // The record came with zeros.
    (device.monitor.empty() ? device.name : device.monitor)
        .copy(static_cast<MONITORINFOEXA*>(information)->szDevice, sizeof(MONITORINFOEXA::szDevice) - 1);
    return TRUE;
}

HCURSOR WINAPI LoadCursorA(HINSTANCE, LPCSTR name) {
    const Lock lock(on->mutex);
    return on->enter("LoadCursorA", {hex(reinterpret_cast<std::uintptr_t>(name))}) ? handle<HCURSOR>(1)
                                                                                   : nullptr;
}

ATOM WINAPI RegisterClassExA(const WNDCLASSEXA* description) {
    const Lock lock(on->mutex);
    const std::string name = description->lpszClassName;
    const bool whole = description->cbSize == sizeof(*description) && description->lpfnWndProc;
    if (!on->enter("RegisterClassExA", {on->alias('k', name), hex(description->style)}) || !whole)
        return 0;
    return on->classes.insert(name).second ? 1 : on->refuse<ATOM>(ERROR_CLASS_ALREADY_EXISTS);
}

BOOL WINAPI UnregisterClassA(LPCSTR name, HINSTANCE) {
    const Lock lock(on->mutex);
    if (!on->enter("UnregisterClassA", {on->alias('k', std::string(name))}))
        return FALSE;
    for (const auto& window : on->windows)
        if (window.second.windowClass == name)
            return on->refuse<BOOL>(ERROR_CLASS_HAS_WINDOWS);
    return on->classes.erase(name) > 0;
}

LRESULT WINAPI DefWindowProcW(HWND, UINT, WPARAM, LPARAM) { return 0; }

// The frame is that of a window with a caption.
BOOL WINAPI AdjustWindowRectEx(RECT* frame, DWORD style, BOOL menu, DWORD exStyle) {
    const Lock lock(on->mutex);
    if (!on->enter("AdjustWindowRectEx", {hex(style, menu, exStyle)}))
        return FALSE;
    *frame = {frame->left - 3, frame->top - 20, frame->right + 3, frame->bottom + 4};
    return TRUE;
}

HWND WINAPI CreateWindowExA(DWORD exStyle, LPCSTR name, LPCSTR, DWORD style, int x, int y, int width,
                            int height, HWND, HMENU, HINSTANCE, LPVOID) {
    const Lock lock(on->mutex);
    std::ostringstream place;
    place << x << ' ' << y << ' ' << width << ' ' << height;
    if (!on->enter("CreateWindowExA", {on->alias('k', std::string(name)), hex(style, exStyle), place.str()}))
        return nullptr;
    if (!on->classes.contains(name))
        return on->refuse<HWND>(ERROR_CANNOT_FIND_WND_CLASS);
    const HWND window = on->system.makeWindow(x, y);
    on->windows[window].windowClass = name;
    return window;
}

BOOL WINAPI DestroyWindow(HWND window) {
    const Lock lock(on->mutex);
    return on->enter("DestroyWindow", {on->name(window)}) && on->windows.erase(window) > 0;
}

HDC WINAPI GetDC(HWND window) {
    const Lock lock(on->mutex);
    const bool good = on->enter("GetDC", {on->name(window)}) && on->windows.contains(window);
    return good ? deviceOf(window) : nullptr;
}

int WINAPI ReleaseDC(HWND window, HDC device) {
    const Lock lock(on->mutex);
    return on->enter("ReleaseDC", {on->name(window), on->name(device)}) && device == deviceOf(window);
}

int WINAPI ChoosePixelFormat(HDC device, const PIXELFORMATDESCRIPTOR* wanted) {
    const Lock lock(on->mutex);
    // All the fields that are set, and the size and the version in front; the others must be 0.
    PIXELFORMATDESCRIPTOR rest = *wanted;
    rest.nSize = rest.nVersion = 0;
    rest.dwFlags = 0;
    rest.cColorBits = rest.cAlphaBits = rest.cDepthBits = rest.cStencilBits = 0;
    const PIXELFORMATDESCRIPTOR empty = {};
    const bool good =
        on->enter("ChoosePixelFormat",
                  {on->name(device), hex(wanted->nSize, wanted->nVersion, wanted->dwFlags, wanted->cColorBits,
                                         wanted->cAlphaBits, wanted->cDepthBits, wanted->cStencilBits)});
    return good && std::memcmp(&rest, &empty, sizeof(rest)) == 0 ? 7 : 0;
}

int WINAPI DescribePixelFormat(HDC device, int format, UINT size, PIXELFORMATDESCRIPTOR* description) {
    const Lock lock(on->mutex);
    if (!on->enter("DescribePixelFormat", {on->name(device), hex(format, size)}))
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
    const Lock lock(on->mutex);
    return on->enter("GetPixelFormat", {on->name(device)}) ? on->formatOf(device) : 0;
}

BOOL WINAPI SetPixelFormat(HDC device, int format, const PIXELFORMATDESCRIPTOR* description) {
    const Lock lock(on->mutex);
    if (!on->enter("SetPixelFormat", {on->name(device), hex(format, description->nSize)}))
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
