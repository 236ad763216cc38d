// Frames, debug groups, and when they were.

#include "capture/reporting/DriverSentences.h"
#include "capture/reporting/ReportState.h"
#include "capture/reporting/Shrink.h"

#include <algorithm>

namespace ZLT::Capture {

using namespace Reporting;

namespace {

constexpr int thumbnailSize = 224, overviewSize = 720;
constexpr std::size_t mostSpans = 200'000;
constexpr std::size_t deepestGroup = 64, longestGroup = 200; // KHR_debug asks for no deeper ones

bool isOneColor(const Picture& picture) {
    for (std::size_t i = 4; i + 4 <= picture.pixels.size(); i += 4)
        if (!std::equal(picture.pixels.begin(), picture.pixels.begin() + 4,
                        picture.pixels.begin() + static_cast<std::ptrdiff_t>(i)))
            return false;
    return true;
}

} // namespace

std::uint64_t ReportState::now() const {
    return static_cast<std::uint64_t>((std::chrono::steady_clock::now() - begin_).count());
}

void ReportState::learnContext(ContextFacts& context) {
    context.isLearnt = true;
    const CapturedContext& facts = playedContext(context.number).facts;
    listenToDriver(facts);
    context.timers.learn(facts);
    const auto textOf = [](unsigned int name) {
        const auto* const text = reinterpret_cast<const char*>(glGetString(name));
        return std::string(text ? text : "");
    };
    if (report.replay.empty())
        report.replay = textOf(GL_RENDERER) + ", " + textOf(GL_VERSION);
}

void ReportState::frameEnding(std::uint64_t number, const std::function<bool(Picture&)>& read) {
    if (!options.encode || ((number - 1) % pictureStep_ != 0 && number != file.frameCount()))
        return;
    Picture picture;
    if (!read(picture))
        return;
    frame.width = picture.width;
    frame.height = picture.height;
    frame.picture = encoded(shrunk(picture, thumbnailSize), false);
    if (report.overview.pixels.empty() || !isOneColor(picture))
        report.overview = shrunk(picture, overviewSize);
    if (frame.picture.empty() || ++pictures_ <= options.mostPictures)
        return;
    // Every second one goes.
    pictureStep_ *= 2;
    for (std::size_t i = 0; i < report.frames.size(); ++i)
        if (i % pictureStep_ != 0 && !report.frames[i].picture.empty()) {
            pictureBytes_ -= report.frames[i].picture.size();
            report.frames[i].picture.clear();
            --pictures_;
        }
}

bool ReportState::mayStamp(const ContextFacts& context) {
    const CapturedContext& facts = playedContext(context.number).facts;
    return context.isLearnt && facts.mayAsk() && !facts.isCompiling;
}

void ReportState::beginFrame(ContextFacts& context) {
    isFrameBegun_ = true;
    frameStart_ = now();
    frameStamp_ = context.timers.stamp(stamps_, true);
    if (frameStamp_ && !firstStamp_)
        firstStamp_ = {*frameStamp_, frameStart_};
}

void ReportState::endFrame(const CapturedCall& call) {
    const std::string name = "frame " + std::to_string(report.frames.size() + 1);
    if (isFrameBegun_ && report.replayedFrames.size() < mostSpans)
        report.replayedFrames.push_back({name, call.thread, frameStart_, now() - frameStart_});
    laterFrames_ += hasDrawn_;
    hasDrawn_ = hasDrawn_ || frame.draws > 0;
    report.frames.push_back(std::move(frame));
    frame = {};
    frameCalls_.clear();
    frameUploads_.clear();
    isFrameBegun_ = false;
    frameStamp_.reset();
}

void ReportState::playing(const CapturedCall& call) {
    threads[call.thread].start = now();
    ContextFacts* const context = contextOf(call.thread);
    if (call.is(Event::Swap)) {
        if (context && frameStamp_ && mayStamp(*context))
            spans_.push_back({"", call.thread, frameStamp_, context->timers.stamp(stamps_, false),
                              report.frames.size(), false});
    } else if (call.is(Event::Destroyed)) {
        const auto found = contexts.find(call.u32(0));
        if (found != contexts.end() && found->second.isAlive)
            close(found->second, "when context " + std::to_string(found->first) +
                                     " was destroyed, in frame " + std::to_string(call.frame));
    } else if (context && call.function->isCall() && call.function->number != UINT32_MAX &&
               playedContext(context->number).handle) {
        if (!context->isLearnt)
            learnContext(*context);
        if (!isFrameBegun_ && mayStamp(*context))
            beginFrame(*context);
        objectsGoing(call, *context);
    }
}

void ReportState::eventPlayed(const CapturedCall& call) {
    switch (static_cast<Event>(call.function->number)) {
    case Event::Context: {
        ContextFacts& context = contexts[call.u32(0)];
        context.number = call.u32(0);
        context.group = call.u32(1);
        ++groups[context.group].contexts;
        ++report.contexts;
        if (report.driver.empty())
            report.driver = call.values[5].bytes;
        return;
    }
    case Event::Time:
        // Two threads that swap at once may write theirs in another order than they took them, and both in
        // front of the first one's swap.
        if (time_ && call.values[0].bits < *time_)
            return;
        if (time_) {
            frame.start = frame.start.value_or(*time_);
            frame.processor = frame.processor.value_or(0) + (call.values[0].bits - *time_);
        }
        time_ = call.values[0].bits;
        return;
    case Event::Array: {
        ThreadFacts& thread = threads[call.thread];
        const std::string_view bytes = call.values.back().bytes;
        thread.arrayBytes += bytes.size();
        thread.arrayHash = thread.arrayHash * 31 + hashOf(bytes);
        return;
    }
    case Event::Written:
        return addUpload(call, "mapped buffers", call.values[2].bytes.size(), hashOf(call.values[2].bytes),
                         0);
    case Event::Group:
        return beginGroup(call);
    case Event::GroupEnd:
        return endGroup(call);
    case Event::Label:
        return label(call);
    case Event::Swap:
        return endFrame(call);
    case Event::End:
        isEnded_ = true;
        return;
    default:
        return;
    }
}

void ReportState::beginGroup(const CapturedCall& call) {
    ThreadFacts& thread = threads[call.thread];
    if (thread.groups.size() >= deepestGroup) {
        ++thread.deeperGroups;
        return;
    }
    OpenGroup group;
    if (!thread.groups.empty())
        group.path = thread.groups.back().path + " / ";
    group.path += call.values[0].bytes.substr(0, longestGroup);
    group.calls = thread.calls;
    group.time = thread.time;
    group.start = now();
    if (ContextFacts* const context = contextOf(call.thread); context && mayStamp(*context)) {
        group.stamp = context->timers.stamp(stamps_, true);
        group.context = context->number;
    }
    thread.groups.push_back(std::move(group));
}

void ReportState::endGroup(const CapturedCall& call) {
    ThreadFacts& thread = threads[call.thread];
    if (thread.deeperGroups > 0) {
        --thread.deeperGroups;
        return;
    }
    if (thread.groups.empty())
        return; // begun before the capture
    const OpenGroup group = std::move(thread.groups.back());
    thread.groups.pop_back();
    for (std::map<std::string, ReportedGroup>* const where : {&frame.groups, &report.groups}) {
        ReportedGroup& its = (*where)[group.path];
        // A frame more, if it is the first time in this one.
        if (where == &report.groups && frame.groups[group.path].count == 1)
            ++its.frames;
        ++its.count;
        its.calls += thread.calls - group.calls;
        its.time += thread.time - group.time;
    }
    ContextFacts* const context = contextOf(call.thread);
    if (group.stamp && context && context->number == group.context && mayStamp(*context))
        spans_.push_back({group.path, call.thread, group.stamp, context->timers.stamp(stamps_, false),
                          report.frames.size(), true});
    if (report.replayedGroups.size() >= mostSpans)
        return leaveOut("Of the debug groups only the first 200,000 are in the trace.");
    report.replayedGroups.push_back({group.path, call.thread, group.start, now() - group.start});
}

void ReportState::addGpuTimes() {
    const auto timeOf = [&](const TimerQueries::Stamp& stamp) {
        return stamp ? stamps_[*stamp] : std::nullopt;
    };
    const std::uint64_t first = firstStamp_ ? stamps_[firstStamp_->first].value_or(0) : 0;
    for (const StampedSpan& span : spans_) {
        const ReportedTime begin = timeOf(span.begin), end = timeOf(span.end);
        if (!begin || !end || *end < *begin || span.frame >= report.frames.size())
            continue;
        const std::uint64_t time = *end - *begin;
        ReportedFrame& its = report.frames[span.frame];
        if (!span.isGroup) {
            its.gpu = its.gpu.value_or(0) + time;
        } else {
            ReportedTime& inFrame = its.groups[span.name].gpu;
            inFrame = inFrame.value_or(0) + time;
            ReportedTime& inAll = report.groups[span.name].gpu;
            inAll = inAll.value_or(0) + time;
        }
        if (first == 0 || *begin < first)
            continue;
        (span.isGroup ? report.gpuGroups : report.gpuFrames)
            .push_back({span.isGroup ? span.name : "frame " + std::to_string(span.frame + 1), span.thread,
                        firstStamp_->second + (*begin - first), time});
    }
}

} // namespace ZLT::Capture
