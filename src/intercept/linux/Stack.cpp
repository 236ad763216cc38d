#include "intercept/Stack.h"

#include <unwind.h>

namespace ZLT::Interception {

namespace {

constexpr std::size_t mostFrames = 64;

struct Walk {
    std::vector<const void*> frames;
    const void* first;
};

_Unwind_Reason_Code visit(_Unwind_Context* context, void* data) {
    auto& walk = *static_cast<Walk*>(data);
    const auto* address = reinterpret_cast<const void*>(_Unwind_GetIP(context));
    if (!address)
        return _URC_END_OF_STACK;
    if (!walk.frames.empty() || address == walk.first)
        walk.frames.push_back(address);
    return walk.frames.size() < mostFrames ? _URC_NO_REASON : _URC_END_OF_STACK;
}

} // namespace

std::vector<const void*> callersOf(const void* first) {
    Walk walk = {{}, first};
    _Unwind_Backtrace(visit, &walk);
    if (walk.frames.empty())
        walk.frames.push_back(first);
    return walk.frames;
}

} // namespace ZLT::Interception
