#pragma once

#include <cstdint>

/// @file
/// What is in the stream of a capture beside the calls of GL. A record is a number, the number of the site
/// (for calls), and the values by the form of its function; docs/capture-format.md has it all.

namespace ZLT::Capture {

/// The records that are no calls. Their numbers are part of the format; those of the entries follow.
enum class Event : std::uint32_t {
    Function,   ///< the name and form of a function, in front of its first record
    Site,       ///< where calls come from: module or file, offset or line
    Thread,     ///< what follows is of this thread
    Context,    ///< a context that is new: its number, what it shares, version, profile, flags
    Surface,    ///< a window or pbuffer that is new: its number, size, and what its pixels have
    Current,    ///< the thread's context from here on, with its surfaces; 0 for none
    Size,       ///< a surface has another size
    Destroyed,  ///< a context is no more
    Picture,    ///< the hash of what a surface shows, in front of a swap
    Swap,       ///< a frame ends: the surface was swapped
    Array,      ///< what the following draw reads of one client array
    Written,    ///< what the program wrote to memory that the driver lent
    Returned,   ///< what the driver wrote to memory that the program lent
    Linked,     ///< where the linker put the variables of the program that is linked next
    Incomplete, ///< what could not be captured: a sentence
    End,        ///< the program ended, and nothing is missing
    Time,       ///< in front of a swap, and of the first context: nanoseconds since that one
    Group,      ///< the program begins a debug group
    GroupEnd,   ///< and ends the last one
    Label,      ///< the program calls an object something
    Marker,     ///< the program says where it is
};
inline constexpr std::uint32_t eventCount = 21;
/// The number of the first entry's records.
inline constexpr std::uint32_t firstEntry = 32;

/// What a pointer is in the stream.
enum class PointerForm : std::uint8_t {
    Null,
    Address, ///< a number: an offset in a buffer, or memory that was not read
    Inline,  ///< size and bytes
    Stored,  ///< bytes to leave out in front, number of the data
    Slice,   ///< number of the data, offset, size
};

/// Bits of the arrays' flags.
enum ArrayFlag : std::uint32_t { arrayIsNormalized = 1, arrayIsInteger = 2 };

/// The client arrays. Those with an index have a texture unit, an attribute or a symbol.
enum class ArrayKind : std::uint32_t {
    Vertex,
    Normal,
    Color,
    SecondaryColor,
    FogCoord,
    Index,
    EdgeFlag,
    TexCoord,
    Attribute,
    Weight,
    MatrixIndex,
    Tangent,
    Binormal,
    VertexWeight,
    ReplacementCode,
    Element,
    AttributeNV,
};

} // namespace ZLT::Capture
