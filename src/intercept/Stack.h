#pragma once

#include <vector>

namespace ZLT::Interception {

/// The return addresses of the calling thread's frames, from the one that is `first` on, towards the start of
/// the thread; `first` alone where the stack can't be read.
std::vector<const void*> callersOf(const void* first);

} // namespace ZLT::Interception
