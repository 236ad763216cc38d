#pragma once

#include "Frames.h"

#include <string>

namespace ZLT::Interception {

struct DumpOptions {
    std::string file;
    Frames frames, calls;
    bool isJson = false;
};

/// `zlt_ogl dump`: writes to standard output.
/// @return the exit status: 1 where the file is damaged
int dump(const DumpOptions& options);

} // namespace ZLT::Interception
