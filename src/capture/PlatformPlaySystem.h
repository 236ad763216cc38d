#pragma once

#include "capture/DriverCalls.h"
#include "capture/Export.h"
#include "capture/PlaySystem.h"

#include <map>
#include <memory>
#include <vector>

namespace ZLT::Capture {

/// Makes a player's contexts and surfaces by the platform layer: windows where there is a window system, and
/// pbuffers where there is none (see platform/Platform.h). The library is initialised.
class ZLT_CAPTURE_API PlatformPlaySystem : public PlaySystem {
public:
    /// @param isShown  the windows are shown
    /// @param driver   is told when a thread's context changes
    PlatformPlaySystem(bool isShown, DriverCalls& driver);
    ~PlatformPlaySystem() override;

    void* makeSurface(const SurfaceShape& shape) override;
    void* makeContext(const ContextShape& shape, void* like, void* share) override;
    void makeCurrent(void* draw, void* read, void* context) override;
    void destroyContext(void* context) override;
    void resize(void* surface, int width, int height) override;
    void swap(void* surface) override;
    bool hasOneBuffer(void* surface) override;

private:
    struct Window;
    std::vector<std::unique_ptr<Window>> windows_;
    std::vector<void*> contexts_;
    std::map<void*, int> formats_; ///< of the contexts
    bool isShown_;
    DriverCalls* driver_;
};

} // namespace ZLT::Capture
