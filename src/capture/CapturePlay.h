#pragma once

#include "capture/CapturedContext.h"
#include "capture/LinkedPlaces.h"
#include "capture/PlaySystem.h"
#include "capture/PlayedAccumulation.h"
#include "capture/PlayedArrays.h"
#include "capture/PlayedNames.h"
#include "capture/PlayerThreads.h"
#include "extensionator/OpenGLEntry.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

/// @file
/// What a player knows while it plays. Its events are in PlayedEvents.cpp, what calls are given in
/// PlayedArguments.cpp, and what calls mean in PlayedCalls.cpp.

namespace ZLT::Capture {

namespace Playing {

namespace Entry = OGL::OpenGLEntry;

constexpr const char* here = "capture"; // the file of the calls that a player makes

// A name that nothing has, for one that the capture never got: what was an error is one again.
constexpr std::uint64_t nobody = 0x3FFFFFFF;

// From here on, in place of none: numbers of surfaces that nobody captured.
constexpr std::uint32_t noSurface = 0x80000000;

struct Surface {
    SurfaceShape shape;
    void* handle = nullptr;
    PlayedAccumulation accumulation; // where the handle has none
};

struct Group {
    NameTable names;
    std::unordered_map<std::uint64_t, std::unordered_map<std::int64_t, std::int64_t>>
        locations;         // of programs
    void* first = nullptr; // context
    std::vector<struct Context*> contexts;
};

struct Context {
    ContextShape shape;
    std::string driver; // with which it was captured
    std::shared_ptr<Group> group;
    NameTable names; // of what belongs to the context
    void* handle = nullptr;
    CapturedContext facts;
    bool isLearnt = false;
    bool isDoomed = false; // destroyed while a thread has it
    bool hasAccumulation = true;
    std::uint32_t thread = 0; // that has it
    std::uint32_t draw = 0, read = 0;
    std::uint64_t program = 0; // captured name; 0 may stand for not known
    bool isProgramKnown = true;
    std::vector<std::uint32_t> feedback, selection;
    struct Map {
        char* address = nullptr;
        std::uint64_t size = 0;
    };
    std::unordered_map<std::uint64_t, Map> maps; // by captured address
};

} // namespace Playing

struct CapturePlay {
    using Context = Playing::Context;
    using Group = Playing::Group;
    using Surface = Playing::Surface;

    CaptureFile& file;
    PlaySystem& system;
    OGL::OpenGLInterceptor& gl;
    PlayListener& listener;
    PlayOptions options;

    PlayerThreads threads;
    std::unordered_map<std::uint32_t, std::uint32_t> current; // the context of each thread
    std::unordered_map<std::uint32_t, Surface> surfaces;
    std::unordered_map<std::uint32_t, Context> contexts;
    std::unordered_map<std::uint32_t, std::shared_ptr<Group>> groups;
    Context none;

    CapturedCall call;
    bool isRead = false; // `call` is one that was not played yet
    std::uint64_t calls = 0, frames = 0, compared = 0;
    std::uint64_t callTime = 0;      // nanoseconds, where the listener follows
    std::vector<PlayedArray> arrays; // for the draw that follows
    std::optional<LinkedPlaces> linked;

    // Of the call that is played.
    std::vector<std::uint64_t> arguments;
    struct Written {
        std::size_t parameter;
        std::unique_ptr<char[]> memory;
    };
    std::vector<Written> written;
    std::vector<std::unique_ptr<char[]>> scratch;

    CapturePlay(CaptureFile& from, PlaySystem& by, OGL::OpenGLInterceptor& to, PlayListener& whoHears,
                const PlayOptions& how)
        : file(from), system(by), gl(to), listener(whoHears), options(how) {}

    Context& context() { return contextOf(call.thread); }

    Context& contextOf(std::uint32_t thread) {
        const auto found = current.find(thread);
        return found == current.end() || found->second == 0 ? none : contexts[found->second];
    }

    // PlayedEvents.cpp
    void makeSurface();
    void* surfaceHandle(std::uint32_t number);
    void makeContext();
    void makeCurrent();
    // What the context draws to; one of its own where it drew to framebuffer objects alone.
    void* handleToDraw(std::uint32_t number, std::uint32_t surface);
    // Does the work with the context current: on the thread that has it, or for a time on the first. Says
    // whether it could.
    bool withContext(std::uint32_t number, const std::function<void()>& work);
    void release(std::uint32_t thread);
    void destroy();
    void destroy(Context& old);
    bool readSurface(std::uint32_t number, Picture& picture);
    void comparePicture();
    void swap();
    void resize();
    void writeMapped();
    void compareReturned();
    void playEvent();

    // PlayedArguments.cpp
    NameTable& tableOf(ObjectKind kind);
    std::optional<std::uint64_t> findName(ObjectKind kind, std::uint64_t captured);
    static NameTable& tableOf(Context& of, ObjectKind kind);
    // A name that the program made up: it gets one that the driver gives.
    std::optional<std::uint64_t> makeName(ObjectKind kind);
    std::uint64_t nameNow(ObjectKind kind, std::uint64_t captured);
    void forgetNames(std::size_t parameter, ObjectKind kind);
    static std::uint32_t wordAt(std::string_view bytes, std::size_t offset);
    std::int64_t locationNow(std::int64_t captured);
    std::uint64_t currentProgram();
    char* scratchOf(std::size_t size);

    std::uint64_t addressOf(const void* pointer) { return reinterpret_cast<std::uintptr_t>(pointer); }
    // Memory that the call reads.
    std::uint64_t input(const Parameter& parameter, const CapturedValue& value);
    std::uint64_t textInput(const CapturedValue& value);
    std::uint64_t textsInput(const CapturedValue& value);
    // The largest of the call's counts, as far as a count can be.
    std::size_t claimedCount() const;
    std::uint64_t indexListsInput(const CapturedValue& value);
    // Memory that the call writes. What it doesn't write is seen by a pattern that is not the captured one.
    std::uint64_t output(std::size_t parameter, const CapturedValue& value);
    // A client's array, or an offset in the buffer that is bound.
    std::uint64_t arrayAddress(const CapturedValue& value);
    std::uint64_t lentMemory(const CapturedValue& value);
    void prepare();

    // PlayedCalls.cpp
    // Buffers that the surface has not: there is one, and it is the front.
    unsigned int bufferNow(unsigned int buffer);
    // The accumulation buffer that the surface lacks.
    Surface* surfaceToAccumulate();
    // Calls that are played in another way.
    bool isReplaced(std::uint32_t entry);
    // Before the call.
    void begin(std::uint32_t entry);
    // The linker is to put the attributes where the capture has them.
    void placeAttributes();
    void learnUniforms();
    // Programs compute names of lists from others: they keep the names that they had.
    void keepListNames(std::uint64_t result);
    // How much of a buffer is mapped now.
    std::uint64_t mapSize(std::uint32_t entry);
    // After the call.
    void finish(std::uint32_t entry, std::uint64_t result);
    // Names that came back stand for those that were captured.
    void learnNames(std::uint64_t result);
    void compareWritten();
    void playCall();

    // CapturePlayer.cpp
    void playRecord();
    bool read();
    // The records of one thread, up to the end of a frame or the next thread's.
    void playThread(std::uint32_t thread, std::uint64_t frame);
    bool playFrame();
};

} // namespace ZLT::Capture
