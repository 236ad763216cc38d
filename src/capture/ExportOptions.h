#pragma once

#include <cstdint>
#include <string>

namespace ZLT::Capture {

/// What of a capture becomes a project.
struct ExportOptions {
    std::string folder;  ///< empty, new, or of an earlier project
    std::string name;    ///< of the program: letters, digits, - and _
    std::string capture; ///< what the project calls the capture: its file's name
    std::uint64_t lastFrame = UINT64_MAX;
};

} // namespace ZLT::Capture
