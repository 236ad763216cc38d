#pragma once

#include "Bytes.h"

#include <cstdint>
#include <string_view>

/// @file
/// The values in debug information, which come in many forms.

namespace ZLT::Interception::Dwarf {

struct Sections {
    std::string_view info, abbrev, line, lineStr, str, ranges, rnglists;
};

/// The sizes of what a unit is made of.
struct Format {
    unsigned int version = 0;
    unsigned int offsetSize = 4;
    static constexpr unsigned int addressSize = 8;
};

struct AttributeForm {
    unsigned int name = 0, form = 0;
    std::int64_t constant = 0; ///< the value of all that have this form

    bool isConstant() const;
};

struct Value {
    unsigned int form = 0;
    std::uint64_t number = 0; ///< a reference is counted from the start of .debug_info
    std::string_view bytes;

    bool isAddress() const;
    bool isReference() const;
};

/// @throws std::runtime_error where the value is damaged, or in a form that GCC does not use for Windows
Value readValue(Bytes& bytes, const Format& format, const AttributeForm& attribute, std::uint64_t unitOffset);
std::string_view textOf(const Value& value, const Sections& sections);

} // namespace ZLT::Interception::Dwarf
