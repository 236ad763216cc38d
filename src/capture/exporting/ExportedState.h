#pragma once

#include "capture/CaptureFile.h"
#include "capture/CapturedContext.h"
#include "capture/ExportOptions.h"
#include "capture/LinkedPlaces.h"
#include "capture/PlaySystem.h"
#include "capture/PlayedArrays.h"
#include "capture/PlayedNames.h"
#include "capture/exporting/MadeCalls.h"
#include "capture/exporting/MatrixLog.h"
#include "capture/exporting/ProjectFiles.h"
#include "platform/GL.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// @file
/// What an exporter knows while it writes a project. It follows the calls, and asks no driver.

namespace ZLT::Capture {

struct CapturePlay;

namespace Exporting {

/// Objects of one share group, or those of one context that are not shared.
struct NameScope {
    std::string prefix; ///< of their variables: "", "group2.", "context2."
    std::map<ObjectKind, std::unordered_set<std::uint64_t>> known; ///< that have been made
};

struct ListFacts {
    std::optional<std::uint64_t> program; ///< that it leaves in use
};

/// A call that is made again later, with what a draw reads of arrays.
struct KeptCall {
    CapturedCall call;
    std::vector<PlayedArray> arrays;
};

/// A shader as it was compiled.
struct KeptSource {
    std::optional<CapturedCall> source, compile;
};
struct KeptShader {
    CapturedCall create;
    std::optional<CapturedCall> source;
    std::shared_ptr<const KeptSource> compiled;
    bool isDeleted = false; ///< it lives while a program has it
};
struct KeptProgram {
    CapturedCall create;
    std::vector<std::uint64_t> attached;
    std::vector<CapturedCall> settings; ///< glBindFragDataLocation and the like
    std::optional<CapturedCall> link;
    std::optional<LinkedPlaces> places;
    struct LinkedShader {
        std::uint64_t name;
        CapturedCall create;
        std::shared_ptr<const KeptSource> compiled;
    };
    std::vector<LinkedShader> linked; ///< what it was linked of
    /// The last call for each function and location, with the order of these.
    std::map<std::pair<std::uint32_t, std::int64_t>, std::pair<std::uint64_t, CapturedCall>> uniforms;
    bool isDeleted = false; ///< it lives while it is used
};
/// A display list, as it was compiled.
struct KeptList {
    std::vector<KeptCall> calls;
    std::map<std::uint32_t, std::int32_t> unpacking; ///< of pixels, when it was begun
};
/// What made the objects of a share group: what GL can't be asked for.
struct KeptObjects {
    std::map<std::uint64_t, KeptShader> shaders;
    std::map<std::uint64_t, KeptProgram> programs;
    std::map<std::uint64_t, KeptList> lists;
    std::set<std::uint64_t> emptyLists, syncs;
    std::unordered_map<std::uint64_t, std::uint32_t> textureTargets, assemblyTargets;
    std::uint64_t order = 0;
};

struct Group {
    std::uint32_t number = 0;
    NameScope names;
    std::unordered_set<std::uint64_t> shaders; ///< among the programs
    std::unordered_map<std::uint64_t, std::unordered_map<std::int64_t, std::string>>
        locations; ///< of programs: the variables
    std::unordered_map<std::uint64_t, ListFacts> lists;
    KeptObjects kept;
    std::vector<struct Context*> contexts;
};

/// What glPushClientAttrib keeps, as far as it matters.
struct ClientState {
    std::uint64_t arrayBuffer = 0;
    std::uint32_t textureUnit = 0;
    std::map<std::uint32_t, std::int32_t> unpacking; ///< of pixels, what is not as in a new context
};

struct Context {
    std::uint32_t number = 0;
    ContextShape shape;
    std::shared_ptr<Group> group;
    NameScope names;
    bool isCreated = false, isDoomed = false;
    std::uint32_t thread = 0; ///< that has it
    std::uint32_t draw = 0, read = 0;
    bool isInside = false;  ///< between glBegin and glEnd
    std::uint64_t list = 0; ///< that is open
    bool isListExecuted = false;
    std::uint64_t program = 0;
    ClientState client;
    std::vector<std::pair<std::uint32_t, ClientState>> clientStack; ///< with its masks
    std::vector<std::uint32_t> attributeMasks;                      ///< of the other stack
    std::unordered_map<std::uint64_t, std::uint32_t> queryTargets;
    std::optional<CapturedCall> feedback, selection; ///< the memory for them
    bool accumulates = false;
    MatrixLog matrices;
    std::unordered_map<std::uint64_t, std::string> arrays; ///< how they point, where that is known
};

struct Thread {
    std::uint32_t context = 0;
    std::string pending; ///< between glBegin and glEnd, so that no other thread's calls come between
    std::size_t pendingCount = 0;
};

} // namespace Exporting

struct ProjectExport {
    using Context = Exporting::Context;
    using Group = Exporting::Group;
    using Thread = Exporting::Thread;
    using NameScope = Exporting::NameScope;

    CaptureFile& file;
    ProjectFiles files;
    ProjectFacts facts;
    ConstantText constants{facts.constants};
    std::uint64_t lastFrame;

    CapturedCall call;
    std::string line; ///< the statements of the call
    std::unordered_map<std::uint32_t, Thread> threads;
    std::map<std::uint32_t, Context> contexts;
    std::map<std::uint32_t, std::shared_ptr<Group>> groups;
    std::uint32_t current = 0;       ///< the thread whose context the project has current
    std::vector<PlayedArray> arrays; ///< for the draw that follows
    std::optional<LinkedPlaces> linked;
    bool hasHash = false;
    std::uint64_t hash = 0;
    std::unordered_map<std::uint64_t, std::uint32_t> maps,
        syncs; ///< their numbers in the project, by what they were; of all groups
    std::uint32_t mapCount = 0, syncCount = 0;

    ProjectExport(CaptureFile& from, const ExportOptions& options);

    Context* contextOf(std::uint32_t thread);
    Context& context() { return *contextOf(call.thread); } ///< for calls, which have one

    // ExportedEvents.cpp
    bool exportFrame();
    /// Begins with what there was in front of the frame.
    void startAt(std::uint64_t frame, const std::string& path, PlaySystem& system, OGL::OpenGLInterceptor& gl,
                 const std::function<void(std::uint64_t)>& progress);
    void finish();
    void exportRecord();
    void exportEvent();
    void makeSurface();
    void addSurface(std::uint32_t number, const SurfaceShape& shape);
    void createContext(Context& next);
    void makeContext();
    void makeCurrent();
    void writeCurrent(const Context& next);
    void release(std::uint32_t thread);
    void destroy(Context& old);
    void swap();
    /// A statement that is about the system, with no thread of its own.
    void addPlain(const std::string& statement) {
        if (!isSkimming)
            files.add(statement);
    }
    /// The statements of the call.
    void addLine(std::size_t count);
    void switchToThread(std::uint32_t thread);

    // ExportedNames.cpp
    NameScope& scopeOf(ObjectKind kind);
    NameScope* findScope(ObjectKind kind, std::uint64_t name);
    /// "texture[3]". A name that the program made up is made first.
    void appendName(ObjectKind kind, std::uint64_t name, std::string_view object);
    void appendNames(ObjectKind kind, const CapturedValue& value, std::string_view object, const char* how);
    std::string variableOf(ObjectKind kind, std::uint64_t name, std::string_view object);
    /// The variable as statements have it: "group2.texture". It is declared from then on.
    std::string use(const NameScope& scope, const std::string& variable);
    void learnNames();
    void appendLocation(std::int64_t location);

    /// Names that the program made up and GL makes: for them there is a call.
    const char* makerOfUnknown(ObjectKind kind, std::uint64_t name);

    // ExportedLog.cpp: what is kept of the frames in front of the first.
    void skimCall();
    void skimNames();
    void keepShader();
    void keepProgram();
    void keepList();
    void keepTargets();

    // ExportedStart.cpp
    void bring(CapturePlay& play);
    void bringContext(CapturePlay& play, Context& context, bool isFirst);
    void addKept(CapturedCall kept);
    void addKept(std::vector<CapturedCall> calls);
    void addShaders(Group& group);
    void addPrograms(Group& group);
    void addLists(Group& group);
    void setUnpacking(const std::map<std::uint32_t, std::int32_t>& wanted);
    bool isSkimming = false;
    std::map<std::uint32_t, SurfaceShape> surfaces;

    // ExportedCalls.cpp
    void exportCall();
    void appendArguments();
    void appendValue(std::size_t index);
    void appendMemory(const Parameter& parameter, const CapturedValue& value);
    void appendList(char element, std::string_view bytes);
    void appendData(const CapturedValue& value);
    void appendData(std::string_view bytes, std::uint64_t skipped);
    void appendTexts(const CapturedValue& value);
    void appendIndexLists(const CapturedValue& value);
    void appendOutput(const Parameter& parameter, const CapturedValue& value);
    void appendAddress(const CapturedValue& value);
    void appendNumberOf(const Parameter& parameter, std::size_t index);
    void endStatement();
    std::size_t statements = 0; ///< of the line
    std::string assignment;     ///< in front of the call
    std::string before;         ///< statements that the call needs in front of it

    // ExportedMeanings.cpp
    bool isReplaced();
    void begin();
    void followCall();
    void pointArrays();
    void placeAttributes();
    void learnUniforms();
    void followClientState();
    void addElement();
    std::string nameOfFunction(const std::string& name);
};

} // namespace ZLT::Capture
