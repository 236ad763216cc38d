#pragma once

/// How often the calling thread has allocated memory so far, by `new`, `malloc` or their kin.
unsigned long allocations();

/// Whether they are counted: one by `new` is.
bool allocationsAreCounted();

/// Whether they can be: under Windows nothing stands in front of the allocator of another DLL.
#if defined(_WIN32)
inline constexpr bool allocationsCount = false;
#else
inline constexpr bool allocationsCount = true;
#endif
