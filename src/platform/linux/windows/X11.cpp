// Windows of an X server. Our requests are XCB's, each with its answer: an error comes to the one who asked,
// and the end of the server is an error like another. Xlib is there for the display that EGL's drivers know.

#include "platform/linux/apis/Egl.h"
#include "platform/linux/apis/XErrors.h"
#include "platform/linux/records/Errors.h"
#include "platform/linux/windows/WindowSystem.h"

#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <X11/Xlib-xcb.h>
#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <cstring>
#include <map>

namespace ZLT::Platform {

namespace {

// What XCB hands out is the caller's to free.
struct Free {
    void operator()(void* answer) const { std::free(answer); }
};
template <class Answer>
using Owned = std::unique_ptr<Answer, Free>;

template <class Reply, class Cookie>
Owned<Reply> answer(Reply* (*wait)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                    xcb_connection_t* server, Cookie cookie) {
    xcb_generic_error_t* error = nullptr;
    Owned<Reply> reply(wait(server, cookie, &error));
    const Owned<xcb_generic_error_t> freed(error);
    return reply;
}

struct XWindow : NativeWindow {
    xcb_window_t id = 0;
    std::uintptr_t visual = 0;
};

class X11 : public WindowSystem {
public:
    X11(Display* display, Connection* connection)
        : server_(XGetXCBConnection(display)), screen_(screenOf(server_, DefaultScreen(display))),
          connection_(connection) {
        const char names[][17] = {"WM_PROTOCOLS", "WM_DELETE_WINDOW"};
        xcb_prefetch_extension_data(server_, &xcb_randr_id);
        const auto protocols = xcb_intern_atom(server_, 0, std::strlen(names[0]), names[0]);
        const auto deletion = xcb_intern_atom(server_, 0, std::strlen(names[1]), names[1]);
        if (const auto atom = answer(xcb_intern_atom_reply, server_, protocols))
            protocols_ = atom->atom;
        if (const auto atom = answer(xcb_intern_atom_reply, server_, deletion))
            deletion_ = atom->atom;
        const xcb_query_extension_reply_t* randr = xcb_get_extension_data(server_, &xcb_randr_id);
        if (!randr || !randr->present)
            return;
        const auto version =
            answer(xcb_randr_query_version_reply, server_, xcb_randr_query_version(server_, 1, 5));
        hasMonitors_ = version && (version->major_version > 1 || version->minor_version >= 5);
    }

    std::vector<Device> devices() override {
        std::vector<Device> list;
        if (hasMonitors_)
            list = monitors();
        if (xcb_connection_has_error(server_))
            return fail(ERROR_GEN_FAILURE, lost), std::vector<Device>();
        if (list.empty())
            list.push_back({"screen",
                            {0, 0, screen_->width_in_pixels, screen_->height_in_pixels},
                            true,
                            connection_,
                            screen_->root_depth});
        return list;
    }

    std::shared_ptr<NativeWindow> create(const WindowShape& shape, const char* title, bool visible,
                                         Connection*& connection, HWND& handle) override {
        if (shape.width > 0xFFFF || shape.height > 0xFFFF)
            return fail(ERROR_INVALID_PARAMETER);
        auto window = std::make_shared<XWindow>();
        window->id = xcb_generate_id(server_);
        window->visual = screen_->root_visual;
        // No background, so that nothing is painted over what GL drew.
        const std::uint32_t values[] = {XCB_BACK_PIXMAP_NONE, 0};
        const auto created = xcb_create_window_checked(
            server_, XCB_COPY_FROM_PARENT, window->id, screen_->root, static_cast<std::int16_t>(shape.x),
            static_cast<std::int16_t>(shape.y), static_cast<std::uint16_t>(shape.width),
            static_cast<std::uint16_t>(shape.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, XCB_COPY_FROM_PARENT,
            XCB_CW_BACK_PIXMAP | XCB_CW_BORDER_PIXEL, values);
        // At this place and of this size (USPosition, USSize), whatever the window manager prefers.
        const std::uint32_t hints[18] = {1 | 2};
        xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window->id, XCB_ATOM_WM_NORMAL_HINTS,
                            XCB_ATOM_WM_SIZE_HINTS, 32, 18, hints);
        // A window that the user closes stays; without this its whole connection would go.
        xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window->id, protocols_, XCB_ATOM_ATOM, 32, 1,
                            &deletion_);
        if (title)
            xcb_change_property(server_, XCB_PROP_MODE_REPLACE, window->id, XCB_ATOM_WM_NAME, XCB_ATOM_STRING,
                                8, static_cast<std::uint32_t>(std::strlen(title)), title);
        if (visible)
            xcb_map_window(server_, window->id);
        const Owned<xcb_generic_error_t> error(xcb_request_check(server_, created));
        if (xcb_connection_has_error(server_))
            return fail(ERROR_GEN_FAILURE, lost);
        if (error)
            return fail(ERROR_GEN_FAILURE, "The X server refused to make the window.");
        connection = connection_;
        handle = reinterpret_cast<HWND>(std::uintptr_t(window->id)); // NOLINT(performance-no-int-to-ptr)
        return window;
    }

    std::shared_ptr<NativeWindow> adopt(HWND handle, Connection*& connection) override {
        const auto id = reinterpret_cast<std::uintptr_t>(handle);
        if (id == 0 || id > 0xFFFFFFFF)
            return fail(ERROR_INVALID_WINDOW_HANDLE);
        auto window = std::make_shared<XWindow>();
        window->id = static_cast<xcb_window_t>(id);
        const auto attributes =
            answer(xcb_get_window_attributes_reply, server_, xcb_get_window_attributes(server_, window->id));
        if (!attributes || attributes->_class != XCB_WINDOW_CLASS_INPUT_OUTPUT)
            return fail(ERROR_INVALID_WINDOW_HANDLE, xcb_connection_has_error(server_) ? lost : nullptr);
        window->visual = attributes->visual;
        const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY;
        xcb_change_window_attributes(server_, window->id, XCB_CW_EVENT_MASK, &events);
        connection = connection_;
        return window;
    }

    std::optional<WindowShape> geometry(const NativeWindow& window, const WindowShape&) override {
        const xcb_window_t id = xWindow(window).id;
        const auto size = xcb_get_geometry(server_, id);
        const auto place = xcb_translate_coordinates(server_, id, screen_->root, 0, 0);
        const auto sized = answer(xcb_get_geometry_reply, server_, size);
        const auto placed = answer(xcb_translate_coordinates_reply, server_, place);
        if (!sized || !placed)
            return fail(ERROR_INVALID_WINDOW_HANDLE, xcb_connection_has_error(server_) ? lost : nullptr),
                   std::nullopt;
        return WindowShape{placed->dst_x, placed->dst_y, sized->width, sized->height};
    }

    bool move(NativeWindow& window, const WindowShape& shape) override {
        const std::uint32_t values[] = {
            static_cast<std::uint32_t>(shape.x), static_cast<std::uint32_t>(shape.y),
            static_cast<std::uint32_t>(shape.width), static_cast<std::uint32_t>(shape.height)};
        const auto moved = xcb_configure_window_checked(
            server_, xWindow(window).id,
            XCB_CONFIG_WINDOW_X | XCB_CONFIG_WINDOW_Y | XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
            values);
        const Owned<xcb_generic_error_t> error(xcb_request_check(server_, moved));
        if (error || xcb_connection_has_error(server_))
            return fail(ERROR_INVALID_WINDOW_HANDLE);
        return true;
    }

    // The driver asks for the window's size on this connection too, so no request is waited for.
    void show(NativeWindow& window, bool visible) override {
        if (visible)
            xcb_map_window(server_, xWindow(window).id);
        else
            xcb_unmap_window(server_, xWindow(window).id);
        xcb_flush(server_);
    }

    void destroy(NativeWindow& window) override {
        xcb_destroy_window(server_, xWindow(window).id);
        xcb_flush(server_);
    }

    bool resizesBySurface(const NativeWindow&) const override { return false; }
    bool isSeen(const NativeWindow&) const override { return true; }

    bool drawsTo(const NativeWindow* window, const Format& format) const override {
        const std::uintptr_t visual = window ? xWindow(*window).visual : screen_->root_visual;
        return format.window && format.doubleBuffered && format.visual == visual;
    }

    Surface surfaceFor(const NativeWindow& window, const SurfacePlace& place) override {
        if (isLost())
            return {};
        return {.api = place.api,
                .display = place.display,
                .config = place.config,
                .window = true,
                .handle = place.api->windowSurface(place.display, place.config, xWindow(window).id)};
    }

    std::vector<HWND> takeDestroyed() override {
        std::vector<HWND> destroyed;
        while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(server_)})
            if ((event->response_type & 0x7F) == XCB_DESTROY_NOTIFY) {
                const auto* notice = reinterpret_cast<const xcb_destroy_notify_event_t*>(event.get());
                // NOLINTNEXTLINE(performance-no-int-to-ptr)
                destroyed.push_back(reinterpret_cast<HWND>(std::uintptr_t(notice->window)));
            }
        return destroyed;
    }

    bool isLost() override {
        if (!xcb_connection_has_error(server_))
            return false;
        fail(ERROR_GEN_FAILURE, lost);
        return true;
    }

    void flush() override { xcb_flush(server_); }

private:
    static constexpr const char* lost = "The connection to the X server is lost.";

    static const XWindow& xWindow(const NativeWindow& window) { return static_cast<const XWindow&>(window); }

    static xcb_screen_t* screenOf(xcb_connection_t* server, int number) {
        auto screens = xcb_setup_roots_iterator(xcb_get_setup(server));
        for (; number > 0 && screens.rem > 1; --number)
            xcb_screen_next(&screens);
        return screens.data;
    }

    std::vector<Device> monitors() {
        const auto reply =
            answer(xcb_randr_get_monitors_reply, server_, xcb_randr_get_monitors(server_, screen_->root, 1));
        if (!reply)
            return {};
        std::vector<xcb_randr_monitor_info_t> found;
        for (auto all = xcb_randr_get_monitors_monitors_iterator(reply.get()); all.rem > 0;
             xcb_randr_monitor_info_next(&all))
            found.push_back(*all.data);
        std::vector<Device> list;
        const std::vector<std::string> names = namesOf(found);
        for (std::size_t i = 0; i < found.size(); ++i) {
            const LONG left = found[i].x;
            const LONG top = found[i].y;
            list.push_back({names[i],
                            {left, top, left + found[i].width, top + found[i].height},
                            found[i].primary != 0,
                            connection_,
                            screen_->root_depth});
        }
        return list;
    }

    // An atom's name never changes, so the server is asked for each once.
    std::vector<std::string> namesOf(const std::vector<xcb_randr_monitor_info_t>& monitors) {
        std::unique_lock guard(namesLock_);
        std::map<xcb_atom_t, std::string> known = names_;
        guard.unlock();
        std::map<xcb_atom_t, xcb_get_atom_name_cookie_t> asked;
        for (const auto& monitor : monitors)
            if (!known.contains(monitor.name) && !asked.contains(monitor.name))
                asked[monitor.name] = xcb_get_atom_name(server_, monitor.name);
        for (const auto& [atom, cookie] : asked)
            if (const auto reply = answer(xcb_get_atom_name_reply, server_, cookie))
                known[atom].assign(xcb_get_atom_name_name(reply.get()),
                                   static_cast<std::size_t>(xcb_get_atom_name_name_length(reply.get())));
        std::vector<std::string> names;
        names.reserve(monitors.size());
        for (const auto& monitor : monitors)
            names.push_back(known[monitor.name]);
        guard.lock();
        names_.merge(known);
        return names;
    }

    xcb_connection_t* server_;
    xcb_screen_t* screen_;
    Connection* connection_;
    bool hasMonitors_ = false;
    xcb_atom_t protocols_ = XCB_ATOM_NONE;
    xcb_atom_t deletion_ = XCB_ATOM_NONE;
    std::mutex namesLock_;
    std::map<xcb_atom_t, std::string> names_;
};

} // namespace

std::unique_ptr<WindowSystem> openX11(std::string& note) {
    XInitThreads();
    Display* display = XOpenDisplay(nullptr);
    if (!display) {
        note = "The X server \"" + std::string(XDisplayName(nullptr)) +
               "\" that DISPLAY names can't be reached.";
        return nullptr;
    }
    XSetEventQueueOwner(display, XCBOwnsEventQueue);
    keepErrorsFromProgram(display);
    EglDisplayPlace place;
    place.platform = EGL_PLATFORM_X11_KHR;
    place.native = display;
    place.shows = true;
    place.key = "X11\\" + std::string(DisplayString(display));
    std::string why;
    if (Connection* connection = openEglDisplay(place, why))
        return std::make_unique<X11>(display, connection);
    note = "The X server \"" + std::string(DisplayString(display)) + "\" can't be used: " + why +
           " (Debian: libegl1 and libegl-mesa0).";
    XCloseDisplay(display);
    return nullptr;
}

} // namespace ZLT::Platform
