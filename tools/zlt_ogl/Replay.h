#pragma once

#include "Frames.h"

#include <string>

namespace ZLT::Interception {

struct ReplayOptions {
    std::string file;
    bool verifies = false;
    std::string pictures; ///< a folder for pictures; "" for none
    Frames frames;        ///< of which there are pictures; the last one is the last that is played
    unsigned int times = 1;
    bool isShown = false;
};

/// `zlt_ogl replay`.
/// @return the exit status: 1 where something differs, or the file is damaged
int replay(const ReplayOptions& options);

} // namespace ZLT::Interception
