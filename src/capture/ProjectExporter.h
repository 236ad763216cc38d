#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"
#include "capture/ExportOptions.h"
#include "capture/PlaySystem.h"
#include "extensionator/OpenGLInterceptor.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <set>
#include <string>

namespace ZLT::Capture {

struct ProjectExport;

/// Writes a capture as a C++ project, which makes the same calls, and needs GLFW and nothing of this library.
///
///     CaptureFile file("scene.zlt");
///     ProjectExporter exporter(file, {"scene_project", "scene", "scene.zlt"});
///     while (exporter.exportFrame())
///         continue;
///     exporter.finish();
class ZLT_CAPTURE_API ProjectExporter {
public:
    /// @throws std::runtime_error, with a sentence, when the folder can't be written, or has other files in
    /// it
    ProjectExporter(CaptureFile& file, const ExportOptions& options);
    ~ProjectExporter();
    ProjectExporter(const ProjectExporter&) = delete;
    ProjectExporter& operator=(const ProjectExporter&) = delete;

    /// Begins the project with this frame: with the objects and the state that there were in front of it. For
    /// that the frames in front of it are played. To be called first.
    /// @param path      of the capture, which is read once more
    /// @param progress  is told of each frame that was played
    /// @throws std::runtime_error when the capture has no such frame, or can't be played
    void startAt(std::uint64_t frame, const std::string& path, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                 const std::function<void(std::uint64_t)>& progress);
    /// Up to the end of the next frame.
    /// @return false when no record was left, or the last frame was written
    bool exportFrame();
    /// Writes all that is not written yet.
    void finish();

    /// What the project lacks, as sentences.
    const std::set<std::string>& missing() const;
    std::uint64_t frameCount() const;
    std::uint64_t callCount() const;

private:
    std::unique_ptr<ProjectExport> export_;
};

} // namespace ZLT::Capture
