#pragma once

/// How often the calling thread has allocated memory so far, by `new`, `malloc` or their kin.
unsigned long allocations();

/// Whether they are counted: one by `new` is.
bool allocationsAreCounted();
