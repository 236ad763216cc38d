// X has a BOOL of its own, and a program that uses X includes the headers in the order that it likes.
#include "platform/Platform.h"

#include <X11/Xmd.h>
#include <X11/Xproto.h>

#include <type_traits>

static_assert(sizeof(::BOOL) == 1);
static_assert(std::is_same_v<ZLT::Platform::BOOL, int>);
