#pragma once

#include "capture/CaptureFile.h"
#include "capture/CapturedContext.h"
#include "capture/PlaySystem.h"
#include "capture/PlayedArrays.h"
#include "capture/PlayedNames.h"
#include "capture/ProjectExporter.h"
#include "capture/exporting/ProjectFiles.h"
#include "platform/GL.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

/// @file
/// What an exporter knows while it writes a project. It follows the calls, and asks no driver.

namespace ZLT::Capture {

namespace Exporting {

/// Objects of one share group, or those of one context that are not shared.
struct NameScope {
    std::string prefix; ///< of their variables: "", "group2.", "context2."
    std::map<ObjectKind, std::unordered_set<std::uint64_t>> known; ///< that have been made
};

struct ListFacts {
    std::optional<std::uint64_t> program; ///< that it leaves in use
};

struct Group {
    std::uint32_t number = 0;
    NameScope names;
    std::unordered_set<std::uint64_t> shaders; ///< among the programs
    std::unordered_map<std::uint64_t, std::unordered_map<std::int64_t, std::string>>
        locations; ///< of programs: the variables
    std::unordered_map<std::uint64_t, ListFacts> lists;
    std::vector<struct Context*> contexts;
};

/// What glPushClientAttrib keeps, as far as it matters.
struct ClientState {
    std::uint64_t arrayBuffer = 0;
    std::uint32_t textureUnit = 0;
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
    std::vector<std::pair<bool, ClientState>> clientStack; ///< with whether the arrays are in it
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
    struct Linked {
        std::uint64_t program;
        std::string places;
        std::uint32_t count;
    };
    std::optional<Linked> linked;
    bool hasHash = false;
    std::uint64_t hash = 0;
    std::unordered_map<std::uint64_t, std::uint32_t> maps, syncs; ///< their numbers, by what they were
    std::uint32_t mapCount = 0, syncCount = 0;

    ProjectExport(CaptureFile& from, const ExportOptions& options);

    Context* contextOf(std::uint32_t thread);
    Context& context() { return *contextOf(call.thread); } ///< for calls, which have one

    // ExportedEvents.cpp
    bool exportFrame();
    void finish();
    void exportRecord();
    void exportEvent();
    void makeSurface();
    void makeContext();
    void makeCurrent();
    void writeCurrent(const Context& next);
    void release(std::uint32_t thread);
    void destroy(Context& old);
    void swap();
    void addArray();
    /// A statement that is about the system, with no thread of its own.
    void addPlain(const std::string& statement) { files.add(statement); }
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
    const std::string& use(const NameScope& scope, const std::string& variable);
    void learnNames();
    void appendLocation(std::int64_t location);

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
