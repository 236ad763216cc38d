// Each call: what it cost, what it did, and whether it was wrong.

#include "capture/CallText.h"
#include "capture/reporting/DriverSentences.h"
#include "capture/reporting/ReportState.h"
#include "capture/reporting/Shrink.h"

namespace ZLT::Capture {

using namespace Reporting;

namespace {

// In one frame.
constexpr std::size_t mostStateCalls = 400, mostUploads = 200;
constexpr std::size_t mostTexts = 200'000;
constexpr std::uint64_t smallDraw = 100; // vertices

std::string errorName(unsigned int code) { return tokenText(code); }

std::uint64_t hashOfCall(const CapturedCall& call) {
    std::uint64_t hash = 0;
    for (const CapturedValue& value : call.values)
        hash = (hash ^ (value.isMemory() ? hashOf(value.bytes) : value.bits)) * 0x9E3779B97F4A7C15 + 1;
    return hash;
}

} // namespace

void ReportState::played(const CapturedCall& call, std::uint64_t time) {
    if (!call.function->isCall())
        return eventPlayed(call);
    if (call.function->number == UINT32_MAX)
        return; // of another version
    ++report.calls;
    ++frame.calls;
    frame.driver += time;
    callingThreads.insert(call.thread);
    ThreadFacts& thread = threads[call.thread];
    ++thread.calls;
    thread.time += time;
    ReportedFunction& function = frame.functions[call.function->number];
    ++function.count;
    function.time += time;
    if (time >= options.longCall) {
        if (report.longCalls.size() < options.mostLongCalls)
            report.longCalls.push_back(
                {call.thread, call.site, call.frame, thread.start, time, callText(call)});
        else
            leaveOut("Of the long calls only the first ones are in the trace.");
    }
    ContextFacts* const context = contextOf(call.thread);
    if (!context || !playedContext(context->number).handle)
        return;
    const bool failed = findError(call, *context);
    const Effect effect = context->state.follow(call, groups[context->group].objects, failed);
    if (effect == Effect::Unchanged)
        ++function.unchanged;
    if (failed)
        ++function.errors;
    if (effect != Effect::None)
        followState(call, time, effect);
    followObjects(call, *context, failed);
    if (!failed || factsOf(*call.function).kind == CallKind::End) // which draws in spite of it
        followDraw(call, time, *context);
    if (!failed)
        followUpload(call, time, *context);
    followCosts(call, time);
    thread.arrayBytes = 0;
    thread.arrayHash = 0;
}

bool ReportState::findError(const CapturedCall& call, ContextFacts& context) {
    const CapturedContext& facts = playedContext(context.number).facts;
    if (!facts.mayAsk())
        return false;
    const unsigned int code = glGetError();
    if (code == GL_NO_ERROR)
        return false;
    for (int i = 0; i < 16 && glGetError() != GL_NO_ERROR; ++i) // a lost context has no end of them
        continue;
    const std::vector<std::string> sentences = takeSentences();
    ++report.errorCount;
    ++frame.errors;
    const auto [place, isNew] =
        errors_.try_emplace({call.site, call.function->number, code}, report.errors.size());
    if (isNew) {
        ReportedError error;
        error.site = call.site;
        error.function = call.function->number;
        error.error = errorName(code);
        error.call = callText(call);
        error.groups = groupsOf(call.thread);
        if (!sentences.empty())
            error.message = sentences.back();
        error.frame = call.frame;
        error.number = call.number;
        report.errors.push_back(std::move(error));
    }
    ++report.errors[place->second].count;
    return true;
}

std::string ReportState::groupsOf(std::uint32_t thread) {
    const auto& open = threads[thread].groups;
    return open.empty() ? "" : open.back().path;
}

std::uint32_t ReportState::textOf(const CapturedCall& call) {
    if (texts_.size() >= mostTexts) {
        leaveOut("The arguments of some calls are left out: there are too many different ones.");
        return texts_.try_emplace(call.function->name + "(...)", static_cast<std::uint32_t>(texts_.size()))
            .first->second;
    }
    return texts_.try_emplace(callText(call), static_cast<std::uint32_t>(texts_.size())).first->second;
}

void ReportState::followState(const CapturedCall& call, std::uint64_t time, Effect effect) {
    const bool isUnchanged = effect == Effect::Unchanged;
    ++frame.changes;
    ++report.changes;
    auto& site = stateSites_[{call.site, call.function->number}];
    ++site.of;
    if (isUnchanged) {
        ++frame.unchanged;
        ++report.unchangedCount;
        if (site.row.count == 0)
            site.row.call = callText(call);
        ++site.row.count;
        site.row.time += time;
    }
    const auto key = std::tuple(call.site, call.function->number, hashOfCall(call));
    auto found = frameCalls_.find(key);
    if (found == frameCalls_.end()) {
        if (frame.stateCalls.size() >= mostStateCalls) {
            ++frame.stateCallsLeft;
            return;
        }
        found = frameCalls_.emplace(key, frame.stateCalls.size()).first;
        frame.stateCalls.push_back({call.site, call.function->number, textOf(call), 0, 0, 0});
    }
    ReportedCall& its = frame.stateCalls[found->second];
    ++its.count;
    its.time += time;
    its.unchanged += isUnchanged;
}

void ReportState::addHabit(const char* title, const CapturedCall& call, std::uint64_t time,
                           std::uint64_t amount) {
    if (habitNamed(title).afterFirst && !hasDrawn_)
        return;
    HabitCosts& habit = habits_[title];
    habit.amount += amount;
    Costs& place = habit.places[{call.site, call.function->number}];
    ++place.count;
    place.time += time;
    place.bytes += amount;
}

void ReportState::followDraw(const CapturedCall& call, std::uint64_t time, ContextFacts& context) {
    std::uint64_t vertices = 0;
    switch (factsOf(*call.function).kind) {
    case CallKind::Begin:
        context.vertices = 0;
        context.insideTime = time;
        return;
    case CallKind::Vertex:
        ++context.vertices;
        context.insideTime += time;
        return;
    case CallKind::End:
        vertices = context.vertices;
        addHabit("Immediate mode", call, context.insideTime + time, vertices);
        break;
    case CallKind::Draw:
        vertices = verticesOf(call);
        if (const ThreadFacts& thread = threads[call.thread]; thread.arrayBytes > 0) {
            addHabit("Client arrays", call, time, thread.arrayBytes);
            addUpload(call, "client arrays", thread.arrayBytes, thread.arrayHash, time);
        }
        break;
    case CallKind::Pixels:
        break;
    default:
        return;
    }
    if (context.list != 0) {
        if (ReportedObject* const list = find(keyOf(ObjectKind::List, context.list, context))) {
            ++static_cast<ReportedList*>(list)->draws;
            static_cast<ReportedList*>(list)->vertices += vertices;
        }
        if (playedContext(context.number).facts.isCompiling && !context.isListExecuted)
            return;
    }
    ++frame.draws;
    frame.vertices += vertices;
    if (vertices < smallDraw) {
        smallVertices_ += vertices;
        ++smallDraws_;
        addHabit("Small draws", call, time, vertices);
    }
}

void ReportState::addUpload(const CapturedCall& call, const std::string& object, std::uint64_t bytes,
                            std::uint64_t hash, std::uint64_t time) {
    frame.uploaded += bytes;
    const std::uint32_t function = call.function->isCall() ? call.function->number : 0;
    // Where it lies in the object is part of what is the same.
    const bool isAgain = bytes > 0 && !sent[hashOf(object)].insert(hash).second;
    if (isAgain && function != 0)
        addHabit("The same data is sent again", call, time, bytes);
    const auto [place, isNew] = frameUploads_.try_emplace(
        {call.site, object + '\n' + std::to_string(function)}, frame.uploads.size());
    if (isNew && frame.uploads.size() >= mostUploads) {
        frameUploads_.erase(place);
        ++frame.uploadsLeft;
        return;
    }
    if (isNew)
        frame.uploads.push_back({call.site, function, object, 0, 0, 0});
    ReportedUpload& its = frame.uploads[place->second];
    its.bytes += bytes;
    ++its.count;
    its.again += isAgain;
}

void ReportState::followUpload(const CapturedCall& call, std::uint64_t time, ContextFacts& context) {
    const CallKind kind = factsOf(*call.function).kind;
    if (kind != CallKind::Upload && kind != CallKind::BufferData && kind != CallKind::Pixels)
        return;
    const std::uint64_t bytes = bytesRead(call);
    const std::string object =
        kind == CallKind::Pixels ? "pixels" : uploadedObject(call, context, bytes, time);
    if (bytes > 0)
        addUpload(call, object, bytes, hashOfCall(call), time);
}

void ReportState::followCosts(const CapturedCall& call, std::uint64_t time) {
    if (isStall(call)) {
        Costs& stall = stalls_[{call.site, call.function->number}];
        ++stall.count;
        stall.time += time;
        stall.bytes += bytesWritten(call);
        if (stall.lastFrame != call.frame)
            ++stall.frames;
        stall.lastFrame = call.frame;
    }
    const FunctionFacts& facts = factsOf(*call.function);
    if (facts.habit)
        addHabit(facts.habit, call, time, 1);
}

} // namespace ZLT::Capture
