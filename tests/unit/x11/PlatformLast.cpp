// The other order of PlatformFirst.cpp.
// clang-format off
#include <X11/Xmd.h>
#include <X11/Xproto.h>

#include "platform/Platform.h"
// clang-format on

#include <type_traits>

static_assert(sizeof(::BOOL) == 1);
static_assert(std::is_same_v<ZLT::Platform::BOOL, int>);
