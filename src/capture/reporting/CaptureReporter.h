#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"
#include "capture/PlaySystem.h"
#include "capture/reporting/Report.h"
#include "capture/reporting/ReportOptions.h"
#include "extensionator/OpenGLInterceptor.h"

#include <cstdint>
#include <memory>

namespace ZLT::Capture {

struct ReportState;

/// Plays a capture, looks at each call, and says what there is to see.
///
///     CaptureFile file("scene.zlt");
///     DriverCalls driver;
///     PlatformPlaySystem system(false, driver);
///     CaptureReporter reporter(file, system, driver, {});
///     while (reporter.playFrame())
///         continue;
///     const Report report = reporter.finish();
class ZLT_CAPTURE_API CaptureReporter {
public:
    /// @param gl  as for a CapturePlayer; no layer that looks for errors, since the reporter does
    CaptureReporter(CaptureFile& file, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                    const ReportOptions& options);
    ~CaptureReporter();
    CaptureReporter(const CaptureReporter&) = delete;
    CaptureReporter& operator=(const CaptureReporter&) = delete;

    /// Plays up to the end of the next frame.
    /// @return false when no record was left
    /// @throws std::runtime_error where a context or a surface can't be made
    bool playFrame();
    std::uint64_t frameCount() const;
    /// After the last frame.
    Report finish();

private:
    std::unique_ptr<ReportState> state_;
};

} // namespace ZLT::Capture
