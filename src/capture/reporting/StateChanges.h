#pragma once

#include "capture/CaptureFile.h"

#include <cstdint>
#include <map>
#include <optional>
#include <unordered_map>
#include <vector>

/// @file
/// Which calls set state, and which of these set it to what it was. It follows the calls and asks no driver;
/// where it doesn't know, it takes a call for one that changed something.

namespace ZLT::Capture::Reporting {

/// What a call did to the state.
enum class Effect : std::uint8_t { None, Changed, Unchanged };

/// A state of GL that calls set: a row of the table in StateChanges.cpp.
struct StateRow;

/// The state of one context.
class StateChanges {
public:
    StateChanges();

    /// After the call.
    /// @param group   the textures and programs of its share group
    /// @param failed  it raised an error, and did nothing
    Effect follow(const CapturedCall& call, StateChanges& group, bool failed);

private:
    using Key = std::uint64_t;

    Effect set(std::uint8_t state, Key key, std::uint64_t value);
    /// The same of a state that has this value in a new context.
    Effect setFrom(std::uint64_t initial, const StateRow& row, Key key, std::uint64_t value);
    Key keyOf(const StateRow& row, const CapturedCall& call, std::uint64_t extra) const;
    Effect followBlending(const CapturedCall& call, const StateRow& row);
    Effect followFaces(const CapturedCall& call, const StateRow& row);
    Effect followUniform(const CapturedCall& call, const StateRow& row, StateChanges& group);
    Effect followTexture(const CapturedCall& call, const StateRow& row, StateChanges& group);
    Effect followFramebuffer(const CapturedCall& call, const StateRow& row);
    Effect followRow(const CapturedCall& call, const StateRow& row, StateChanges& group);
    void followOther(const CapturedCall& call, StateChanges& group);
    void followStacks(const CapturedCall& call, StateChanges& group);
    void followLists(const CapturedCall& call, StateChanges& group);
    void forgetAll();
    void forget(std::uint8_t state);

    using Values = std::unordered_map<Key, std::uint64_t>;
    using Optional = std::optional<std::uint64_t>;
    /// What glPushAttrib and glPushClientAttrib keep.
    struct Kept {
        std::uint32_t mask;
        std::vector<Values> values; ///< of the states that may come back
        std::vector<std::uint32_t> generations;
        std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint64_t> textures;
        Optional unit, clientUnit, vertexArray, arrayBuffer;
    };
    /// The states that the calls of a display list set.
    struct ListStates {
        std::uint64_t states = 0; ///< a bit for each
        bool isAll = false;       ///< it can't be known which
    };
    /// The states that a group of attributes has as a whole, and those that it has in part.
    struct Extent {
        std::uint64_t whole = 0, part = 0;
    };
    static Extent extentOf(bool isClient, std::uint32_t mask);
    void restore(Kept& kept, const Extent& extent);

    std::vector<Values> values_;             ///< by the state
    std::vector<std::uint32_t> generations_; ///< of states: how often they were forgotten
    Optional unit_, clientUnit_, program_ = 0, vertexArray_ = 0, arrayBuffer_ = 0;
    std::map<std::pair<std::uint64_t, std::uint64_t>, std::uint64_t> textures_;   ///< by unit and target
    std::map<std::uint64_t, std::map<std::int64_t, std::int64_t>> uniformArrays_; ///< of programs: first, end
    std::vector<Kept> serverStack_, clientStack_;
    std::unordered_map<std::uint64_t, ListStates> lists_; ///< of a share group
    ListStates anyList_;                                  ///< what one of them has or had
    std::uint64_t list_ = 0;                              ///< that is open
    bool isCompiling_ = false, isExecuted_ = false;
};

} // namespace ZLT::Capture::Reporting
