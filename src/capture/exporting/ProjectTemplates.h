#pragma once

#include <span>

namespace ZLT::Capture {

/// A file that every exported project has.
struct ProjectTemplate {
    const char* name; ///< in the project
    const char* text;
    bool isFilled; ///< words like @NAME@ are replaced
};
/// Those of the folder exported/, and two headers of other libraries, which they include.
std::span<const ProjectTemplate> projectTemplates();

} // namespace ZLT::Capture
