#pragma once

#include "Png.h"

/// What the X server shows of a window, by its XID; empty where no X server has a window of this number
/// that can be seen. The server hears of a frame on another connection than this one: waits for
/// `expected`, but not for ever.
Picture screenshot(const void* window, const Picture& expected);
