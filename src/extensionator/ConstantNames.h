#pragma once

#include "Export.h"

#include <bit>
#include <cstdint>
#include <span>
#include <string_view>

/// @file
/// What the constants of GL are called where they are arguments. A number has one TokenName(), and small
/// numbers are many constants: 4 is GL_TRIANGLES for glBegin, and GL_LINE_BIT for glPushAttrib.

namespace ZLT::OGL {

struct NamedConstant {
    std::uint32_t value;
    const char* name; ///< constant, and lives as long as the library
};

/// The name of an enumerant that is an argument: "GL_TRIANGLES". Null for a number that is no constant's.
///
///     constantName("glBegin", 0, 4)       // "GL_TRIANGLES"
///     constantName("glBlendFunc", 0, 1)   // "GL_ONE"
///     constantName("glEnable", 0, 0xDEAD) // null
///
/// @param function   "glBegin"
/// @param parameter  its place, from 0; what is no parameter's, such as -1, for the result
ZLT_OGL_API const char* constantName(std::string_view function, unsigned int parameter, std::uint32_t value);

/// The bits of the set that a parameter is, as that of glClear; empty for one that is no set. Those of
/// several bits are the names of whole sets, and stand in front.
ZLT_OGL_API std::span<const NamedConstant> bitNames(std::string_view function, unsigned int parameter);

/// Whether an integer or a float is an enumerant all the same: the formats of glTexImage2D, and what
/// glTexParameteri and the like set.
/// @param before  the parameter in front, which may name what is set
ZLT_OGL_API bool isConstant(std::string_view function, unsigned int parameter, std::uint32_t before,
                            std::uint32_t value);

/// Calls `tell(name, bits)` for each name of which a set consists; the name is null for what is left, and for
/// an empty set.
template <class Tell>
void eachBit(std::span<const NamedConstant> names, std::uint32_t set, const Tell& tell) {
    for (const NamedConstant& whole : names)
        if (whole.value == set)
            return tell(whole.name, set);
    std::uint32_t left = set;
    for (const NamedConstant& bit : names)
        if (std::has_single_bit(bit.value) && (left & bit.value) != 0) {
            tell(bit.name, bit.value);
            left &= ~bit.value;
        }
    if (left != 0 || set == 0)
        tell(static_cast<const char*>(nullptr), left);
}

} // namespace ZLT::OGL
