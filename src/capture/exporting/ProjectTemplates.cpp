#include "capture/exporting/ProjectTemplates.h"

namespace ZLT::Capture {

namespace {
#include "capture/ProjectTemplates.inl"
} // namespace

std::span<const ProjectTemplate> projectTemplates() { return templates; }

} // namespace ZLT::Capture
