#pragma once

#include "intercept/checks/CheckedContext.h"

/// @file
/// Whether what a draw reads of arrays, buffers and indices is there.

namespace ZLT::Interception {

/// Looks at a draw before it is made. The context's program and arrays are known.
Finding findOutOfBounds(CheckedContext& context, const OGL::OpenGLCall& call, const DrawArguments& draw);

} // namespace ZLT::Interception
