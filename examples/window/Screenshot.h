#pragma once

#include "Png.h"

/// What the screen shows of a window, by its handle (on Linux its XID); empty where it can't be seen, as
/// without an X server.
Picture screenshot(const void* window);
