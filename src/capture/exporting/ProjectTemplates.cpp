#include "capture/exporting/ProjectTemplates.h"

namespace ZLT::Capture {

namespace {
using EmbeddedFile = ProjectTemplate;
#include "capture/ProjectTemplates.inl"
} // namespace

std::span<const ProjectTemplate> projectTemplates() { return embeddedFiles; }

} // namespace ZLT::Capture
