#pragma once

#include "intercept/Channel.h"

#include <string>
#include <vector>

namespace ZLT::Interception {

struct CheckOptions {
    Options channel;
    std::string sarif; ///< a file, or ""
    bool stack = false;
    bool exitCode = false;
};

/// `zlt_ogl check`: does not return, but ends as the program ended.
[[noreturn]] void check(const CheckOptions& options, const std::vector<std::string>& program);

} // namespace ZLT::Interception
