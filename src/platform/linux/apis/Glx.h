#pragma once

#include "platform/linux/apis/Api.h"

namespace ZLT::Platform {

/// Has `closed` called in the owner's XCloseDisplay, before anything of the display goes. Once for each
/// display.
void watchForClosing(void* display, void (*closed)(void* display));

} // namespace ZLT::Platform
