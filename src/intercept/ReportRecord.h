#pragma once

#include "extensionator/OpenGLErrorSinks.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace ZLT::Interception {

/// A report on its way to the command: its places are numbers yet.
struct ReportRecord {
    std::uint32_t number = 0;         ///< by which RecordKind::Again names it
    OGL::OpenGLErrorReport report;    ///< without file, line and stack
    std::uint32_t site = 0;           ///< of the call
    std::vector<std::uint32_t> stack; ///< of the callers, the call's own first
};

std::string encode(const ReportRecord& record);
/// @throws std::runtime_error for bytes that are no such record
ReportRecord decodeReport(std::string_view bytes);

} // namespace ZLT::Interception
