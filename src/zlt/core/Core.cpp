#include "zlt/core/Core.h"

#include "zlt/core/Enforce.h"
#include "zlt/core/Memory.h"

namespace ZLT::Core {

bool Library::isInitialized_ = false;

void Library::initialize() {
    ZLT_ASSERT(!isInitialized_);
    isInitialized_ = true;
}

void Library::terminate(std::ostream* remaining) {
    ZLT_ASSERT(isInitialized_);
    isInitialized_ = false;
    if (remaining)
        writeAllocations(*remaining);
}

bool Library::isInitialized() noexcept { return isInitialized_; }

} // namespace ZLT::Core
