#pragma once

#include "capture/CapturedContext.h"
#include "capture/IndexRange.h"
#include "intercept/Lock.h"
#include "intercept/checks/CheckedEntries.h"
#include "intercept/checks/ObjectNames.h"
#include "platform/GL.h"

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <tuple>
#include <unordered_map>
#include <vector>

/// @file
/// What the checks know of a context and of what it shares. All of it was asked of the driver, and is asked
/// again after a call that may have changed it. Functions that came after the list change things unseen: so
/// nothing is reported before it was found a second time, with nothing known from before.

namespace ZLT::OGL {
class OpenGLCall;
} // namespace ZLT::OGL

namespace ZLT::Interception {

class DisplayLists;
struct ContextRecord;

/// What is wrong about a call, in words.
struct Finding {
    const char* check = nullptr; ///< its rule; null for nothing
    std::string reason;
    explicit operator bool() const { return check != nullptr; }
};

inline constexpr const char* outOfBounds = "out-of-bounds";
inline constexpr const char* unreadablePointer = "unreadable-pointer";
inline constexpr const char* incompleteFramebuffer = "incomplete-framebuffer";
inline constexpr const char* invalidProgram = "invalid-program";
inline constexpr const char* neverMade = "never-made";
inline constexpr const char* deletedName = "deleted-name";
inline constexpr const char* incompleteTexture = "incomplete-texture";

/// Functions past GL 1.1 that are asked by. Each is null where the driver has none.
struct AskedFunctions {
    PFNGLACTIVETEXTUREPROC activeTexture = nullptr;
    PFNGLCHECKFRAMEBUFFERSTATUSPROC checkFramebufferStatus = nullptr;
    PFNGLBINDRENDERBUFFERPROC bindRenderbuffer = nullptr;
    PFNGLGETRENDERBUFFERPARAMETERIVPROC getRenderbufferParameteriv = nullptr;
    PFNGLGETUNIFORMIVPROC getUniformiv = nullptr;
    /// glIsTexture and so on, in the order of ObjectKind.
    PFNGLISBUFFERPROC isObject[8] = {};
    void load();
};

/// A sampler of a program.
struct ProgramSampler {
    std::string name;
    std::uint32_t type = 0;
    std::int32_t location = 0;
};

/// What a program is made of, since it was linked.
struct ProgramRecord {
    bool isLinked = false;
    std::vector<ProgramSampler> samplers;  ///< of an array each element
    std::vector<std::uint32_t> attributes; ///< those that it reads, by their locations
    std::vector<std::pair<Capture::ArrayKind, std::uint32_t>> arrays; ///< the same of the fixed ones
};

/// A buffer's size and the indices that draws found there.
struct BufferRecord {
    std::uint64_t size = 0;
    struct Key {
        std::uint64_t offset = 0, count = 0;
        std::uint32_t type = 0, restart = 0;
        bool restarts = false;
        bool operator<(const Key& other) const {
            return std::tie(offset, count, type, restart, restarts) <
                   std::tie(other.offset, other.count, other.type, other.restart, other.restarts);
        }
    };
    std::map<Key, Capture::IndexRange> ranges;
};

/// Of contexts that share their objects. What is locked is not held while the driver is asked.
struct CheckedGroup {
    std::shared_ptr<DisplayLists> lists; ///< by which the group is known
    std::atomic<bool> isKnownFromStart = true;
    std::atomic<std::uint32_t> changes = 0; ///< of what is shared

    Lock lock;
    ObjectNames names;
    std::unordered_map<std::uint32_t, BufferRecord> buffers;
    std::unordered_map<std::uint32_t, std::uint32_t> targets; ///< of textures that were bound
    std::unordered_map<std::uint32_t, std::string> textures;  ///< why they are not complete; "" if they are
    std::unordered_map<std::uint32_t, std::shared_ptr<const ProgramRecord>> programs;
};

struct CheckedContext {
    std::shared_ptr<CheckedGroup> group;
    ObjectNames ownNames; ///< of what contexts don't share
    Capture::CapturedContext asked;
    AskedFunctions functions;
    bool hasPrograms = false, hasUnits = false;
    int fixedUnits = 0;

    std::uint8_t unknown = changesAll; ///< of Change: what has to be asked
    std::uint32_t seenChanges = 0;     ///< of the group

    std::vector<Capture::ClientArray> switchedOff; ///< arrays that were enabled, and are known
    bool areUnitsKnown = false;
    std::vector<std::uint8_t> enabled; ///< of each fixed unit the targets, a bit for each
    std::int32_t activeUnit = -1;      ///< -1 where it is not known
    std::uint32_t program = 0;
    std::shared_ptr<const ProgramRecord> programRecord;
    bool readsAllArrays = false;    ///< a vertex program reads what it wants
    bool hasOtherFragments = false; ///< units are not sampled by what is enabled in them

    void learn();
    /// Which program is in use, and what of it is known.
    void learnProgram();
    /// All that was learned is asked again, with that of the group.
    void forget();
    /// Guarded by the group's lock.
    ObjectNames& namesOf(ObjectKind kind) { return isShared(kind) ? group->names : ownNames; }
    int integer(unsigned int name) const { return asked.integer(name); }
};

/// The current context of the calling thread, which has one.
CheckedContext& checkedContext();

/// Whether one of these functions, which came after the list, was ever called.
bool wasCalledLater(const std::vector<std::size_t>& functions);
std::vector<std::size_t> laterNumbers(std::initializer_list<const char*> names);

/// A time in which the driver is asked. Nothing of it stays: no error, no message. There may be one in
/// another one.
class Asking {
public:
    explicit Asking(const OGL::OpenGLCall& call);
    ~Asking();
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;
};

/// Guards a group. Nobody may jump out of what allocates.
class GroupGuard {
public:
    explicit GroupGuard(CheckedGroup& group) : guard_(group.lock) {}

private:
    const NoSignals calm_;
    const std::lock_guard<Lock> guard_;
};

} // namespace ZLT::Interception
