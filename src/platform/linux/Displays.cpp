// The EGL displays that the process opens, and the display devices as a program sees them.

#include "platform/linux/Handles.h"
#include "platform/linux/XErrors.h"

#include <EGL/eglext.h>
#include <X11/extensions/Xrandr.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>

namespace ZLT::Platform {

namespace {

// Without X the EGL devices stand side by side, each as large as a common screen.
constexpr int headlessWidth = 1920;
constexpr int headlessHeight = 1080;

template <class Function>
Function eglFunction(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

std::string textOf(const char* text) { return text ? text : ""; }

bool addConnection(State& state, EGLDisplay display, bool x11, const std::string& adapter,
                   const std::string& key) {
    if (display == EGL_NO_DISPLAY || !eglInitialize(display, nullptr, nullptr))
        return false;
    const int offset = state.connections.empty() ? 0 : state.connections.back().last();
    Connection& connection = state.connections.emplace_back(
        Connection{display, x11, offset, formatsOf(display), "", adapter, key});
    if (connection.formats.empty()) {
        state.connections.pop_back();
        return false;
    }
    for (Format& format : connection.formats)
        format.connection = &connection;
    if (connection.adapter.empty())
        connection.adapter = textOf(eglQueryString(display, EGL_VENDOR));
    connection.extensions = extensionNames(connection);
    return true;
}

bool openX11(State& state) {
    XInitThreads();
    Display* server = XOpenDisplay(nullptr);
    if (!server)
        return false;
    const EGLDisplay display = eglGetPlatformDisplay(EGL_PLATFORM_X11_KHR, server, nullptr);
    if (!addConnection(state, display, true, "", "X11\\" + textOf(DisplayString(server)))) {
        eglTerminate(display);
        XCloseDisplay(server);
        return false;
    }
    state.server = server;
    return true;
}

void openHeadless(State& state) {
    const auto queryDevices = eglFunction<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const auto queryString = eglFunction<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    EGLint count = 0;
    if (queryDevices && queryString && queryDevices(0, nullptr, &count)) {
        std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
        queryDevices(count, devices.data(), &count);
        for (const EGLDeviceEXT device : devices) {
            const std::string extensions = textOf(queryString(device, EGL_EXTENSIONS));
            const bool hasFile = extensions.find("EGL_EXT_device_drm") != std::string::npos;
            const std::string file = hasFile ? textOf(queryString(device, EGL_DRM_DEVICE_FILE_EXT)) : "";
            const bool hasName = extensions.find("EGL_EXT_device_query_name") != std::string::npos;
            const std::string name = hasName ? textOf(queryString(device, EGL_RENDERER_EXT)) : "";
            const bool software = extensions.find("EGL_MESA_device_software") != std::string::npos;
            addConnection(state, eglGetPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr), false,
                          !name.empty() ? name
                          : software    ? "Software rendering"
                                        : file,
                          "EGL\\" + (file.empty() ? std::to_string(state.connections.size()) : file));
        }
    }
    if (state.connections.empty())
        addConnection(state, eglGetPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA, nullptr, nullptr), false,
                      "", "EGL\\surfaceless");
    if (state.connections.empty())
        addConnection(state, eglGetDisplay(EGL_DEFAULT_DISPLAY), false, "", "EGL\\default");
}

std::vector<Device> monitors(State& state) {
    std::vector<Device> devices;
    Display* server = state.server;
    const ::Window root = DefaultRootWindow(server);
    XErrors errors(server);
    int event = 0;
    int error = 0;
    int major = 0;
    int minor = 0;
    if (XRRQueryExtension(server, &event, &error) && XRRQueryVersion(server, &major, &minor) &&
        (major > 1 || minor >= 5)) {
        int count = 0;
        if (XRRMonitorInfo* list = XRRGetMonitors(server, root, True, &count)) {
            for (int i = 0; i < count; ++i) {
                const XRRMonitorInfo& monitor = list[i];
                char* name = XGetAtomName(server, monitor.name);
                devices.push_back(
                    {textOf(name),
                     {monitor.x, monitor.y, monitor.x + monitor.width, monitor.y + monitor.height},
                     monitor.primary != 0,
                     &state.connections.front()});
                if (name)
                    XFree(name);
            }
            XRRFreeMonitors(list);
        }
    }
    if (devices.empty())
        devices.push_back({"screen",
                           {0, 0, DisplayWidth(server, DefaultScreen(server)),
                            DisplayHeight(server, DefaultScreen(server))},
                           true,
                           &state.connections.front()});
    return devices;
}

template <std::size_t size>
void copyText(char (&target)[size], const std::string& text) {
    const std::size_t length = std::min(text.size(), size - 1);
    std::memcpy(target, text.data(), length);
    target[length] = '\0';
}

// As a program sees it: DeviceName holds 31 characters.
std::string nameOf(const Device& device) {
    return device.name.substr(0, sizeof(DISPLAY_DEVICEA::DeviceName) - 1);
}

long long distance(const RECT& area, int x, int y) {
    const auto outside = [](long long value, long long low, long long high) {
        return value < low ? low - value : value >= high ? value - high + 1 : 0;
    };
    const long long dx = outside(x, area.left, area.right);
    const long long dy = outside(y, area.top, area.bottom);
    return dx * dx + dy * dy;
}

long long overlap(const RECT& a, const RECT& b) {
    const long long width = std::min(a.right, b.right) - std::max(a.left, b.left);
    const long long height = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return width > 0 && height > 0 ? width * height : 0;
}

// Where the window is on the desktop now; false for none.
bool areaOf(State& state, HWND handle, RECT& area) {
    WindowRecord* window = windowOf(state, handle);
    if (!window)
        return false;
    const DeviceContext& device = *window->device;
    int x = window->x;
    int y = window->y;
    if (device.xid) {
        XErrors errors(state.server);
        ::Window child = 0;
        XTranslateCoordinates(state.server, device.xid, DefaultRootWindow(state.server), 0, 0, &x, &y,
                              &child);
        if (errors.any())
            return false;
    }
    area = {x, y, x + device.width, y + device.height};
    return true;
}

HMONITOR monitorHandle(std::size_t index) {
    return reinterpret_cast<HMONITOR>(index + 1); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

void openDisplays(State& state) {
    const std::string forced = textOf(std::getenv("ZLT_OGL_PLATFORM"));
    const bool server = !textOf(std::getenv("DISPLAY")).empty();
    if (!forced.empty() && forced != "headless" && forced != "x11")
        return;
    const bool tryX11 = forced == "x11" || (forced.empty() && server);
    const bool opened = tryX11 && openX11(state);
    if (!opened && forced != "x11")
        openHeadless(state);
}

std::vector<Device> displayDevices(State& state) {
    if (state.connections.empty())
        return {};
    std::vector<Device> devices;
    if (state.server) {
        devices = monitors(state);
    } else {
        for (Connection& connection : state.connections) {
            const int left = static_cast<int>(devices.size()) * headlessWidth;
            devices.push_back({"EGL" + std::to_string(devices.size()),
                               {left, 0, left + headlessWidth, headlessHeight},
                               false,
                               &connection});
        }
    }
    // One is the primary device, always.
    if (std::ranges::none_of(devices, &Device::primary))
        devices.front().primary = true;
    return devices;
}

const Device* deviceAt(const std::vector<Device>& devices, int x, int y) {
    const auto nearest = std::ranges::min_element(
        devices, {}, [&](const Device& device) { return distance(device.area, x, y); });
    return nearest == devices.end() ? nullptr : &*nearest;
}

} // namespace ZLT::Platform

using namespace ZLT::Platform;

BOOL EnumDisplayDevicesA(LPCSTR device, DWORD index, DISPLAY_DEVICEA* record, DWORD flags) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (device || flags || !record || record->cb < sizeof(*record))
        return fail(ERROR_INVALID_PARAMETER);
    const std::vector<Device> devices = displayDevices(state);
    if (index >= devices.size())
        return fail(ERROR_INVALID_PARAMETER);
    const Device& found = devices[index];
    const DWORD size = record->cb;
    *record = {};
    record->cb = size;
    copyText(record->DeviceName, found.name);
    copyText(record->DeviceString, found.connection->adapter);
    record->StateFlags =
        DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | (found.primary ? DISPLAY_DEVICE_PRIMARY_DEVICE : 0);
    copyText(record->DeviceID, found.connection->key);
    // The number of the output stands at the end, behind what its adapter is known by.
    const std::string number = std::to_string(10000 + index).substr(1);
    copyText(record->DeviceKey,
             found.connection->key.substr(0, sizeof(record->DeviceKey) - 6) + "\\" + number);
    return TRUE;
}

BOOL EnumDisplaySettingsA(LPCSTR device, DWORD mode, DEVMODEA* settings) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (mode != ENUM_CURRENT_SETTINGS || !settings)
        return fail(ERROR_INVALID_PARAMETER);
    for (const Device& found : displayDevices(state)) {
        if (device ? nameOf(found) != device : !found.primary)
            continue;
        const WORD size = settings->dmSize;
        *settings = {};
        settings->dmSize = size;
        settings->dmFields = DM_POSITION | DM_BITSPERPEL | DM_PELSWIDTH | DM_PELSHEIGHT;
        settings->dmPosition = {found.area.left, found.area.top};
        settings->dmPelsWidth = static_cast<DWORD>(found.area.right - found.area.left);
        settings->dmPelsHeight = static_cast<DWORD>(found.area.bottom - found.area.top);
        settings->dmBitsPerPel =
            state.server ? static_cast<DWORD>(DefaultDepth(state.server, DefaultScreen(state.server))) : 32;
        return TRUE;
    }
    return fail(ERROR_INVALID_PARAMETER);
}

HMONITOR MonitorFromWindow(HWND window, DWORD otherwise) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    const std::vector<Device> devices = displayDevices(state);
    if (devices.empty())
        return fail(ERROR_INVALID_PARAMETER);
    const auto primary = [&] {
        return monitorHandle(
            static_cast<std::size_t>(std::ranges::find(devices, true, &Device::primary) - devices.begin()));
    };
    RECT area = {};
    if (!areaOf(state, window, area)) // as on Windows, where no window is on the primary monitor
        return otherwise == MONITOR_DEFAULTTONULL ? nullptr : primary();
    if (!state.server) { // a pbuffer stays where it was made
        const ZLT::Platform::Connection* connection = windowOf(state, window)->device->connection;
        return monitorHandle(static_cast<std::size_t>(
            std::ranges::find(devices, connection, &Device::connection) - devices.begin()));
    }
    std::size_t best = devices.size();
    long long most = 0;
    for (std::size_t i = 0; i < devices.size(); ++i)
        if (const long long shared = overlap(devices[i].area, area); shared > most) {
            most = shared;
            best = i;
        }
    if (best < devices.size())
        return monitorHandle(best);
    if (otherwise == MONITOR_DEFAULTTONULL)
        return nullptr;
    if (otherwise == MONITOR_DEFAULTTOPRIMARY)
        return primary();
    return monitorHandle(static_cast<std::size_t>(deviceAt(devices, area.left, area.top) - devices.data()));
}

BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* information) {
    State& state = ZLT::Platform::state();
    const std::lock_guard guard(state.lock);
    if (!information ||
        (information->cbSize != sizeof(MONITORINFO) && information->cbSize != sizeof(MONITORINFOEXA)))
        return fail(ERROR_INVALID_PARAMETER);
    const std::vector<Device> devices = displayDevices(state);
    const std::size_t index = reinterpret_cast<std::uintptr_t>(monitor) - 1;
    if (index >= devices.size())
        return fail(ERROR_INVALID_MONITOR_HANDLE);
    information->rcMonitor = information->rcWork = devices[index].area;
    information->dwFlags = devices[index].primary ? MONITORINFOF_PRIMARY : 0;
    if (information->cbSize == sizeof(MONITORINFOEXA))
        copyText(static_cast<MONITORINFOEXA*>(information)->szDevice, devices[index].name);
    return TRUE;
}
