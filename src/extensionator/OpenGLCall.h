#pragma once

#include "Export.h"
#include "zlt/core/memory/ZLTAllocator.h"

#include <bit>
#include <concepts>
#include <cstdint>
#include <iosfwd>

/// @file
/// A call of the chain as data: which entry, from where, and with what.

namespace ZLT::OGL {

/// How many entries the chain has: 1,833. They are numbered from 0 in the order of the virtual slots.
ZLT_OGL_API unsigned int openGLEntryCount() noexcept;

/// The GL function of an entry, "glBindTexture". Constant, and lives as long as the library.
/// @throws InternalException "Range error: number < openGLEntryCount()"
ZLT_OGL_API const char* openGLEntryName(unsigned int number);

/// The version or extension that it came with: "GL_VERSION_1_1", "GL_ARB_multitexture". As openGLEntryName().
ZLT_OGL_API const char* openGLEntryGroup(unsigned int number);

/// One argument of a call, in 64 bits. What it means is known from the entry.
struct CallValue {
    template <std::integral T>
    CallValue(T value) : bits(static_cast<std::uint64_t>(static_cast<std::int64_t>(value))) {}
    CallValue(float value) : bits(std::bit_cast<std::uint32_t>(value)) {}
    CallValue(double value) : bits(std::bit_cast<std::uint64_t>(value)) {}
    CallValue(const volatile void* value) : bits(reinterpret_cast<std::uintptr_t>(value)) {}

    std::uint64_t bits;
};

/// One call on its way through a layer. Lives as long as the call: keep what you need of it, not the object.
class ZLT_OGL_API OpenGLCall {
public:
    /// @param number  of the entry
    /// @param file    the caller's file; kept by its address, may be null
    /// @param line    the caller's line
    /// @param values  one for each parameter of the entry, kept by its address; null where there are none
    OpenGLCall(unsigned int number, const char* file, unsigned int line, const CallValue* values) noexcept
        : file_(file), values_(values), number_(number), line_(line) {}

    /// The entry: its virtual slot, from 0.
    unsigned int number() const noexcept { return number_; }
    /// "glBindTexture".
    const char* name() const { return openGLEntryName(number_); }
    /// "GL_VERSION_1_1", "GL_ARB_multitexture".
    const char* group() const { return openGLEntryGroup(number_); }
    /// Where the client made the call, as it was handed to the entry.
    const char* file() const noexcept { return file_; }
    unsigned int line() const noexcept { return line_; }
    /// The arguments, one for each parameter of the entry. Null where there are none.
    const CallValue* values() const noexcept { return values_; }

    /// Writes the arguments as the trace has them (docs/trace-format.md), without the brackets:
    /// "GL_TEXTURE_2D, 5". Like the trace it reads what a pointer to characters or bytes points at.
    void writeArguments(std::ostream& out) const;
    /// The same as text.
    String arguments() const;

    /// Writes the arguments for a reader: constants by what they mean there ("GL_TRIANGLES", "GL_ONE",
    /// "GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT"; see ConstantNames.h), those that have no name in
    /// hexadecimal, floats as they are, and of what pointers point at only names, which are read up to 60
    /// characters. Safe after a call that failed.
    void writeReadableArguments(std::ostream& out) const;

private:
    const char* file_;
    const CallValue* values_;
    unsigned int number_;
    unsigned int line_;
};

} // namespace ZLT::OGL
