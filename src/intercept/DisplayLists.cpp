#include "intercept/DisplayLists.h"

#include "platform/GL.h"

#include <algorithm>
#include <cstring>
#include <optional>

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

// The state of the context while lists are run.
struct DisplayLists::Run {
    bool inside;
    std::uint32_t base;
    std::vector<std::optional<std::uint32_t>> pushed; // the base, where the attributes have it
};

// A list that neither begins nor ends anything, nor calls another one, changes nothing.
void DisplayLists::replace(std::uint32_t list, std::vector<Step> steps) {
    const std::lock_guard guard(lock_);
    if (std::ranges::all_of(steps, [](const Step& step) { return step.kind > Step::CallFromBase; }))
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
    Run state = {inside, base, {}};
    run(list, state, 0);
    return state.inside;
}

void DisplayLists::run(std::uint32_t list, Run& state, int depth) const {
    const auto found = lists_.find(list);
    if (found == lists_.end() || depth == deepest)
        return;
    for (const Step& step : found->second)
        switch (step.kind) {
        case Step::Begin:
            state.inside = true;
            break;
        case Step::End:
            state.inside = false;
            break;
        case Step::Call:
            run(step.list, state, depth + 1);
            break;
        case Step::CallFromBase:
            run(state.base + step.list, state, depth + 1);
            break;
        case Step::SetBase:
            state.base = step.list;
            break;
        case Step::PushBase:
            state.pushed.emplace_back(state.base);
            break;
        case Step::PushOther:
            state.pushed.emplace_back();
            break;
        case Step::Pop:
            if (state.pushed.empty())
                break;
            state.base = state.pushed.back().value_or(state.base);
            state.pushed.pop_back();
            break;
        }
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
                              const void* names) {
    if (!names || !isTypeOfNames(type) || count > INT32_MAX)
        return;
    const bool matters = executes_ && !lists.isEmpty();
    for (std::uint32_t i = 0; i < count && (matters || compiles_); ++i) {
        const std::uint32_t name = nameAt(names, type, i);
        if (compiles_)
            add({DisplayLists::Step::CallFromBase, name});
        if (matters)
            inside_ = lists.after(base_ + name, base_, inside_);
    }
}

void ListBalance::compiled(DisplayLists::Step step) {
    if (compiles_)
        add(step);
}

// Of begins and ends without a call between, the last decides.
void ListBalance::add(DisplayLists::Step step) {
    using Step = DisplayLists::Step;
    if (step.kind <= Step::End && !steps_.empty() && steps_.back().kind <= Step::End)
        steps_.back() = step;
    else
        steps_.push_back(step);
}

} // namespace ZLT::Interception
