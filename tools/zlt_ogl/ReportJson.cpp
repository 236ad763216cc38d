#include "ReportJson.h"

#include "Progress.h"
#include "capture/Functions.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <ctime>
#include <map>
#include <numeric>
#include <vector>

namespace ZLT::Interception {

namespace {

using namespace Capture;
using Json = nlohmann::ordered_json;

// Of the tables about everything; those with more rows say how many.
constexpr std::size_t mostRows = 20'000;

template <class Value>
Json known(const std::optional<Value>& value) {
    return value ? Json(*value) : Json();
}

Json textOrNull(const std::string& text) { return text.empty() ? Json() : Json(text); }

// Functions and sites get places of their own, in the order in which they come.
class Places {
public:
    std::size_t of(std::uint32_t number) {
        const auto [place, isNew] = places_.try_emplace(number, numbers_.size());
        if (isNew)
            numbers_.push_back(number);
        return place->second;
    }
    const std::vector<std::uint32_t>& numbers() const { return numbers_; }

private:
    std::map<std::uint32_t, std::size_t> places_;
    std::vector<std::uint32_t> numbers_;
};

class ReportWriter {
public:
    ReportWriter(const Report& report, bool hasSources) : report_(report), hasSources_(hasSources) {
        sites_.of(0);
    }

    Json write(const std::string& file, std::size_t mostDetails) {
        const std::vector<bool> isDetailed = chooseFrames(mostDetails);
        Json frames = framesOf(isDetailed);
        Json all = {{"format", "zlt_ogl report"}, {"version", 1}, {"overview", overview(file)}};
        Json tables = {{"frames", std::move(frames)},
                       {"calls", calls()},
                       {"errors", errors()},
                       {"unchanged", unchanged()},
                       {"stalls", stalls()},
                       {"habits", habits()},
                       {"textures", textures()},
                       {"buffers", buffers()},
                       {"programs", programs()},
                       {"shaders", shaders()},
                       {"lists", lists()},
                       {"others", others()},
                       {"leaks", leaks()},
                       {"groups", groups(report_.groups, true)}};
        Json functions = Json::array();
        for (const std::uint32_t number : functions_.numbers()) {
            const Function* const function = functionOf(number);
            functions.push_back(function && function->isCall() ? function->name : "mapped memory");
        }
        Json sites = Json::array();
        for (const std::uint32_t number : sites_.numbers()) {
            const auto site = report_.sites.find(number);
            sites.push_back(site == report_.sites.end() ? "" : site->second);
        }
        Json texts = Json::array();
        for (const std::uint32_t number : texts_.numbers())
            texts.push_back(report_.texts[number]);
        all["functions"] = std::move(functions);
        all["sites"] = std::move(sites);
        all["texts"] = std::move(texts);
        for (auto& [name, table] : tables.items())
            all[name] = std::move(table);
        all["leftOut"] = leftOut_;
        return all;
    }

private:
    template <class Rows, class RowOf>
    static Json table(std::initializer_list<const char*> columns, const Rows& rows, const RowOf& rowOf,
                      std::uint64_t left = 0) {
        Json all = Json::array();
        for (const auto& row : rows) {
            if (all.size() == mostRows)
                break;
            all.push_back(rowOf(row));
        }
        const std::uint64_t omitted = rows.size() - all.size() + left;
        return {{"columns", columns}, {"rows", std::move(all)}, {"left", omitted}};
    }

    Json overview(const std::string& file) {
        const auto sum = [&](auto member) {
            ReportedTime all;
            for (const ReportedFrame& frame : report_.frames)
                if (const ReportedTime time = frame.*member)
                    all = all.value_or(0) + *time;
            return known(all);
        };
        const std::uint64_t driver =
            std::accumulate(report_.frames.begin(), report_.frames.end(), std::uint64_t(0),
                            [](std::uint64_t all, const ReportedFrame& frame) { return all + frame.driver; });
        Json lines = Json::array();
        std::string program;
        std::size_t begin = 0;
        while (begin < report_.info.size()) {
            const std::size_t end = std::min(report_.info.find('\n', begin), report_.info.size());
            const std::string line = report_.info.substr(begin, end - begin);
            begin = end + 1;
            constexpr std::string_view ofProgram = "program: ";
            if (line.starts_with(ofProgram))
                program = line.substr(ofProgram.size());
            else if (!line.empty())
                lines.push_back(line);
        }
        char date[16] = "";
        const std::time_t now = std::time(nullptr);
        std::strftime(date, sizeof date, "%Y-%m-%d", std::localtime(&now));
        return {{"file", file},
                {"program", program},
                {"driver", report_.driver},
                {"replay", report_.replay},
                {"frames", report_.frames.size() - (report_.isLastUnfinished ? 1 : 0)},
                {"calls", report_.calls},
                {"threads", report_.threads},
                {"contexts", report_.contexts},
                {"errors", report_.errorCount},
                {"processor", sum(&ReportedFrame::processor)},
                {"driverTime", driver},
                {"gpu", sum(&ReportedFrame::gpu)},
                {"picture", textOrNull(report_.overviewPicture)},
                {"info", std::move(lines)},
                {"made", date}};
    }

    // The frames that took longest, and those with errors, as far as there is room.
    std::vector<bool> chooseFrames(std::size_t most) {
        const std::vector<ReportedFrame>& frames = report_.frames;
        std::vector<std::size_t> order(frames.size());
        std::iota(order.begin(), order.end(), std::size_t(0));
        const auto interest = [&](std::size_t index) {
            const ReportedFrame& frame = frames[index];
            return std::tuple(index == 0, frame.errors > 0, frame.processor.value_or(0) + frame.driver);
        };
        std::ranges::stable_sort(order, std::greater(), interest);
        std::vector<bool> isDetailed(frames.size());
        std::size_t rows = 0, count = 0;
        for (const std::size_t index : order) {
            const ReportedFrame& frame = frames[index];
            rows += 4 + frame.functions.size() + frame.stateCalls.size() + frame.uploads.size() +
                    frame.groups.size();
            if (rows > most)
                break;
            isDetailed[index] = true;
            ++count;
        }
        leftOut_ = report_.leftOut;
        if (!hasSources_)
            leftOut_.push_back("The sources and logs of shaders would make the page too large.");
        if (count < frames.size())
            leftOut_.push_back("Of " + counted(frames.size(), "frame") + ", " + std::to_string(count) +
                               " have details: those that took longest, and those with errors.");
        return isDetailed;
    }

    Json framesOf(const std::vector<bool>& isDetailed) {
        const auto list = [&](auto valueOf) {
            Json values = Json::array();
            bool isKnown = false;
            for (const ReportedFrame& frame : report_.frames) {
                values.push_back(valueOf(frame));
                isKnown = isKnown || !values.back().is_null();
            }
            return isKnown ? values : Json();
        };
        Json frames;
        frames["start"] = list([](const ReportedFrame& frame) { return known(frame.start); });
        frames["processor"] = list([](const ReportedFrame& frame) { return known(frame.processor); });
        frames["gpu"] = list([](const ReportedFrame& frame) { return known(frame.gpu); });
        const std::pair<const char*, std::uint64_t ReportedFrame::*> numbers[] = {
            {"driver", &ReportedFrame::driver},     {"calls", &ReportedFrame::calls},
            {"draws", &ReportedFrame::draws},       {"vertices", &ReportedFrame::vertices},
            {"changes", &ReportedFrame::changes},   {"unchanged", &ReportedFrame::unchanged},
            {"uploaded", &ReportedFrame::uploaded}, {"errors", &ReportedFrame::errors}};
        for (const auto& [name, member] : numbers)
            frames[name] =
                list([member = member](const ReportedFrame& frame) { return Json(frame.*member); });
        frames["unfinished"] = report_.isLastUnfinished;
        Json pictures = Json::object(), shapes = Json::object(), details = Json::object();
        for (std::size_t i = 0; i < report_.frames.size(); ++i) {
            const ReportedFrame& frame = report_.frames[i];
            const std::string number = std::to_string(i + 1);
            if (!frame.picture.empty()) {
                pictures[number] = frame.picture;
                shapes[number] = {frame.width, frame.height};
            }
            if (isDetailed[i])
                details[number] = detailsOf(frame);
        }
        frames["pictures"] = std::move(pictures);
        frames["shapes"] = std::move(shapes);
        frames["details"] = std::move(details);
        return frames;
    }

    Json functionsOf(const std::map<std::uint32_t, ReportedFunction>& functions) {
        return table({"function", "count", "time", "unchanged", "errors"}, functions,
                     [&](const auto& one) -> Json {
                         const ReportedFunction& its = one.second;
                         return {functions_.of(one.first), its.count, its.time, its.unchanged, its.errors};
                     });
    }

    Json calls() {
        std::map<std::uint32_t, ReportedFunction> all;
        for (const ReportedFrame& frame : report_.frames)
            for (const auto& [number, its] : frame.functions) {
                ReportedFunction& sum = all[number];
                sum.count += its.count;
                sum.time += its.time;
                sum.unchanged += its.unchanged;
                sum.errors += its.errors;
            }
        return functionsOf(all);
    }

    Json detailsOf(const ReportedFrame& frame) {
        Json details;
        details["functions"] = functionsOf(frame.functions);
        details["changes"] = table(
            {"site", "call", "count", "time", "unchanged"}, frame.stateCalls,
            [&](const ReportedCall& one) -> Json {
                return {sites_.of(one.site), texts_.of(one.text), one.count, one.time, one.unchanged};
            },
            frame.stateCallsLeft);
        details["uploads"] = table(
            {"site", "function", "object", "bytes", "count", "again"}, frame.uploads,
            [&](const ReportedUpload& one) -> Json {
                return {sites_.of(one.site), functions_.of(one.function),
                        one.object,          one.bytes,
                        one.count,           one.again};
            },
            frame.uploadsLeft);
        if (!frame.groups.empty())
            details["groups"] = groups(frame.groups, false);
        return details;
    }

    static Json groups(const std::map<std::string, ReportedGroup>& rows, bool hasFrames) {
        const auto rowOf = [&](const auto& one) -> Json {
            const ReportedGroup& its = one.second;
            Json row = {one.first, its.count, its.calls, its.time, known(its.gpu)};
            if (hasFrames)
                row.push_back(its.frames);
            return row;
        };
        return hasFrames ? table({"group", "count", "calls", "time", "gpu", "frames"}, rows, rowOf)
                         : table({"group", "count", "calls", "time", "gpu"}, rows, rowOf);
    }

    Json errors() {
        return table(
            {"site", "error", "function", "call", "count", "frame", "number", "message", "groups"},
            report_.errors, [&](const ReportedError& one) -> Json {
                return {sites_.of(one.site), one.error,  functions_.of(one.function), one.call,  one.count,
                        one.frame,           one.number, known(one.message),          one.groups};
            });
    }

    Json unchanged() {
        return table(
            {"site", "function", "call", "count", "time", "of"}, report_.unchanged,
            [&](const ReportedUnchanged& one) -> Json {
                return {
                    sites_.of(one.site), functions_.of(one.function), one.call, one.count, one.time, one.of};
            });
    }

    Json stalls() {
        return table(
            {"site", "function", "why", "count", "time", "bytes", "frames"}, report_.stalls,
            [&](const ReportedStall& one) -> Json {
                return {
                    sites_.of(one.site), functions_.of(one.function), one.why, one.count, one.time, one.bytes,
                    one.frames};
            });
    }

    Json habits() {
        return table(
            {"title", "why", "value", "unit", "site", "function", "count", "time"}, report_.habits,
            [&](const ReportedHabit& one) -> Json {
                return {one.title,           one.why,
                        one.value,           one.unit,
                        sites_.of(one.site), one.function == 0 ? Json() : Json(functions_.of(one.function)),
                        one.count,           one.time};
            });
    }

    Json textures() {
        return table({"name", "label", "context", "target", "width", "height", "depth", "format", "levels",
                      "bytes", "site", "made", "deleted", "uploads", "uploaded", "picture", "note"},
                     report_.textures, [&](const ReportedTexture& one) -> Json {
                         return {one.name,
                                 one.label,
                                 one.group,
                                 one.target,
                                 one.width,
                                 one.height,
                                 one.depth,
                                 one.format,
                                 one.levels,
                                 one.bytes,
                                 sites_.of(one.site),
                                 one.made,
                                 known(one.deleted),
                                 one.uploads,
                                 one.uploaded,
                                 textOrNull(one.picture),
                                 one.note};
                     });
    }

    Json buffers() {
        return table(
            {"name", "label", "context", "usage", "bytes", "site", "made", "deleted", "uploads", "uploaded"},
            report_.buffers, [&](const ReportedBuffer& one) -> Json {
                return {one.name,    one.label,           one.group, one.usage,
                        one.bytes,   sites_.of(one.site), one.made,  known(one.deleted),
                        one.uploads, one.uploaded};
            });
    }

    Json programs() {
        return table({"name", "label", "context", "kind", "linked", "log", "shaders", "site", "made",
                      "deleted", "used"},
                     report_.programs, [&](const ReportedProgram& one) -> Json {
                         return {
                             one.name, one.label,         one.group,           one.type, known(one.linked),
                             one.log,  Json(one.shaders), sites_.of(one.site), one.made, known(one.deleted),
                             one.used};
                     });
    }

    Json shaders() {
        return table({"name", "label", "kind", "compiled", "log", "source", "site", "made", "deleted"},
                     report_.shaders, [&](const ReportedShader& one) -> Json {
                         return {one.name,
                                 one.label,
                                 one.type,
                                 known(one.compiled),
                                 hasSources_ ? one.log : "",
                                 hasSources_ ? one.source : "",
                                 sites_.of(one.site),
                                 one.made,
                                 known(one.deleted)};
                     });
    }

    Json lists() {
        return table({"name", "label", "context", "calls", "site", "made", "deleted", "used"}, report_.lists,
                     [&](const ReportedList& one) -> Json {
                         return {one.name, one.label,          one.group, one.calls, sites_.of(one.site),
                                 one.made, known(one.deleted), one.used};
                     });
    }

    Json others() {
        return table({"kind", "name", "label", "context", "site", "made", "deleted"}, report_.others,
                     [&](const ReportedObject& one) -> Json {
                         return {one.kind, one.name,          one.label, one.group, sites_.of(one.site),
                                 one.made, known(one.deleted)};
                     });
    }

    Json leaks() {
        return table({"kind", "site", "count", "bytes", "names", "when"}, report_.leaks,
                     [&](const ReportedLeak& one) -> Json {
                         return {one.kind, sites_.of(one.site), one.count, one.bytes, one.names, one.when};
                     });
    }

    const Report& report_;
    bool hasSources_;
    Places functions_, sites_, texts_;
    std::vector<std::string> leftOut_;
};

std::string textOf(const Json& json) { return json.dump(-1, ' ', false, Json::error_handler_t::replace); }

} // namespace

std::string reportJson(const Report& report, const std::string& file, std::size_t most) {
    for (const std::size_t details : {250'000, 120'000, 60'000, 30'000, 15'000, 5'000, 0}) {
        std::string text = textOf(ReportWriter(report, true).write(file, details));
        if (text.size() <= most)
            return text;
    }
    return textOf(ReportWriter(report, false).write(file, 0));
}

std::string chromeTrace(const Report& report, const std::string& file) {
    enum Process { Program = 1, Replay, Gpu };
    Json events = Json::array();
    const auto name = [&](int process, const std::string& what) {
        events.push_back(
            {{"ph", "M"}, {"name", "process_name"}, {"pid", process}, {"args", {{"name", what}}}});
        events.push_back({{"ph", "M"},
                          {"name", "process_sort_index"},
                          {"pid", process},
                          {"args", {{"sort_index", process}}}});
    };
    // Microseconds, as these viewers have them.
    const auto add = [&](int process, std::uint32_t thread, const std::string& what, const char* category,
                         std::uint64_t start, std::uint64_t time, Json arguments) {
        Json event = {{"ph", "X"},
                      {"name", what},
                      {"cat", category},
                      {"pid", process},
                      {"tid", thread},
                      {"ts", static_cast<double>(start) / 1e3},
                      {"dur", static_cast<double>(time) / 1e3}};
        if (!arguments.is_null())
            event["args"] = std::move(arguments);
        events.push_back(std::move(event));
    };
    name(Program, "program, when it was captured");
    name(Replay, "replay of " + file);
    if (!report.gpuFrames.empty())
        name(Gpu, "graphics processor, in the replay");
    for (std::size_t i = 0; i < report.frames.size(); ++i) {
        const ReportedFrame& frame = report.frames[i];
        if (frame.start && frame.processor)
            add(Program, 1, "frame " + std::to_string(i + 1), "frame", *frame.start, *frame.processor,
                {{"calls", frame.calls}, {"draws", frame.draws}, {"uploaded bytes", frame.uploaded}});
    }
    const std::tuple<Process, const char*, const std::vector<ReportedSpan>*> spans[] = {
        {Replay, "frame", &report.replayedFrames},
        {Replay, "group", &report.replayedGroups},
        {Gpu, "frame", &report.gpuFrames},
        {Gpu, "group", &report.gpuGroups}};
    for (const auto& [process, category, list] : spans)
        for (const ReportedSpan& span : *list) {
            // A group's own name is the last one of its path.
            const std::size_t slash = span.name.rfind(" / ");
            add(process, span.thread, slash == std::string::npos ? span.name : span.name.substr(slash + 3),
                category, span.start, span.time, Json());
        }
    for (const ReportedLongCall& call : report.longCalls) {
        const auto site = report.sites.find(call.site);
        Json arguments = {{"call", call.text}, {"frame", call.frame}};
        if (site != report.sites.end())
            arguments["site"] = site->second;
        add(Replay, call.thread, call.text.substr(0, call.text.find('(')), "call", call.start, call.time,
            std::move(arguments));
    }
    return textOf({{"traceEvents", std::move(events)}, {"displayTimeUnit", "ms"}});
}

} // namespace ZLT::Interception
