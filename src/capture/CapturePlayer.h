#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"
#include "capture/PlaySystem.h"
#include "extensionator/OpenGLInterceptor.h"

#include <cstdint>
#include <memory>

namespace ZLT::Capture {

struct CapturePlay;

/// Plays a capture: makes its contexts, and calls what was called, each thread's calls on a thread of its
/// own, in the order of the capture. Names and locations of the capture become those that GL gives now.
///
///     CaptureFile file("scene.zlt");
///     DriverCalls driver;
///     CapturePlayer player(file, system, driver, listener);
///     while (player.playFrame())
///         continue;
class ZLT_CAPTURE_API CapturePlayer {
public:
    using Options = PlayOptions;

    /// @param gl  what is called: an end of a chain, or a layer in front of one
    CapturePlayer(CaptureFile& file, PlaySystem& system, OGL::OpenGLInterceptor& gl, PlayListener& listener,
                  const Options& options);
    ~CapturePlayer();
    CapturePlayer(const CapturePlayer&) = delete;
    CapturePlayer& operator=(const CapturePlayer&) = delete;

    /// Plays up to the end of the next frame.
    /// @return false when no record was left
    /// @throws std::runtime_error where a context or a surface can't be made
    bool playFrame();
    std::uint64_t callCount() const;
    std::uint64_t frameCount() const;
    /// Read-backs and pictures that were compared.
    std::uint64_t comparedCount() const;

private:
    std::unique_ptr<CapturePlay> play_;
};

} // namespace ZLT::Capture
