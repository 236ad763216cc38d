#pragma once

#include "capture/Picture.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

/// @file
/// What a report has, as docs/report-format.md describes it. Times are nanoseconds; functions are the numbers
/// of their records, sites those of the file, 0 for none.

namespace ZLT::Capture {

/// Nanoseconds, where they are known.
using ReportedTime = std::optional<std::uint64_t>;

struct ReportedFunction {
    std::uint64_t count = 0, time = 0, unchanged = 0, errors = 0;
};

/// Calls of one site that are equal.
struct ReportedCall {
    std::uint32_t site = 0, function = 0, text = 0; ///< text: in Report::texts
    std::uint64_t count = 0, time = 0, unchanged = 0;
};

struct ReportedUpload {
    std::uint32_t site = 0, function = 0;
    std::string object; ///< "texture 5"
    std::uint64_t bytes = 0, count = 0, again = 0;
};

struct ReportedGroup {
    std::uint64_t count = 0, calls = 0, time = 0, frames = 0;
    ReportedTime gpu;
};

struct ReportedFrame {
    ReportedTime start, processor, gpu;
    std::uint64_t driver = 0, calls = 0, draws = 0, vertices = 0, changes = 0, unchanged = 0, uploaded = 0,
                  errors = 0;
    std::string picture; ///< a data URL
    int width = 0, height = 0;

    std::map<std::uint32_t, ReportedFunction> functions;
    std::vector<ReportedCall> stateCalls;
    std::uint64_t stateCallsLeft = 0;
    std::vector<ReportedUpload> uploads;
    std::uint64_t uploadsLeft = 0;
    std::map<std::string, ReportedGroup> groups;
};

struct ReportedError {
    std::uint32_t site = 0, function = 0;
    std::string error, call, groups;
    std::optional<std::string> message;
    std::uint64_t count = 0, frame = 0, number = 0;
};

/// Calls that changed nothing.
struct ReportedUnchanged {
    std::uint32_t site = 0, function = 0;
    std::string call; ///< the first
    std::uint64_t count = 0, time = 0, of = 0;
};

struct ReportedStall {
    std::uint32_t site = 0, function = 0;
    std::string why;
    std::uint64_t count = 0, time = 0, bytes = 0, frames = 0;
};

struct ReportedHabit {
    std::string title, why, unit;
    double value = 0;
    std::uint32_t site = 0, function = 0;
    std::uint64_t count = 0, time = 0;
};

/// What all objects have.
struct ReportedObject {
    std::string kind, label; ///< kind: "texture"
    std::uint64_t name = 0;
    std::uint32_t group = 0, site = 0;
    std::uint64_t made = 0; ///< frame
    std::optional<std::uint64_t> deleted;
};

struct ReportedTexture : ReportedObject {
    std::string target, format, picture, note;
    int width = 0, height = 0, depth = 0, levels = 0;
    std::uint64_t bytes = 0, uploads = 0, uploaded = 0;
};

struct ReportedBuffer : ReportedObject {
    std::string usage;
    std::uint64_t bytes = 0, uploads = 0, uploaded = 0;
};

struct ReportedShader : ReportedObject {
    std::optional<bool> compiled;
    std::string type, log, source;
};

struct ReportedProgram : ReportedObject {
    std::string type;
    std::optional<bool> linked;
    std::string log;
    std::vector<std::size_t> shaders; ///< in Report::shaders
    std::uint64_t used = 0;
};

struct ReportedList : ReportedObject {
    std::uint64_t calls = 0, used = 0, vertices = 0, draws = 0;
};

struct ReportedLeak {
    std::string kind, names, when;
    std::uint32_t site = 0;
    std::uint64_t count = 0, bytes = 0;
};

/// A call that took long, by the clock of the replay.
struct ReportedLongCall {
    std::uint32_t thread = 0, site = 0;
    std::uint64_t frame = 0, start = 0, time = 0;
    std::string text;
};

/// Of a frame or a debug group: when it was, by the clock of the replay.
struct ReportedSpan {
    std::string name;
    std::uint32_t thread = 0;
    std::uint64_t start = 0, time = 0;
};

struct Report {
    std::string info, driver, replay;
    std::uint64_t calls = 0, errorCount = 0, changes = 0, unchangedCount = 0;
    std::size_t threads = 0, contexts = 0;
    Picture overview;              ///< of a late frame
    std::string overviewPicture;   ///< the same as a data URL
    bool isLastUnfinished = false; ///< the last frame has no swap

    std::vector<std::string> texts;
    std::map<std::uint32_t, std::string> sites; ///< by their numbers
    std::vector<ReportedFrame> frames;
    std::vector<ReportedError> errors;
    std::vector<ReportedUnchanged> unchanged;
    std::vector<ReportedStall> stalls;
    std::vector<ReportedHabit> habits;
    std::vector<ReportedTexture> textures;
    std::vector<ReportedBuffer> buffers;
    std::vector<ReportedShader> shaders;
    std::vector<ReportedProgram> programs;
    std::vector<ReportedList> lists;
    std::vector<ReportedObject> others;
    std::vector<ReportedLeak> leaks;
    std::map<std::string, ReportedGroup> groups;
    std::vector<ReportedLongCall> longCalls;
    std::vector<ReportedSpan> replayedFrames, replayedGroups, gpuFrames, gpuGroups;
    std::vector<std::string> leftOut; ///< sentences
};

} // namespace ZLT::Capture
