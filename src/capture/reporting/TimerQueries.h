#pragma once

#include "capture/CapturedContext.h"
#include "platform/GL.h"

#include <cstdint>
#include <optional>
#include <vector>

/// @file
/// The time on the graphics processor.

namespace ZLT::Capture::Reporting {

/// Time stamps that the graphics processor writes when it comes there. Stamps are numbers in one list for all
/// contexts, whose clock is the same.
class TimerQueries {
public:
    using Stamp = std::optional<std::size_t>;

    /// Of the current context.
    void learn(const CapturedContext& context);
    /// Outside of glBegin and glEnd. Nothing where the driver has no such queries.
    /// @param isBegin  what comes after it is measured
    Stamp stamp(std::vector<std::optional<std::uint64_t>>& times, bool isBegin);
    /// Waits for all stamps of the context, which is current.
    void resolve(std::vector<std::optional<std::uint64_t>>& times);

private:
    struct Pending {
        GLuint query;
        std::size_t stamp;
    };
    void read(const Pending& one, std::vector<std::optional<std::uint64_t>>& times);

    PFNGLGENQUERIESPROC genQueries_ = nullptr;
    PFNGLQUERYCOUNTERPROC queryCounter_ = nullptr;
    PFNGLGETQUERYOBJECTUI64VPROC getQueryObjectui64v_ = nullptr;
    std::vector<GLuint> free_;
    std::vector<Pending> pending_;
};

} // namespace ZLT::Capture::Reporting
