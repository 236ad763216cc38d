#pragma once

#include "zlt/core/Export.h"

#include <iosfwd>

namespace ZLT::Core {

/// Start and stop of the core library. A client starts the core before every other library of the family and
/// stops it after them. Start and stop are for one thread at a time.
class ZLT_CORE_API Library {
public:
    Library() = delete;

    /// Starts the core.
    /// @throws InternalException "!isInitialized_" when it is started already; nothing changes then
    static void initialize();

    /// Stops the core. Memory that is still allocated stays valid.
    /// @param remaining  when given, gets one line for each site whose memory is still allocated, as
    ///                   writeAllocations() writes it: that is how to find the texture that was never
    ///                   destroyed
    /// @throws InternalException "isInitialized_" when the core isn't started; nothing is written then
    static void terminate(std::ostream* remaining = nullptr);

    /// Whether the core is started.
    static bool isInitialized() noexcept;

private:
    static bool isInitialized_;
};

} // namespace ZLT::Core
