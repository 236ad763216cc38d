#include "capture/ProjectExporter.h"

#include "capture/exporting/ExportedState.h"

namespace ZLT::Capture {

ProjectExporter::ProjectExporter(CaptureFile& file, const ExportOptions& options)
    : export_(std::make_unique<ProjectExport>(file, options)) {}
ProjectExporter::~ProjectExporter() = default;

void ProjectExporter::startAt(std::uint64_t frame, const std::string& path, PlaySystem& system,
                              OGL::OpenGLInterceptor& gl,
                              const std::function<void(std::uint64_t)>& progress) {
    export_->startAt(frame, path, system, gl, progress);
}
bool ProjectExporter::exportFrame() { return export_->exportFrame(); }
void ProjectExporter::finish() { export_->finish(); }
const std::set<std::string>& ProjectExporter::missing() const { return export_->facts.missing; }
std::uint64_t ProjectExporter::frameCount() const { return export_->files.frameCount(); }
std::uint64_t ProjectExporter::callCount() const { return export_->facts.calls; }

} // namespace ZLT::Capture
