// A Wayland compositor. A window of our own is a surface without a role, which is never shown; a toolkit's
// surface is drawn to on the toolkit's display, since a surface belongs to one connection. No surface of EGL
// on Wayland is a pbuffer, so surfaces without a role stand for these as well.

#include "platform/linux/apis/Egl.h"
#include "platform/linux/records/Errors.h"
#include "platform/linux/windows/WindowSystem.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <wayland-client.h>
#include <wayland-egl.h>
#include <xdg-output-unstable-v1-client-protocol.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <list>

namespace ZLT::Platform {

namespace {

constexpr const char* lost = "The connection to the Wayland compositor is lost.";

// Objects that are made with it have their events on a queue of their own: whoever else uses the display
// never meets them.
class Registry {
public:
    Registry(wl_display* display, const wl_registry_listener& listener, void* data)
        : display_(display), queue_(wl_display_create_queue(display)) {
        auto* wrapper = static_cast<wl_display*>(wl_proxy_create_wrapper(display));
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(wrapper), queue_);
        registry_ = wl_display_get_registry(wrapper);
        wl_proxy_wrapper_destroy(wrapper);
        wl_registry_add_listener(registry_, &listener, data);
    }
    Registry(const Registry&) = delete;
    Registry& operator=(const Registry&) = delete;
    ~Registry() {
        wl_registry_destroy(registry_);
        wl_event_queue_destroy(queue_);
    }

    bool roundTrip() { return wl_display_roundtrip_queue(display_, queue_) >= 0; }

private:
    wl_display* display_;
    wl_event_queue* queue_;
    wl_registry* registry_;
};

// A surface that no one sees, on whichever display it is drawn to.
class HiddenSurface {
public:
    HiddenSurface(wl_display* display, void* eglDisplay, int width, int height) : eglDisplay_(eglDisplay) {
        wl_compositor* compositor = nullptr;
        static const wl_registry_listener listener = {
            [](void* data, wl_registry* registry, std::uint32_t name, const char* interface, std::uint32_t) {
                if (std::strcmp(interface, wl_compositor_interface.name) == 0)
                    *static_cast<wl_compositor**>(data) = static_cast<wl_compositor*>(
                        wl_registry_bind(registry, name, &wl_compositor_interface, 1));
            },
            [](void*, wl_registry*, std::uint32_t) {}};
        Registry registry(display, listener, &compositor);
        registry.roundTrip();
        if (!compositor)
            return;
        surface_ = wl_compositor_create_surface(compositor);
        // Off the queue that ends here.
        wl_proxy_set_queue(reinterpret_cast<wl_proxy*>(surface_), nullptr);
        wl_compositor_destroy(compositor);
        window_ = wl_egl_window_create(surface_, width, height);
    }
    HiddenSurface(const HiddenSurface&) = delete;
    HiddenSurface& operator=(const HiddenSurface&) = delete;
    ~HiddenSurface() {
        if (window_)
            wl_egl_window_destroy(window_);
        // A toolkit that ended EGL has closed its connection too.
        if (surface_ && isEglDisplayOpen(eglDisplay_))
            wl_surface_destroy(surface_);
    }

    wl_egl_window* window() const { return window_; }

private:
    void* eglDisplay_;
    wl_surface* surface_ = nullptr;
    wl_egl_window* window_ = nullptr;
};

struct WaylandWindow : NativeWindow {
    // A toolkit's surface; null for a hidden one.
    std::shared_ptr<wl_egl_window> window;
    void* display = nullptr; // EGLDisplay
};

// The outputs, as the compositor tells of them.
class Outputs {
public:
    explicit Outputs(wl_display* display) : registry_(display, registryListener, this) {}

    bool roundTrip() { return registry_.roundTrip(); }

    std::vector<Device> devices(const Connection* connection) {
        const std::lock_guard guard(lock_);
        std::vector<Device> list;
        for (const Output& output : outputs_)
            list.push_back({output.name.empty() ? "WL" + std::to_string(list.size()) : output.name,
                            {output.x, output.y, output.x + output.width, output.y + output.height},
                            false,
                            connection,
                            32});
        return list;
    }

private:
    struct Output {
        Outputs* owner;
        std::uint32_t global;
        wl_output* native;
        zxdg_output_v1* described = nullptr;
        std::string name{};
        std::int32_t x = 0, y = 0, width = 0, height = 0;
    };

    static Output& outputOf(void* data) { return *static_cast<Output*>(data); }

    void add(wl_registry* registry, std::uint32_t global, const char* interface, std::uint32_t version) {
        const std::lock_guard guard(lock_);
        if (std::strcmp(interface, wl_output_interface.name) == 0) {
            auto* native =
                static_cast<wl_output*>(wl_registry_bind(registry, global, &wl_output_interface, 1));
            outputs_.push_back({this, global, native});
            wl_output_add_listener(native, &outputListener, &outputs_.back());
        } else if (std::strcmp(interface, zxdg_output_manager_v1_interface.name) == 0) {
            manager_ = static_cast<zxdg_output_manager_v1*>(wl_registry_bind(
                registry, global, &zxdg_output_manager_v1_interface, std::min<std::uint32_t>(version, 2)));
        }
        // Whichever of the two comes first.
        for (Output& output : outputs_)
            if (manager_ && !output.described) {
                output.described = zxdg_output_manager_v1_get_xdg_output(manager_, output.native);
                zxdg_output_v1_add_listener(output.described, &describedListener, &output);
            }
    }

    void remove(std::uint32_t global) {
        const std::lock_guard guard(lock_);
        std::erase_if(outputs_, [&](const Output& output) {
            if (output.global != global)
                return false;
            if (output.described)
                zxdg_output_v1_destroy(output.described);
            wl_output_destroy(output.native);
            return true;
        });
    }

    template <class Change>
    static void change(void* data, Change change) {
        Output& output = outputOf(data);
        const std::lock_guard guard(output.owner->lock_);
        change(output);
    }

    static const wl_registry_listener registryListener;
    static const wl_output_listener outputListener;
    static const zxdg_output_v1_listener describedListener;

    std::mutex lock_;
    std::list<Output> outputs_;
    zxdg_output_manager_v1* manager_ = nullptr;
    Registry registry_;
};

const wl_registry_listener Outputs::registryListener = {
    [](void* data, wl_registry* registry, std::uint32_t global, const char* interface,
       std::uint32_t version) { static_cast<Outputs*>(data)->add(registry, global, interface, version); },
    [](void* data, wl_registry*, std::uint32_t global) { static_cast<Outputs*>(data)->remove(global); }};

// Without xdg-output: place and size in the pixels of the output.
const wl_output_listener Outputs::outputListener = {
    [](void* data, wl_output*, std::int32_t x, std::int32_t y, std::int32_t, std::int32_t, std::int32_t,
       const char*, const char*, std::int32_t) {
        change(data, [&](Output& output) {
            output.x = x;
            output.y = y;
        });
    },
    [](void* data, wl_output*, std::uint32_t flags, std::int32_t width, std::int32_t height, std::int32_t) {
        change(data, [&](Output& output) {
            if ((flags & WL_OUTPUT_MODE_CURRENT) && output.width == 0) {
                output.width = width;
                output.height = height;
            }
        });
    },
    nullptr,
    nullptr,
    nullptr,
    nullptr};

const zxdg_output_v1_listener Outputs::describedListener = {
    [](void* data, zxdg_output_v1*, std::int32_t x, std::int32_t y) {
        change(data, [&](Output& output) {
            output.x = x;
            output.y = y;
        });
    },
    [](void* data, zxdg_output_v1*, std::int32_t width, std::int32_t height) {
        change(data, [&](Output& output) {
            output.width = width;
            output.height = height;
        });
    },
    [](void*, zxdg_output_v1*) {},
    [](void* data, zxdg_output_v1*, const char* name) {
        change(data, [&](Output& output) { output.name = name; });
    },
    [](void*, zxdg_output_v1*, const char*) {}};

class Wayland : public WindowSystem {
public:
    Wayland(wl_display* display, Connection* connection) : connection_(connection), outputs_(display) {
        outputs_.roundTrip(); // the globals
        outputs_.roundTrip(); // what they are
    }

    std::vector<Device> devices() override {
        // One thread waits for the compositor, the others take the list as it is.
        if (const std::unique_lock asking(asking_, std::try_to_lock); asking && !outputs_.roundTrip())
            return fail(ERROR_GEN_FAILURE, lost), std::vector<Device>();
        return outputs_.devices(connection_);
    }

    std::shared_ptr<NativeWindow> create(const WindowShape&, const char*, bool, Connection*& connection,
                                         HWND&) override {
        connection = connection_;
        return std::make_shared<WaylandWindow>();
    }

    std::shared_ptr<NativeWindow> adoptSurface(void* display, void* surface, int width, int height,
                                               Connection*& connection) override {
        connection = connectionOf(static_cast<wl_display*>(display));
        if (!connection)
            return nullptr;
        auto window = std::make_shared<WaylandWindow>();
        window->display = connection->display;
        window->window = {wl_egl_window_create(static_cast<wl_surface*>(surface), width, height),
                          [](wl_egl_window* made) {
                              if (made)
                                  wl_egl_window_destroy(made);
                          }};
        if (!window->window)
            return fail(ERROR_INVALID_PARAMETER);
        return window;
    }

    // A client doesn't hear where its windows are.
    std::optional<WindowShape> geometry(const NativeWindow&, const WindowShape& known) override {
        return known;
    }

    bool move(NativeWindow& window, const WindowShape& shape) override {
        if (wl_egl_window* native = ofWayland(window).window.get())
            wl_egl_window_resize(native, shape.width, shape.height, 0, 0);
        return true;
    }

    void show(NativeWindow&, bool) override {}
    void destroy(NativeWindow&) override {}
    bool resizesBySurface(const NativeWindow& window) const override { return !isSeen(window); }
    // A swap of what is not shown waits for a frame that never comes.
    bool isSeen(const NativeWindow& window) const override { return ofWayland(window).window != nullptr; }
    bool drawsTo(const NativeWindow*, const Format& format) const override {
        return format.window && format.doubleBuffered;
    }

    Surface surfaceFor(const NativeWindow& window, const SurfacePlace& place) override {
        Surface surface = {
            .api = place.api, .display = place.display, .config = place.config, .window = true};
        wl_egl_window* native = ofWayland(window).window.get();
        if (native && place.display != ofWayland(window).display)
            return fail(ERROR_INVALID_OPERATION,
                        "A toolkit's surface can be drawn to on the toolkit's display alone."),
                   surface;
        if (native) {
            surface.beneath = ofWayland(window).window;
        } else {
            // A context that shares with a toolkit's, on a display that nobody has told of.
            surface.none = !place.nativeDisplay && place.api->drawsWithoutSurface(place.display);
            if (!place.nativeDisplay)
                return fail(ERROR_INVALID_OPERATION, "The Wayland display of the context is not known: "
                                                     "windowFromWayland() makes it known."),
                       surface;
            auto hidden = std::make_shared<HiddenSurface>(static_cast<wl_display*>(place.nativeDisplay),
                                                          place.display, place.width, place.height);
            native = hidden->window();
            surface.beneath = hidden;
        }
        if (!native)
            return fail(ERROR_GEN_FAILURE, lost), surface;
        surface.handle =
            place.api->windowSurface(place.display, place.config, reinterpret_cast<std::uintptr_t>(native));
        return surface;
    }

private:
    static const WaylandWindow& ofWayland(const NativeWindow& window) {
        return static_cast<const WaylandWindow&>(window);
    }

    // The EGL display is the toolkit's too: EGL has one for each connection.
    Connection* connectionOf(wl_display* display) {
        Records& all = records();
        std::unique_lock guard(all.lock);
        Connection* known = nullptr;
        for (Connection& connection : all.connections)
            if (connection.nativeDisplay == display)
                known = &connection;
        guard.unlock();
        if (known && keepOpen(*known))
            return known;
        if (known) {
            // Another connection at the address of one that the toolkit closed.
            guard.lock();
            known->nativeDisplay = nullptr;
            guard.unlock();
        }
        EglDisplayPlace place;
        place.platform = EGL_PLATFORM_WAYLAND_KHR;
        place.native = place.nativeDisplay = display;
        place.toolkits = true;
        place.shows = true;
        place.key = connection_->key;
        std::string why;
        Connection* made = openEglDisplay(place, why);
        if (!made)
            fail(ERROR_GEN_FAILURE, ("The toolkit's display can't be used: " + why + ".").c_str());
        return made;
    }

    Connection* connection_;
    std::mutex asking_;
    Outputs outputs_;
};

} // namespace

std::unique_ptr<WindowSystem> openWayland(std::string& note) {
    const char* name = std::getenv("WAYLAND_DISPLAY");
    const std::string session = name ? name : "wayland-0";
    wl_display* display = wl_display_connect(nullptr);
    if (!display) {
        note = "The Wayland compositor \"" + session + "\" that WAYLAND_DISPLAY names can't be reached.";
        return nullptr;
    }
    EglDisplayPlace place;
    place.platform = EGL_PLATFORM_WAYLAND_KHR;
    place.native = place.nativeDisplay = display;
    place.shows = true;
    place.key = "Wayland\\" + session;
    std::string why;
    if (Connection* connection = openEglDisplay(place, why))
        return std::make_unique<Wayland>(display, connection);
    note = "The Wayland compositor \"" + session + "\" can't be used: " + why +
           " (Debian: libegl1 and libegl-mesa0).";
    wl_display_disconnect(display);
    return nullptr;
}

} // namespace ZLT::Platform
