#include "platform/linux/records/Current.h"

#include <utility>

namespace ZLT::Platform {

constinit thread_local Current here;

namespace {
// A plain pointer for the same reason as `here`.
constinit thread_local Pins* pins = nullptr;
} // namespace

void setHere(const Pins& pair) {
    if (!pins)
        pins = new Pins;
    *pins = pair;
    here = {pair.draw->handle, pair.read->handle, pair.context->handle};
    pair.context->currentOn = std::this_thread::get_id();
}

Pins takeHere() {
    here = {};
    if (!pins)
        return {};
    Pins taken = std::move(*pins);
    delete std::exchange(pins, nullptr);
    taken.context->currentOn = {};
    --taken.draw->current;
    --taken.read->current;
    return taken;
}

const Pins* pinned() { return pins; }

} // namespace ZLT::Platform
