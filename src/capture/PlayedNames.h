#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string_view>
#include <unordered_map>

/// @file
/// What the names of a capture are now.

namespace ZLT::Capture {

/// Kinds of objects, each with names of its own.
enum class ObjectKind {
    None,
    Texture,
    Buffer,
    List,
    Program, ///< and shaders, which have their names among them
    AssemblyProgram,
    Framebuffer,
    Renderbuffer,
    Query,
    Sync,
    VertexArray,
    Fence,
    OcclusionQuery,
    FragmentShader,
    VertexShader,
    Symbol,
    AsyncMarker,
    BufferRegion,
    UniformLocation,
};
/// As tables/gl_arguments.tsv calls them.
ObjectKind kindOf(std::string_view object);
/// Objects of the kind belong to one context; contexts that share others may share them or not, by the
/// driver.
bool isOfContext(ObjectKind kind);

/// Captured names, and the ones that stand for them.
class NameTable {
public:
    void set(ObjectKind kind, std::uint64_t captured, std::uint64_t now) { names_[kind][captured] = now; }
    void erase(ObjectKind kind, std::uint64_t captured) { names_[kind].erase(captured); }
    std::optional<std::uint64_t> find(ObjectKind kind, std::uint64_t captured) const;
    /// The captured name for one of now.
    std::optional<std::uint64_t> findCaptured(ObjectKind kind, std::uint64_t now) const;

private:
    std::map<ObjectKind, std::unordered_map<std::uint64_t, std::uint64_t>> names_;
};

} // namespace ZLT::Capture
