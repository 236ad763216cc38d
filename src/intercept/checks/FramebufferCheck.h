#pragma once

#include "intercept/checks/CheckedContext.h"

namespace ZLT::Interception {

/// Whether what is drawn to is complete. Asks the driver.
Finding findIncompleteFramebuffer(CheckedContext& context);

} // namespace ZLT::Interception
