#pragma once

#include "platform/linux/apis/Api.h"
#include "platform/linux/records/Current.h"

#include <atomic>

/// @file
/// Contexts that somebody else made, by EGL or GLX: they are seen, made current again, and never destroyed.
/// All without the lock of the records.

namespace ZLT::Platform {

/// Whether a context of somebody else was ever seen: from then on nothing is known without asking. A plain
/// read.
extern std::atomic<bool> foreignContextsSeen;

/// Asks EGL and GLX what is current on this thread, and makes handles for what somebody else made.
Current askCurrent();

/// Whether EGL or GLX says that this context is current on the calling thread.
bool isCurrentNatively(const ContextRecord& context);

/// From now on, what is current on the calling thread when it ends is released.
void releaseAtThreadEnd();

/// A context was made at this native address: what had it before is gone.
void forgetContextsAt(void* display, void* native);

/// Makes the native context of `context` again, on the display of `host` and sharing with it. False, with the
/// error, and nothing is changed, when that display has no such format or refuses.
/// @param host  what the caller has read of it under the lock
bool becomeGuest(ContextRecord& context, const ContextRecord& host);

/// The context's native one is destroyed, unless it went with its display.
void destroyNative(const ContextRecord& context);

} // namespace ZLT::Platform
