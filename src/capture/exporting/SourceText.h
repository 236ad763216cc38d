#pragma once

#include "capture/CaptureFile.h"
#include "extensionator/ConstantNames.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>

/// @file
/// Values as C++ has them.

namespace ZLT::Capture {

/// The constants of GL that sources use, with their values.
using UsedConstants = std::map<std::string, std::uint32_t, std::less<>>;

/// "0.1f", exact: the shortest text that is this value. What has no literal is made of its bits.
void appendFloat(std::string& to, float value);
void appendDouble(std::string& to, double value);
void appendNumber(std::string& to, std::int64_t value);
void appendNumber(std::string& to, std::uint64_t value);
/// With its quotes. Lines of the text are lines of the source, from the second one on indented.
void appendText(std::string& to, std::string_view text);
/// What may be in a comment, which ends at the end of the line.
void appendComment(std::string& to, std::string_view text);

/// Writes constants by name, and keeps account of them.
class ConstantText {
public:
    explicit ConstantText(UsedConstants& used) : used_(used) {}

    void use(std::string_view name, std::uint32_t value);
    /// "GL_TEXTURE_2D"; a number that is no constant's as "0x1234".
    void append(std::string& to, std::uint32_t value);
    /// The same, as an argument of the function; `parameter` is its place.
    void append(std::string& to, const Function& function, std::size_t parameter, std::uint32_t value);
    void appendBits(std::string& to, std::span<const OGL::NamedConstant> names, std::uint32_t value);

private:
    void append(std::string& to, const char* name, std::uint32_t value);

    UsedConstants& used_;
};

} // namespace ZLT::Capture
