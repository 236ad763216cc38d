#pragma once

#include "zlt/core/memory/ZLTAllocator.h"

namespace ZLT::OGL {

/// `glGetString` of the current context; a null string is an empty one.
String driverString(unsigned int name);

/// The names of the extensions of the current context, with blanks between. A core profile has no string of
/// all names: it gives them one by one, from `majorVersion` 3 on.
String driverExtensions(unsigned int majorVersion);

} // namespace ZLT::OGL
