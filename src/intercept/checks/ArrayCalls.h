#pragma once

#include "intercept/checks/CheckedContext.h"

/// @file
/// The calls that programs set their arrays up with. A program with client arrays makes some for each draw,
/// so what they change is taken from them, and not asked for.

namespace ZLT::Interception {

/// After a call that changed arrays.
/// @return whether the arrays are still known
bool noticeArrays(CheckedContext& context, const OGL::OpenGLCall& call);

} // namespace ZLT::Interception
