#pragma once

#include "Channels.h"
#include "Progress.h"

#include <string>

namespace ZLT::Interception {

/// What is said of all watched programs at the end: calls, contexts, threads, frames, and what was not seen.
/// A line each, without the errors.
std::string summaryOf(const ChannelReader& channel, const std::string& program, bool isScript);

/// The functions that were called and not looked at: "glFoo (1 call), glBar (2 calls)"; empty for none.
std::string laterCallsOf(const ChannelReader& channel);

} // namespace ZLT::Interception
