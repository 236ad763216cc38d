#include "intercept/DisplayLists.h"

#include "platform/GL.h"

#include <algorithm>
#include <cstring>

namespace ZLT::Interception {

namespace {

// GL's own limit is at least this (GL_MAX_LIST_NESTING); a list may call itself.
constexpr int deepest = 64;

// As glCallLists reads them.
std::uint32_t nameAt(const void* names, std::uint32_t type, std::uint32_t index) {
    const auto* bytes = static_cast<const unsigned char*>(names);
    const auto plain = [&]<class Value>(Value value) {
        std::memcpy(&value, bytes + index * sizeof value, sizeof value);
        return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
    };
    const auto joined = [&](std::uint32_t size) {
        std::uint32_t name = 0;
        for (std::uint32_t i = 0; i < size; ++i)
            name = name << 8 | bytes[index * size + i];
        return name;
    };
    switch (type) {
    case GL_BYTE:
        return plain(std::int8_t());
    case GL_UNSIGNED_BYTE:
        return plain(std::uint8_t());
    case GL_SHORT:
        return plain(std::int16_t());
    case GL_UNSIGNED_SHORT:
        return plain(std::uint16_t());
    case GL_FLOAT:
        return plain(float());
    case GL_2_BYTES:
        return joined(2);
    case GL_3_BYTES:
        return joined(3);
    case GL_4_BYTES:
        return joined(4);
    default:
        return plain(std::uint32_t());
    }
}

bool isTypeOfNames(std::uint32_t type) { return type >= GL_BYTE && type <= GL_4_BYTES; }

} // namespace

void DisplayLists::replace(std::uint32_t list, std::vector<Step> steps) {
    const std::lock_guard guard(lock_);
    if (steps.empty())
        lists_.erase(list);
    else
        lists_[list] = std::move(steps);
    empty_ = lists_.empty();
}

void DisplayLists::erase(std::uint32_t first, std::uint32_t count) {
    const std::lock_guard guard(lock_);
    const std::uint64_t end = std::uint64_t(first) + count;
    const auto from = lists_.lower_bound(first);
    lists_.erase(from, std::find_if(from, lists_.end(), [&](const auto& list) { return list.first >= end; }));
    empty_ = lists_.empty();
}

bool DisplayLists::after(std::uint32_t list, std::uint32_t base, bool inside) const {
    const std::lock_guard guard(lock_);
    return run(list, base, inside, 0);
}

bool DisplayLists::run(std::uint32_t list, std::uint32_t base, bool inside, int depth) const {
    const auto found = lists_.find(list);
    if (found == lists_.end() || depth == deepest)
        return inside;
    for (const Step& step : found->second)
        switch (step.kind) {
        case Step::Begin:
            inside = true;
            break;
        case Step::End:
            inside = false;
            break;
        case Step::Call:
            inside = run(step.addsBase ? base + step.list : step.list, base, inside, depth + 1);
            break;
        }
    return inside;
}

void ListBalance::begun() {
    if (compiles_)
        add({DisplayLists::Step::Begin});
    if (executes_)
        inside_ = true;
}

void ListBalance::ended() {
    if (compiles_)
        add({DisplayLists::Step::End});
    if (executes_)
        inside_ = false;
}

void ListBalance::listBegun(std::uint32_t list, bool executes) {
    if (compiles_ || inside_)
        return; // the driver refuses it
    compiles_ = true;
    executes_ = executes;
    open_ = list;
    steps_.clear();
}

void ListBalance::listEnded(DisplayLists& lists) {
    if (!compiles_)
        return;
    compiles_ = false;
    executes_ = true;
    lists.replace(open_, std::move(steps_));
    steps_.clear();
}

void ListBalance::listCalled(const DisplayLists& lists, std::uint32_t list) {
    if (compiles_)
        add({DisplayLists::Step::Call, list});
    if (executes_ && !lists.isEmpty())
        inside_ = lists.after(list, base_, inside_);
}

void ListBalance::listsCalled(const DisplayLists& lists, std::uint32_t count, std::uint32_t type,
                              const void* names, std::uint32_t (*base)()) {
    if (!names || !isTypeOfNames(type) || count > INT32_MAX)
        return;
    const bool matters = executes_ && !lists.isEmpty();
    if (matters && !inside_)
        base_ = base(); // which nothing may ask for between begin and end
    for (std::uint32_t i = 0; i < count && (matters || compiles_); ++i) {
        const std::uint32_t name = nameAt(names, type, i);
        if (compiles_)
            add({DisplayLists::Step::Call, name, true});
        if (matters)
            inside_ = lists.after(base_ + name, base_, inside_);
    }
}

// Of begins and ends without a call between, the last decides.
void ListBalance::add(DisplayLists::Step step) {
    using Step = DisplayLists::Step;
    if (step.kind != Step::Call && !steps_.empty() && steps_.back().kind != Step::Call)
        steps_.back() = step;
    else
        steps_.push_back(step);
}

} // namespace ZLT::Interception
