#include "HeadlessContext.h"
#include "LibraryContext.h"

void makeHeadlessContextCurrent() { static const Bench::LibraryContext context; }
