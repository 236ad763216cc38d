#pragma once

#include "platform/linux/records/Records.h"

namespace ZLT::Platform {

/// What is current on a thread, in the words of EGL or GLX.
struct Native {
    const Api* api = nullptr;
    void* display = nullptr;
    void* context = nullptr; // null: nothing is current
    std::uintptr_t draw = 0;
    std::uintptr_t read = 0;

    bool operator==(const Native&) const = default;
};

/// The API that contexts and surfaces come from. What fails has left its error for GetLastError() when it
/// returns, so that nothing which is called afterwards can take it away. Called without the lock of the
/// records.
class Api {
public:
    Api() = default;
    Api(const Api&) = delete;
    Api& operator=(const Api&) = delete;

    virtual Native current() const = 0;
    /// The other API must have nothing current.
    virtual bool makeCurrent(const Native& wanted) const = 0;
    /// Leaves the thread without a context of this API, whoever made it.
    virtual bool release() const = 0;

    /// @param attributes  in EGL's terms, EGL_NONE at the end
    virtual void* createContext(void* display, void* config, void* share,
                                const std::vector<int>& attributes) const = 0;
    virtual void destroyContext(void* display, void* context) const = 0;

    /// @param window  an XID, or a wl_egl_window
    virtual std::uintptr_t windowSurface(void* display, void* config, std::uintptr_t window) const = 0;
    /// @param largest  the largest one there is, if there is none of this size
    virtual std::uintptr_t pbuffer(void* display, void* config, int width, int height,
                                   bool largest) const = 0;
    /// Whether a context can be current without a surface, for framebuffer objects alone.
    virtual bool drawsWithoutSurface(void* display) const = 0;
    /// Whether it is still there: its display may have been terminated, and opened again.
    virtual bool knows(const Surface& surface) const = 0;
    virtual void destroySurface(const Surface& surface) const = 0;
    virtual bool swap(void* display, std::uintptr_t surface) const = 0;
    /// Of the drawable that is current on the thread.
    virtual bool setSwapInterval(int interval) const = 0;

    /// The one format of somebody else's context and drawable; an empty one when they are gone.
    virtual Format formatOf(void* display, void* context, std::uintptr_t drawable) const = 0;
    /// The configuration nearest to the format on the display of a context, or null.
    virtual void* configFor(void* display, void* context, const Format& wanted) const = 0;

protected:
    ~Api() = default;
};

const Api& egl();
const Api& glx();

/// What is current on the calling thread, of either API.
Native currentNative();
/// Makes it current, of whichever API it is: a thread can't have contexts of both current.
bool makeNativeCurrent(const Native& wanted);
/// Leaves the thread with no context of EGL or GLX, whoever made it.
bool releaseNative();

/// The configuration nearest to the wanted format, or null.
/// @param read  the format of a configuration
template <class Config, class Read>
Config nearestConfig(const std::vector<Config>& configs, const Format& wanted, Read read) {
    Config best = nullptr;
    int least = -1;
    for (const Config config : configs) {
        const Format format = read(config);
        const int more = excess(format, wanted);
        if (more >= 0 && (least < 0 || more < least) && servesFor(format, wanted)) {
            least = more;
            best = config;
        }
    }
    return best;
}

} // namespace ZLT::Platform
