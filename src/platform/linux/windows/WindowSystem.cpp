#include "platform/linux/windows/WindowSystem.h"

#include "platform/linux/records/Errors.h"

#include <cstdlib>
#include <string_view>

namespace ZLT::Platform {

namespace {

struct Row {
    const char* name;     // in ZLT_OGL_PLATFORM
    const char* variable; // set where there is a server of this kind; null: needs none
    OpenWindowSystem open;
};

// In the order in which they are tried.
constexpr Row rows[] = {
    {"x11", "DISPLAY", openX11},
    {"wayland", "WAYLAND_DISPLAY", openWayland},
    {"headless", nullptr, openHeadless},
};

std::string variable(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

// When none can be used: no display device, and no window can be made.
class NoWindows : public WindowSystem {
public:
    std::vector<Device> devices() override { return none(), std::vector<Device>(); }
    std::shared_ptr<NativeWindow> create(const WindowShape&, const char*, bool, Connection*&,
                                         HWND&) override {
        return none();
    }
    std::optional<WindowShape> geometry(const NativeWindow&, const WindowShape&) override { return {}; }
    bool move(NativeWindow&, const WindowShape&) override { return false; }
    void show(NativeWindow&, bool) override {}
    void destroy(NativeWindow&) override {}
    bool resizesBySurface(const NativeWindow&) const override { return false; }
    bool isSeen(const NativeWindow&) const override { return false; }
    bool drawsTo(const NativeWindow*, const Format&) const override { return false; }
    Surface surfaceFor(const NativeWindow&, const SurfacePlace&) override { return {}; }

private:
    static Failure none() {
        return fail(ERROR_GEN_FAILURE, "No window system and no driver could be used: see startupNotes().");
    }
};

std::string allowedNames() {
    std::string names;
    for (const Row& row : rows)
        names += (names.empty() ? "" : &row == std::end(rows) - 1 ? " or " : ", ") + std::string(row.name);
    return names;
}

std::unique_ptr<WindowSystem> choose(std::string& notes) {
    const std::string forced = variable("ZLT_OGL_PLATFORM");
    bool known = forced.empty();
    for (const Row& row : rows) {
        known = known || forced == row.name;
        if (forced.empty() ? row.variable && variable(row.variable).empty() : forced != row.name)
            continue;
        std::string note;
        if (auto opened = row.open(note))
            return opened;
        notes += note;
        if (!forced.empty())
            notes.append(" ZLT_OGL_PLATFORM=").append(forced).append(" allows nothing else.");
        notes += '\n';
    }
    if (!known)
        notes += "ZLT_OGL_PLATFORM is \"" + forced + "\", but must be " + allowedNames() + ".\n";
    return std::make_unique<NoWindows>();
}

} // namespace

std::shared_ptr<NativeWindow> WindowSystem::adopt(HWND, Connection*&) {
    return fail(ERROR_INVALID_WINDOW_HANDLE);
}

std::shared_ptr<NativeWindow> WindowSystem::adoptSurface(void*, void*, int, int, Connection*&) {
    return fail(ERROR_NOT_SUPPORTED, "The window system in use is not Wayland: ZLT_OGL_PLATFORM=wayland "
                                     "chooses it where DISPLAY is set too.");
}

WindowSystem& windowSystem() {
    // Never destroyed: handles outlive static objects.
    static WindowSystem& only = *[] {
        std::string notes;
        std::unique_ptr<WindowSystem> chosen = choose(notes);
        Records& all = records();
        const std::lock_guard guard(all.lock);
        all.notes = notes;
        return chosen.release();
    }();
    return only;
}

std::string startupNotes() {
    windowSystem();
    Records& all = records();
    const std::lock_guard guard(all.lock);
    return all.notes;
}

} // namespace ZLT::Platform
