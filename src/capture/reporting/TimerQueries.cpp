#include "capture/reporting/TimerQueries.h"

#include "capture/FindFunction.h"

namespace ZLT::Capture::Reporting {

void TimerQueries::learn(const CapturedContext& context) {
    if (!context.isVersion(3, 3) && !context.has("GL_ARB_timer_query"))
        return;
    PFNGLGETQUERYIVPROC getQueryiv = nullptr;
    findFunction(getQueryiv, "glGetQueryiv");
    GLint bits = 0;
    if (getQueryiv)
        getQueryiv(GL_TIMESTAMP, GL_QUERY_COUNTER_BITS, &bits);
    if (bits == 0)
        return; // it has the functions, and no clock
    findFunction(genQueries_, "glGenQueries");
    findFunction(queryCounter_, "glQueryCounter");
    findFunction(getQueryObjectui64v_, "glGetQueryObjectui64v");
}

TimerQueries::Stamp TimerQueries::stamp(std::vector<std::optional<std::uint64_t>>& times, bool isBegin) {
    if (!genQueries_ || !queryCounter_ || !getQueryObjectui64v_)
        return std::nullopt;
    // Names that the program makes up may be these later; a pool that is made at once keeps out of its way.
    constexpr std::size_t pool = 512;
    if (pending_.size() >= pool / 2) {
        // The older half is done by now.
        const std::size_t half = pending_.size() / 2;
        for (std::size_t i = 0; i < half; ++i)
            read(pending_[i], times);
        pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(half));
    }
    if (free_.empty() && pending_.empty()) {
        free_.resize(pool);
        genQueries_(pool, free_.data());
    }
    const GLuint query = free_.back();
    free_.pop_back();
    queryCounter_(query, GL_TIMESTAMP);
    // A driver that draws tile by tile, as Mesa's for the processor, takes a stamp with each tile: of two in
    // one batch the difference is the time of the last tile.
    if (isBegin)
        glFlush();
    pending_.push_back({query, times.size()});
    times.emplace_back();
    return times.size() - 1;
}

void TimerQueries::read(const Pending& one, std::vector<std::optional<std::uint64_t>>& times) {
    GLuint64 time = 0;
    getQueryObjectui64v_(one.query, GL_QUERY_RESULT, &time);
    times[one.stamp] = time;
    free_.push_back(one.query);
}

void TimerQueries::resolve(std::vector<std::optional<std::uint64_t>>& times) {
    for (const Pending& one : pending_)
        read(one, times);
    pending_.clear();
}

} // namespace ZLT::Capture::Reporting
