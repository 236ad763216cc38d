// Which contexts were created to share with which.

#include "ogl/Context.h"

#include "zlt/core/Enforce.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <algorithm>
#include <vector>

namespace ZLT::OGL {

namespace {

using Group = std::vector<const Context*, ZLTAllocator<const Context*>>;
using Groups = std::vector<Group, ZLTAllocator<Group>>;

// Made by the first operation that needs it, and gone with the last group.
Groups* pvvContext = nullptr;

// Not found yet, in two values that differ: LARGE_INDEX-1 and LARGE_INDEX.
constexpr std::size_t LARGE_INDEX = 0xFFFFFFF;

void createRegistry() {
    if (!pvvContext)
        pvvContext = new (MemoryType(0), ZLT_SOURCE_FILE, __LINE__) Groups;
}

void addGroup(const Context* context) {
    createRegistry();
    pvvContext->push_back(Group(1, context));
}

bool contains(const Group& group, const Context* context) { return std::ranges::count(group, context) > 0; }

Groups::iterator groupOf(const Context* context) {
    return std::ranges::find_if(*pvvContext, [&](const Group& group) { return contains(group, context); });
}

} // namespace

void Context::_addShareContext(const Context* sibling) const {
    ZLT_ASSERT(sibling != this);
    if (!sibling) {
        addGroup(this);
        return;
    }
    createRegistry();
    const Groups::iterator outerIter = groupOf(sibling);
    ZLT_ASSERT(outerIter != pvvContext->end());
    outerIter->push_back(this);
}

// Alone, even if the platform's context shares with another: only a later context can join it.
void Context::_registerContextWrapped(const Context* context) { addGroup(context); }

void Context::_unregisterShareContext(const Context* context) {
    createRegistry();
    const Groups::iterator group = groupOf(context);
    if (group == pvvContext->end())
        return;
    group->erase(std::ranges::find(*group, context));
    if (!group->empty())
        return;
    pvvContext->erase(group);
    if (pvvContext->empty()) {
        ZLTDeleter<Groups>()(pvvContext);
        pvvContext = nullptr;
    }
}

void Context::registerSharedContext(const Context* share) { _addShareContext(share); }

void Context::unregisterSharedContext() {
    if (renderContext_)
        _unregisterShareContext(this);
}

// This context is known by its address, the current one by its handle: whichever object stands for it.
bool Context::isSharingWithCurrentContext() const {
    createRegistry();
    const HGLRC current = wglGetCurrentContext();
    if (!current)
        return false;
    std::size_t indexSource = LARGE_INDEX - 1;
    std::size_t indexQuery = LARGE_INDEX;
    // The texts of the rules are known to clients; keep their spelling.
    // clang-format off
    for (std::size_t i = 0; i < pvvContext->size(); ++i) {
        std::size_t index = 0;
        for (const Context* member : (*pvvContext)[i]) {
            if (member == this)
                indexSource = i;
            if (member->renderContext() == current)
                indexQuery = i;
            if (indexSource == indexQuery)
                return true;
            ++index;
            ZLT_ASSERT(index< LARGE_INDEX-1);
        }
    }
    ZLT_ASSERT(indexSource < LARGE_INDEX-1);
    ZLT_ASSERT(indexQuery < LARGE_INDEX-1);
    // clang-format on
    return false;
}

} // namespace ZLT::OGL
