#pragma once

#include "capture/CapturePlay.h"
#include "capture/reporting/CallFacts.h"
#include "capture/reporting/Report.h"
#include "capture/reporting/ReportOptions.h"
#include "capture/reporting/StateChanges.h"
#include "capture/reporting/TimerQueries.h"

#include <chrono>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// @file
/// What a reporter knows while a capture is played. Calls are followed in ReportedCalls.cpp, frames and times
/// in ReportedFrames.cpp, objects in ReportedObjects.cpp, and textures are read in ReportedTextures.cpp.

namespace ZLT::Capture {

namespace Reporting {

/// An object is one of a kind in its share group, or in its context.
struct ObjectKey {
    std::int64_t scope = 0; ///< the share group; of what belongs to a context its number, negative
    ObjectKind kind = ObjectKind::None;
    std::uint64_t name = 0;
    bool operator<(const ObjectKey& other) const {
        return std::tie(scope, kind, name) < std::tie(other.scope, other.kind, other.name);
    }
};

/// Where the report has the object.
struct ObjectPlace {
    enum class List : std::uint8_t {
        Textures,
        Buffers,
        Shaders,
        Programs,
        Lists,
        Others
    } list = List::Others;
    std::size_t index = 0;
};

struct GroupFacts {
    StateChanges objects;
    std::size_t contexts = 0; ///< that are alive
};

struct ContextFacts {
    std::uint32_t number = 0, group = 0;
    StateChanges state;
    TimerQueries timers;
    bool isLearnt = false, isAlive = true;
    std::uint64_t list = 0; ///< that is open
    bool isListExecuted = false;
    std::uint64_t vertices = 0, insideTime = 0; ///< since glBegin
};

/// A debug group that is open.
struct OpenGroup {
    std::string path;
    std::uint64_t start = 0; ///< by the clock of the replay
    TimerQueries::Stamp stamp;
    std::uint32_t context = 0;
    std::uint64_t calls = 0, time = 0; ///< of the thread, when it began
};

struct ThreadFacts {
    std::vector<OpenGroup> groups;
    std::uint64_t deeperGroups = 0; ///< that are open in these, and not told
    std::uint64_t calls = 0, time = 0;
    std::uint64_t arrayBytes = 0, arrayHash = 0; ///< of the arrays for the call that follows
    std::uint64_t start = 0;                     ///< of the record, by the clock of the replay
};

/// Sums by place.
struct Costs {
    std::uint64_t count = 0, time = 0, bytes = 0, frames = 0, lastFrame = 0;
};

struct HabitCosts {
    std::map<std::pair<std::uint32_t, std::uint32_t>, Costs> places; ///< by site and function
    std::uint64_t amount = 0;                                        ///< of what is measured
};

} // namespace Reporting

struct ReportState : PlayListener {
    using ContextFacts = Reporting::ContextFacts;

    ReportState(CaptureFile& from, PlaySystem& system, OGL::OpenGLInterceptor& gl, const ReportOptions& how);

    CaptureFile& file;
    ReportOptions options;
    CapturePlay play;
    Report report;

    std::map<std::uint32_t, ContextFacts> contexts;
    std::map<std::uint32_t, Reporting::GroupFacts> groups;
    std::map<std::uint32_t, Reporting::ThreadFacts> threads;
    std::set<std::uint32_t> callingThreads;
    ReportedFrame frame; ///< that is played

    // PlayListener
    void frameEnding(std::uint64_t number, const std::function<bool(Picture&)>& read) override;
    void playing(const CapturedCall& call) override;
    void played(const CapturedCall& call, std::uint64_t time) override;
    void incomplete(const std::string& what) override;

    // CaptureReporter.cpp
    Report finish();
    ContextFacts* contextOf(std::uint32_t thread);
    Playing::Context& playedContext(std::uint32_t number) { return play.contexts[number]; }
    void leaveOut(const std::string& sentence) { leftOut_.insert(sentence); }
    /// A data URL, as long as there is room for pictures.
    std::string encoded(const Picture& picture, bool hasAlpha);
    void addUnchanged();
    void addStalls();
    void addHabits();

    // ReportedFrames.cpp
    std::uint64_t now() const;
    void eventPlayed(const CapturedCall& call);
    void beginFrame(ContextFacts& context);
    void endFrame(const CapturedCall& call);
    void beginGroup(const CapturedCall& call);
    void endGroup(const CapturedCall& call);
    void learnContext(ContextFacts& context);
    /// A stamp is a call, and would become a part of a list that is compiled.
    bool mayStamp(const ContextFacts& context);
    void addGpuTimes();

    // ReportedCalls.cpp
    bool findError(const CapturedCall& call, ContextFacts& context);
    void followDraw(const CapturedCall& call, std::uint64_t time, ContextFacts& context);
    void followUpload(const CapturedCall& call, std::uint64_t time, ContextFacts& context);
    void addUpload(const CapturedCall& call, const std::string& object, std::uint64_t bytes,
                   std::uint64_t hash, std::uint64_t time);
    void followState(const CapturedCall& call, std::uint64_t time, Reporting::Effect effect);
    void followCosts(const CapturedCall& call, std::uint64_t time);
    void addHabit(const char* title, const CapturedCall& call, std::uint64_t time, std::uint64_t amount);
    std::string groupsOf(std::uint32_t thread);
    std::uint32_t textOf(const CapturedCall& call);

    // ReportedObjects.cpp
    void followObjects(const CapturedCall& call, ContextFacts& context, bool failed);
    void objectsGoing(const CapturedCall& call, ContextFacts& context);
    void label(const CapturedCall& call);
    ReportedObject* find(const Reporting::ObjectKey& key);
    ReportedObject& make(const Reporting::ObjectKey& key, const CapturedCall& call);
    ReportedObject& objectAt(const Reporting::ObjectPlace& place);
    Reporting::ObjectKey keyOf(ObjectKind kind, std::uint64_t name, const ContextFacts& context) const;
    void remove(const Reporting::ObjectKey& key);
    /// What the captured name of the object is that is bound there.
    std::uint64_t boundAt(std::uint32_t query, ObjectKind kind);
    /// Where the data of the call goes: "texture 5".
    std::string uploadedObject(const CapturedCall& call, ContextFacts& context, std::uint64_t bytes,
                               std::uint64_t time);
    /// The context is about to go, or the capture ends.
    void close(ContextFacts& context, const std::string& when);
    void followShaders(const CapturedCall& call, ContextFacts& context);
    void followAssembly(const CapturedCall& call, ContextFacts& context);
    void followLists(const CapturedCall& call, ContextFacts& context);
    std::uint64_t bytesOf(const Reporting::ObjectPlace& place) const;
    /// What the driver says of a shader or program.
    std::string logOf(const CapturedCall& call, std::uint64_t name, std::optional<bool>& isGood);

    // ReportedTextures.cpp
    /// Reads the texture, of the current context.
    void readTexture(ReportedTexture& texture, Playing::Context& context);

    std::map<Reporting::ObjectKey, Reporting::ObjectPlace> objects;
    std::unordered_map<std::uint64_t, std::unordered_set<std::uint64_t>> sent; ///< hashes, by object's

private:
    std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
    std::set<std::string> leftOut_;
    std::unordered_map<std::string, std::uint32_t> texts_;
    std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint32_t>, std::size_t> errors_; ///< their rows
    struct UnchangedCosts {
        std::uint64_t of = 0;
        ReportedUnchanged row;
    };
    std::map<std::pair<std::uint32_t, std::uint32_t>, UnchangedCosts> stateSites_;
    std::map<std::pair<std::uint32_t, std::uint32_t>, Reporting::Costs> stalls_;
    std::map<std::string, Reporting::HabitCosts> habits_;
    std::map<std::tuple<std::uint32_t, std::uint32_t, std::uint64_t>, std::size_t> frameCalls_;
    std::map<std::pair<std::uint32_t, std::string>, std::size_t> frameUploads_;
    std::uint64_t laterFrames_ = 0; ///< behind the first that drew
    std::uint64_t smallDraws_ = 0, smallVertices_ = 0;
    std::uint64_t pictureStep_ = 1, pictures_ = 0, texturePictures_ = 0, pictureBytes_ = 0, picturesLeft_ = 0;
    bool isFrameBegun_ = false, isEnded_ = false, hasDrawn_ = false;
    std::uint64_t frameStart_ = 0;                     ///< by the clock of the replay
    std::optional<std::uint64_t> time_;                ///< of the capture's last record of time
    std::vector<std::optional<std::uint64_t>> stamps_; ///< of the graphics processor
    std::optional<std::pair<std::size_t, std::uint64_t>> firstStamp_; ///< with our clock
    struct StampedSpan {
        std::string name;
        std::uint32_t thread = 0;
        Reporting::TimerQueries::Stamp begin, end;
        std::size_t frame = 0;
        bool isGroup = false;
    };
    std::vector<StampedSpan> spans_;
    Reporting::TimerQueries::Stamp frameStamp_;
};

} // namespace ZLT::Capture
