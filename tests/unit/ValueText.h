#pragma once

#include "Entries.h"

#include <set>

namespace ZLT::OGL {

/// The entries whose GLfloat is written bare.
extern const std::set<std::string> plainFloats;

/// How a layer writes an argument of `entry` that the GL headers give this type.
std::string textOf(const Entry& entry, std::string type, const FakeGL::Value& value);

} // namespace ZLT::OGL
