#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <unordered_map>

/// @file
/// Which names of objects a share group has: those that were made, and those that are deleted.

namespace ZLT::Interception {

/// Kinds of objects of which GL takes any name.
enum class ObjectKind : std::uint8_t {
    Texture,
    Buffer,
    Framebuffer,
    Renderbuffer,
    Query,
    OcclusionQuery,
    AssemblyProgram,
    VertexArray,
};
/// "texture", "occlusion query".
const char* nameOf(ObjectKind kind);
/// Whether contexts that share have these in common.
constexpr bool isShared(ObjectKind kind) {
    return kind != ObjectKind::Query && kind != ObjectKind::OcclusionQuery && kind != ObjectKind::VertexArray;
}

/// What an entry does with a name.
enum class NameRole : std::uint8_t { Used, Made, Deleted };

/// A parameter that names an object, or points at names, of which the first parameter says how many.
struct NamedObject {
    unsigned int entry;
    unsigned int parameter;
    ObjectKind kind;
    NameRole role;
};
/// All of them, in the order of the entries.
std::span<const NamedObject> objectsNamed();
/// Those of one entry.
std::span<const NamedObject> objectsNamedBy(unsigned int entry);

/// The names of a share group.
class ObjectNames {
public:
    enum class State : std::uint8_t { Unknown, Made, MadeUp, Deleted };

    State stateOf(ObjectKind kind, std::uint32_t name) const;
    void set(ObjectKind kind, std::uint32_t name, State state) { states_[keyOf(kind, name)] = state; }
    /// What was never there is not deleted, and who makes names up may use them again.
    void remove(ObjectKind kind, std::uint32_t name);

private:
    static std::uint64_t keyOf(ObjectKind kind, std::uint32_t name) {
        return static_cast<std::uint64_t>(kind) << 32 | name;
    }
    std::unordered_map<std::uint64_t, State> states_;
};

} // namespace ZLT::Interception
