#include "intercept/checks/ObjectNames.h"

#include <algorithm>

namespace ZLT::Interception {

namespace {

#include "intercept/checks/NamedObjects.inl"

} // namespace

const char* nameOf(ObjectKind kind) {
    constexpr const char* names[] = {"texture", "buffer",          "framebuffer",      "renderbuffer",
                                     "query",   "occlusion query", "assembly program", "vertex array"};
    return names[static_cast<std::size_t>(kind)];
}

std::span<const NamedObject> objectsNamed() { return namedObjects; }

std::span<const NamedObject> objectsNamedBy(unsigned int entry) {
    const auto* const first = std::ranges::lower_bound(namedObjects, entry, {}, &NamedObject::entry);
    const auto* const end = std::ranges::upper_bound(namedObjects, entry, {}, &NamedObject::entry);
    return {first, end};
}

ObjectNames::State ObjectNames::stateOf(ObjectKind kind, std::uint32_t name) const {
    const auto found = states_.find(keyOf(kind, name));
    return found == states_.end() ? State::Unknown : found->second;
}

void ObjectNames::remove(ObjectKind kind, std::uint32_t name) {
    const auto found = states_.find(keyOf(kind, name));
    if (found != states_.end() && found->second == State::Made)
        found->second = State::Deleted;
}

} // namespace ZLT::Interception
