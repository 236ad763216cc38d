#pragma once

#include "capture/CapturedContext.h"

#include <string>
#include <vector>

/// @file
/// What the driver says of an error, by `GL_KHR_debug` or `GL_ARB_debug_output`.

namespace ZLT::Capture::Reporting {

/// Has the messages of the current context come here, where it has any.
void listenToDriver(const CapturedContext& context);
/// What the calling thread's driver said of errors since the last time.
std::vector<std::string> takeSentences();

} // namespace ZLT::Capture::Reporting
