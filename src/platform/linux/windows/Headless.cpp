// Without a window system: a window is a pbuffer, and each EGL device is a display device.

#include "platform/linux/apis/Egl.h"
#include "platform/linux/windows/WindowSystem.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include <algorithm>

namespace ZLT::Platform {

namespace {

// Each device is as large as a common screen. They lie in rows of 16: the library places windows by numbers
// of 16 bits, in which a row of more would not fit.
constexpr LONG width = 1920;
constexpr LONG height = 1080;
constexpr std::size_t rowLength = 16;

RECT areaOf(std::size_t index) {
    const auto left = static_cast<LONG>(index % rowLength) * width;
    const auto top = static_cast<LONG>(index / rowLength) * height;
    return {left, top, left + width, top + height};
}

long long distance(const RECT& area, int x, int y) {
    const long long dx = x - std::clamp<long long>(x, area.left, area.right - 1);
    const long long dy = y - std::clamp<long long>(y, area.top, area.bottom - 1);
    return dx * dx + dy * dy;
}

class Headless : public WindowSystem {
public:
    explicit Headless(std::vector<Connection*> connections) : connections_(std::move(connections)) {}

    std::vector<Device> devices() override {
        std::vector<Device> list;
        for (const Connection* connection : connections_)
            list.push_back(
                {"EGL" + std::to_string(list.size()), areaOf(list.size()), list.empty(), connection, 32});
        return list;
    }

    std::shared_ptr<NativeWindow> create(const WindowShape& shape, const char*, bool, Connection*& connection,
                                         HWND&) override {
        std::size_t nearest = 0;
        for (std::size_t i = 1; i < connections_.size(); ++i)
            if (distance(areaOf(i), shape.x, shape.y) < distance(areaOf(nearest), shape.x, shape.y))
                nearest = i;
        connection = connections_[nearest];
        auto window = std::make_shared<Pbuffer>();
        window->area = areaOf(nearest);
        return window;
    }

    // It stays on the device where it was made.
    std::optional<WindowShape> geometry(const NativeWindow& window, const WindowShape& known) override {
        const RECT& area = static_cast<const Pbuffer&>(window).area;
        return WindowShape{std::clamp(known.x, area.left, std::max(area.left, area.right - known.width)),
                           std::clamp(known.y, area.top, std::max(area.top, area.bottom - known.height)),
                           known.width, known.height};
    }

    bool move(NativeWindow&, const WindowShape&) override { return true; }
    void show(NativeWindow&, bool) override {}
    void destroy(NativeWindow&) override {}
    bool resizesBySurface(const NativeWindow&) const override { return true; }
    bool isSeen(const NativeWindow&) const override { return false; }
    bool drawsTo(const NativeWindow*, const Format& format) const override { return format.pbuffer; }

    Surface surfaceFor(const NativeWindow&, const SurfacePlace& place) override {
        return {.api = place.api,
                .display = place.display,
                .config = place.config,
                .handle = place.api->pbuffer(place.display, place.config, place.width, place.height, false)};
    }

private:
    struct Pbuffer : NativeWindow {
        RECT area = {};
    };

    std::vector<Connection*> connections_;
};

std::string textOf(const char* text) { return text ? text : ""; }

template <class Function>
Function function(const char* name) {
    return reinterpret_cast<Function>(eglGetProcAddress(name));
}

std::vector<EglDisplayPlace> devicePlaces() {
    const auto queryDevices = function<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
    const auto queryString = function<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
    EGLint count = 0;
    if (!queryDevices || !queryString || !queryDevices(0, nullptr, &count))
        return {};
    std::vector<EGLDeviceEXT> devices(static_cast<std::size_t>(count));
    queryDevices(count, devices.data(), &count);
    std::vector<EglDisplayPlace> places;
    for (const EGLDeviceEXT device : devices) {
        const std::string extensions = textOf(queryString(device, EGL_EXTENSIONS));
        const auto has = [&](const char* name) { return extensions.find(name) != std::string::npos; };
        const std::string file =
            has("EGL_EXT_device_drm") ? textOf(queryString(device, EGL_DRM_DEVICE_FILE_EXT)) : "";
        const std::string name =
            has("EGL_EXT_device_query_name") ? textOf(queryString(device, EGL_RENDERER_EXT)) : "";
        EglDisplayPlace place;
        place.platform = EGL_PLATFORM_DEVICE_EXT;
        place.native = device;
        place.adapter = !name.empty() ? name : has("EGL_MESA_device_software") ? "Software rendering" : file;
        place.key = "EGL\\" + (file.empty() ? std::to_string(places.size()) : file);
        places.push_back(place);
    }
    return places;
}

} // namespace

std::unique_ptr<WindowSystem> openHeadless(std::string& note) {
    std::vector<Connection*> connections;
    std::string why;
    const auto open = [&](const EglDisplayPlace& place) {
        if (Connection* connection = openEglDisplay(place, why))
            connections.push_back(connection);
    };
    std::ranges::for_each(devicePlaces(), open);
    EglDisplayPlace surfaceless;
    surfaceless.platform = EGL_PLATFORM_SURFACELESS_MESA;
    surfaceless.key = "EGL\\surfaceless";
    EglDisplayPlace any;
    any.key = "EGL\\default";
    for (const EglDisplayPlace& place : {surfaceless, any})
        if (connections.empty())
            open(place);
    if (!connections.empty())
        return std::make_unique<Headless>(connections);
    note =
        "No EGL display without a window system can be used: " + why + " (Debian: libegl1 and libegl-mesa0).";
    return nullptr;
}

} // namespace ZLT::Platform
