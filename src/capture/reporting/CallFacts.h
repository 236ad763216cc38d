#pragma once

#include "capture/CaptureFile.h"

#include <cstdint>
#include <string_view>
#include <vector>

/// @file
/// What a call is to a report, by its function.

namespace ZLT::Capture::Reporting {

/// What calls of a function do.
enum class CallKind : std::uint8_t {
    Other,
    Draw,  ///< of arrays
    Begin, ///< of immediate mode
    End,
    Vertex,     ///< of immediate mode
    Pixels,     ///< a draw of pixels: glDrawPixels, glBitmap
    Upload,     ///< to a texture
    BufferData, ///< to a buffer
    CallList,   ///< or several
};

/// Facts of one function.
struct FunctionFacts {
    CallKind kind = CallKind::Other;
    const char* stall = nullptr; ///< why calls of it wait for the graphics processor; null: they don't
    const char* habit = nullptr; ///< the title of the costly habit that calls of it are; null: of none
};
const FunctionFacts& factsOf(const Function& function);

/// A costly habit.
struct HabitRow {
    const char* title;
    const char* why;
    const char* unit;
    bool afterFirst; ///< up to the first frame that draws it is none
    double least;    ///< a frame, from which it is one
};
const HabitRow& habitNamed(std::string_view title);

/// How many vertices a draw of arrays has.
std::uint64_t verticesOf(const CapturedCall& call);
/// Whether the call waits indeed: a read-back to memory, a query for a result.
bool isStall(const CapturedCall& call);
/// Bytes of memory that the call reads.
std::uint64_t bytesRead(const CapturedCall& call);
/// Bytes that came back.
std::uint64_t bytesWritten(const CapturedCall& call);

} // namespace ZLT::Capture::Reporting
