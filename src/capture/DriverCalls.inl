#pragma once

#include "capture/DriverCalls.h"
#include "extensionator/SharedCall.h"

#include <type_traits>

namespace ZLT::Capture {

using OGL::CallPlace;

// What the driver's function takes: the chain widens half floats by value, and they are passed alike.
template <class Result, class... Parameters>
[[gnu::noinline]] Result DriverCalls::called(CallPlace place, Parameters... arguments) {
    const auto& entry = OGL::entriesOf<Result, Parameters...>[place.index];
    const auto function = reinterpret_cast<Result (*)(Parameters...)>(functionOf(entry.number));
    if (!function) [[unlikely]]
        return Result();
    return function(arguments...);
}

} // namespace ZLT::Capture
