#pragma once

#include "intercept/Channel.h"

#include <string>
#include <vector>

namespace ZLT::Interception {

struct TraceOptions {
    Options channel;
    std::string output; ///< a file; "" for standard error
};

/// `zlt_ogl trace`: does not return, but ends as the program ended.
[[noreturn]] void trace(const TraceOptions& options, const std::vector<std::string>& program);

} // namespace ZLT::Interception
