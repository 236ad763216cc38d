#pragma once

#include "capture/Picture.h"

#include <cstdint>
#include <functional>
#include <string>

namespace ZLT::Capture {

/// How a report is made.
struct ReportOptions {
    /// Makes a picture a data URL. Nothing: the report has no pictures.
    std::function<std::string(const Picture&, bool hasAlpha)> encode;
    std::uint64_t mostPictures = 300;            ///< of frames
    std::uint64_t mostPictureBytes = 20'000'000; ///< of the data URLs of frames and textures
    std::uint64_t longCall = 100'000; ///< nanoseconds from which a call is one of Report::longCalls
    std::uint64_t mostLongCalls = 50'000;
};

} // namespace ZLT::Capture
