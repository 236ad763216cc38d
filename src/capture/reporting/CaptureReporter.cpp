#include "capture/reporting/CaptureReporter.h"

#include "capture/reporting/ReportState.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Reporting;

ReportState::ReportState(CaptureFile& from, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                         const ReportOptions& how)
    : file(from), options(how), play(from, system, gl, *this, {false, true}) {
    report.info = from.info();
    texts_.emplace("", 0);
}

ReportState::ContextFacts* ReportState::contextOf(std::uint32_t thread) {
    const auto number = play.current.find(thread);
    if (number == play.current.end() || number->second == 0)
        return nullptr;
    const auto found = contexts.find(number->second);
    return found == contexts.end() ? nullptr : &found->second;
}

void ReportState::incomplete(const std::string& what) { leaveOut("The capture lacks " + what + "."); }

void ReportState::addUnchanged() {
    for (auto& [place, costs] : stateSites_) {
        if (costs.row.count == 0)
            continue;
        costs.row.site = place.first;
        costs.row.function = place.second;
        costs.row.of = costs.of;
        report.unchanged.push_back(std::move(costs.row));
    }
    std::ranges::sort(report.unchanged, std::greater(), &ReportedUnchanged::count);
}

void ReportState::addStalls() {
    for (const auto& [place, costs] : stalls_)
        report.stalls.push_back({place.first, place.second, factsOf(*functionOf(place.second)).stall,
                                 costs.count, costs.time, costs.bytes, costs.frames});
    std::ranges::sort(report.stalls, std::greater(), &ReportedStall::time);
}

void ReportState::addHabits() {
    const auto frames = static_cast<double>(std::max<std::size_t>(report.frames.size(), 1));
    for (const auto& [title, costs] : habits_) {
        const HabitRow& row = habitNamed(title);
        ReportedHabit habit{title, row.why, row.unit, 0, 0, 0, 0, 0};
        std::uint64_t most = 0;
        for (const auto& [place, its] : costs.places) {
            habit.count += its.count;
            habit.time += its.time;
            if (its.bytes < most || (its.bytes == most && habit.function != 0))
                continue;
            most = its.bytes;
            habit.site = place.first;
            habit.function = place.second;
        }
        habit.value =
            static_cast<double>(costs.amount) /
            (row.afterFirst ? static_cast<double>(std::max<std::uint64_t>(laterFrames_, 1)) : frames);
        double measure = habit.value;
        if (title == "Small draws") {
            habit.value = static_cast<double>(smallVertices_) / static_cast<double>(smallDraws_);
            measure = static_cast<double>(smallDraws_) / frames;
        }
        if (measure >= row.least)
            report.habits.push_back(std::move(habit));
    }
    if (report.changes > 0) {
        const HabitRow& row = habitNamed("State is set to what it is");
        const double share =
            100.0 * static_cast<double>(report.unchangedCount) / static_cast<double>(report.changes);
        if (share >= row.least && !report.unchanged.empty()) {
            ReportedHabit habit{row.title,
                                row.why,
                                row.unit,
                                share,
                                report.unchanged.front().site,
                                report.unchanged.front().function,
                                report.unchangedCount,
                                0};
            for (const ReportedUnchanged& one : report.unchanged)
                habit.time += one.time;
            report.habits.push_back(std::move(habit));
        }
    }
    std::ranges::sort(report.habits, std::greater(), &ReportedHabit::time);
}

std::string ReportState::encoded(const Picture& picture, bool hasAlpha) {
    std::string url;
    if (pictureBytes_ < options.mostPictureBytes)
        url = options.encode(picture, hasAlpha);
    picturesLeft_ += url.empty();
    pictureBytes_ += url.size();
    return url;
}

Report ReportState::finish() {
    const std::string when = isEnded_ ? "when the program ended" : "when the capture ended";
    for (auto& [number, context] : contexts)
        if (context.isAlive)
            close(context, when);
    if (frame.calls > 0) {
        report.isLastUnfinished = true;
        report.frames.push_back(std::move(frame));
    }
    if (options.encode && !report.overview.pixels.empty())
        report.overviewPicture = options.encode(report.overview, false);
    addGpuTimes();
    addUnchanged();
    addStalls();
    addHabits();
    report.threads = callingThreads.size();
    report.texts.resize(texts_.size());
    for (const auto& [text, number] : texts_)
        report.texts[number] = text;
    report.sites = file.sites();
    if (pictureStep_ > 1)
        leaveOut("Of " + std::to_string(report.frames.size()) + " frames " + std::to_string(pictures_) +
                 " have pictures.");
    if (picturesLeft_ > 0)
        leaveOut(std::to_string(picturesLeft_) +
                 " more pictures of textures or frames would make the page too large.");
    if (!file.damage().empty())
        leaveOut("The capture is damaged: " + file.damage() + ".");
    report.leftOut.assign(leftOut_.begin(), leftOut_.end());
    return std::move(report);
}

CaptureReporter::CaptureReporter(CaptureFile& file, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                                 const ReportOptions& options)
    : state_(std::make_unique<ReportState>(file, system, gl, options)) {}
CaptureReporter::~CaptureReporter() = default;

bool CaptureReporter::playFrame() { return state_->play.playFrame(); }
std::uint64_t CaptureReporter::frameCount() const { return state_->play.frames; }
Report CaptureReporter::finish() { return state_->finish(); }

} // namespace ZLT::Capture
