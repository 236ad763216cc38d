#pragma once

#include "capture/reporting/Report.h"

#include <string>

namespace ZLT::Interception {

/// The report as docs/report-format.md describes it. Of a report that would be larger than `most` bytes the
/// details of the frames that took least are left out.
std::string reportJson(const Capture::Report& report, const std::string& file, std::size_t most);

/// The times of the report for the viewers of Chrome's traces.
std::string chromeTrace(const Capture::Report& report, const std::string& file);

} // namespace ZLT::Interception
