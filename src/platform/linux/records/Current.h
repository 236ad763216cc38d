#pragma once

#include "platform/linux/records/Records.h"

namespace ZLT::Platform {

/// A pair that is current on a thread.
struct Current {
    HDC device = nullptr;
    HDC read = nullptr;
    HGLRC context = nullptr;
};

/// What is current on the calling thread of the contexts that were made here, as far as it is known. Without
/// a destructor, so that reading it takes no more than its address, and static objects may ask at the end.
extern constinit thread_local Current here;

/// The records of `here`, which live as long as they are current, whatever was destroyed.
struct Pins {
    std::shared_ptr<Drawable> draw;
    std::shared_ptr<Drawable> read;
    std::shared_ptr<ContextRecord> context;
};

/// Enters a pair whose drawables and context were counted as current already. The caller holds the lock.
void setHere(const Pins& pair);
/// Takes out what is in `here`, and counts it as current no more. The caller holds the lock, and lets the
/// result go when it no longer does: the last pin of a window ends what is beneath it.
[[nodiscard]] Pins takeHere();
/// Of `here`, or null. For the calling thread alone, with or without the lock.
const Pins* pinned();

} // namespace ZLT::Platform
