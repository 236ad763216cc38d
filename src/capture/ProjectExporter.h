#pragma once

#include "capture/CaptureFile.h"
#include "capture/Export.h"

#include <cstdint>
#include <memory>
#include <string>

namespace ZLT::Capture {

struct ProjectExport;

/// What of a capture becomes a project.
struct ExportOptions {
    std::string folder;  ///< empty, new, or of an earlier project
    std::string name;    ///< of the program: letters, digits, - and _
    std::string capture; ///< what the project calls the capture: its file's name
    std::uint64_t lastFrame = UINT64_MAX;
};

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

    /// Up to the end of the next frame.
    /// @return false when no record was left, or the last frame was written
    bool exportFrame();
    /// Writes all that is not written yet.
    void finish();

    std::uint64_t frameCount() const;
    std::uint64_t callCount() const;

private:
    std::unique_ptr<ProjectExport> export_;
};

} // namespace ZLT::Capture
