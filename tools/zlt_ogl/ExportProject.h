#pragma once

#include "Frames.h"

#include <string>

namespace ZLT::Interception {

struct ExportOptions {
    std::string file, folder, name;
    Frames frames;
};

/// Writes a capture as a C++ project.
/// @return the exit status
int exportProject(const ExportOptions& options);

} // namespace ZLT::Interception
