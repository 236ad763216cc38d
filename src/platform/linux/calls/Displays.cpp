// The display devices, and which of them shows a window.

#include "platform/linux/calls/Calls.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Platform {

namespace {

// The list as it is now, which the records keep for the calls that follow.
std::vector<Device> askDevices() {
    Records& all = opened();
    std::vector<Device> devices = windowSystem().devices();
    // One is the primary device, always.
    if (!devices.empty() && std::ranges::none_of(devices, &Device::primary))
        devices.front().primary = true;
    const std::lock_guard guard(all.lock);
    return all.devices = devices;
}

std::vector<Device> lastDevices() {
    Records& all = opened();
    const std::lock_guard guard(all.lock);
    return all.devices;
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

// The squared distance of two rectangles; 0 when they touch.
long long distance(const RECT& a, const RECT& b) {
    const auto gap = [](long long lowA, long long highA, long long lowB, long long highB) {
        return std::max({0LL, lowB - highA, lowA - highB});
    };
    const long long dx = gap(a.left, a.right, b.left, b.right);
    const long long dy = gap(a.top, a.bottom, b.top, b.bottom);
    return dx * dx + dy * dy;
}

long long overlap(const RECT& a, const RECT& b) {
    const long long width = std::min(a.right, b.right) - std::max(a.left, b.left);
    const long long height = std::min(a.bottom, b.bottom) - std::max(a.top, b.top);
    return width > 0 && height > 0 ? width * height : 0;
}

// Where the window is on the desktop now; nothing for none.
std::optional<RECT> areaOf(HWND handle) {
    const std::shared_ptr<Drawable> window = windowOf(handle);
    if (!window)
        return std::nullopt;
    Records& all = records();
    std::unique_lock guard(all.lock);
    const WindowShape known = {window->x, window->y, window->width, window->height};
    guard.unlock();
    const auto now = windowSystem().geometry(*window->native, known);
    if (!now)
        return std::nullopt;
    return RECT{now->x, now->y, now->x + now->width, now->y + now->height};
}

HMONITOR handleOf(const std::vector<Device>& devices, std::vector<Device>::const_iterator device) {
    const auto number = static_cast<std::uintptr_t>(device - devices.begin()) + 1;
    return reinterpret_cast<HMONITOR>(number); // NOLINT(performance-no-int-to-ptr)
}

} // namespace

BOOL EnumDisplayDevicesA(LPCSTR device, DWORD index, DISPLAY_DEVICEA* record, DWORD flags) {
    if (device || flags || !record || record->cb < sizeof(*record))
        return fail(ERROR_INVALID_PARAMETER);
    // A walk begins at 0, and is one look at the desktop.
    const std::vector<Device> devices = index == 0 ? askDevices() : lastDevices();
    if (index >= devices.size())
        return index == 0 ? 0 : fail(ERROR_INVALID_PARAMETER);
    const Device& found = devices[index];
    const DWORD size = record->cb;
    *record = {};
    record->cb = size;
    copyText(record->DeviceName, found.name);
    copyText(record->DeviceString, found.connection->adapter);
    record->StateFlags =
        DISPLAY_DEVICE_ATTACHED_TO_DESKTOP | (found.primary ? DISPLAY_DEVICE_PRIMARY_DEVICE : 0);
    copyText(record->DeviceID, found.connection->key);
    // The number of the output is at the end, after what its adapter is known by.
    const std::string number = std::to_string(10000 + index).substr(1);
    copyText(record->DeviceKey,
             found.connection->key.substr(0, sizeof(record->DeviceKey) - 6) + "\\" + number);
    return 1;
}

BOOL EnumDisplaySettingsA(LPCSTR device, DWORD mode, DEVMODEA* settings) {
    if (mode != ENUM_CURRENT_SETTINGS || !settings)
        return fail(ERROR_INVALID_PARAMETER);
    const std::vector<Device> devices = askDevices();
    if (devices.empty())
        return 0;
    for (const Device& found : devices) {
        if (device ? nameOf(found) != device : !found.primary)
            continue;
        const WORD size = settings->dmSize;
        *settings = {};
        settings->dmSize = size;
        settings->dmFields = DM_POSITION | DM_BITSPERPEL | DM_PELSWIDTH | DM_PELSHEIGHT;
        settings->dmPosition = {found.area.left, found.area.top};
        settings->dmPelsWidth = static_cast<DWORD>(found.area.right - found.area.left);
        settings->dmPelsHeight = static_cast<DWORD>(found.area.bottom - found.area.top);
        settings->dmBitsPerPel = static_cast<DWORD>(found.bitsPerPixel);
        return 1;
    }
    return fail(ERROR_INVALID_PARAMETER);
}

HMONITOR MonitorFromWindow(HWND window, DWORD otherwise) {
    const std::vector<Device> devices = askDevices();
    if (devices.empty())
        return nullptr;
    const auto primary = std::ranges::find(devices, true, &Device::primary);
    const std::optional<RECT> area = areaOf(window);
    if (!area) // as on Windows, where no window is on the primary monitor
        return otherwise == MONITOR_DEFAULTTONULL ? nullptr : handleOf(devices, primary);
    const auto shared = [&](const Device& device) { return overlap(device.area, *area); };
    if (const auto most = std::ranges::max_element(devices, {}, shared); shared(*most) > 0)
        return handleOf(devices, most);
    if (otherwise == MONITOR_DEFAULTTONULL)
        return nullptr;
    if (otherwise == MONITOR_DEFAULTTOPRIMARY)
        return handleOf(devices, primary);
    return handleOf(devices, std::ranges::min_element(devices, {}, [&](const Device& device) {
                        return distance(device.area, *area);
                    }));
}

BOOL GetMonitorInfoA(HMONITOR monitor, MONITORINFO* information) {
    if (!information ||
        (information->cbSize != sizeof(MONITORINFO) && information->cbSize != sizeof(MONITORINFOEXA)))
        return fail(ERROR_INVALID_PARAMETER);
    const std::vector<Device> devices = lastDevices();
    const std::size_t index = reinterpret_cast<std::uintptr_t>(monitor) - 1;
    if (index >= devices.size())
        return fail(ERROR_INVALID_MONITOR_HANDLE);
    information->rcMonitor = information->rcWork = devices[index].area;
    information->dwFlags = devices[index].primary ? MONITORINFOF_PRIMARY : 0;
    if (information->cbSize == sizeof(MONITORINFOEXA))
        copyText(static_cast<MONITORINFOEXA*>(information)->szDevice, devices[index].name);
    return 1;
}

} // namespace ZLT::Platform
