#pragma once

#include "intercept/Channel.h"

#include <string>
#include <vector>

namespace ZLT::Interception {

struct CaptureOptions {
    Options channel;
    std::string output; ///< a file; "" for one with the program's name
};

/// `zlt_ogl capture`: does not return, but ends as the program ended, or with 0 where it was ended after the
/// frames that were wanted.
[[noreturn]] void capture(const CaptureOptions& options, const std::vector<std::string>& program);

} // namespace ZLT::Interception
