#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <vector>

/// @file
/// Whether a context is between glBegin and glEnd, where an error may not be asked for. A display list may
/// begin what its caller ends, or the other way round, so lists are followed as well, by their begins and
/// ends alone.

namespace ZLT::Interception {

/// The lists of a share group that change the balance.
class DisplayLists {
public:
    /// Something that a list does when it is called. With it goes what a call by GL_LIST_BASE has to know.
    struct Step {
        enum Kind : std::uint8_t { Begin, End, Call, CallFromBase, SetBase, PushBase, PushOther, Pop } kind;
        std::uint32_t list = 0; // of a call: which; of SetBase: the base
    };

    void replace(std::uint32_t list, std::vector<Step> steps);
    void erase(std::uint32_t first, std::uint32_t count);
    /// Whether the context is between begin and end after a call of `list`.
    bool after(std::uint32_t list, std::uint32_t base, bool inside) const;
    /// Whether no list matters. Without the lock: for a look before work.
    bool isEmpty() const { return empty_; }

private:
    struct Run;
    void run(std::uint32_t list, Run& state, int depth) const;

    mutable std::mutex lock_;
    std::map<std::uint32_t, std::vector<Step>> lists_;
    bool empty_ = true;
};

/// The balance of one context. Its calls come from one thread at a time.
class ListBalance {
public:
    bool isInside() const { return inside_; }
    /// Whether calls have their effect now, and are not just put into a list.
    bool executes() const { return executes_; }
    /// Whether calls are put into a list, at once with an effect or not.
    bool compiles() const { return compiles_; }

    /// Whether the calls of lists that follow have to know GL_LIST_BASE, and may ask for it.
    bool wantsBase(const DisplayLists& lists) const { return executes_ && !inside_ && !lists.isEmpty(); }
    void setBase(std::uint32_t base) { base_ = base; }

    // Each after the driver was called.
    void begun();
    void ended();
    void listBegun(std::uint32_t list, bool executes);
    void listEnded(DisplayLists& lists);
    void listCalled(const DisplayLists& lists, std::uint32_t list);
    /// `names` are glCallLists' values, of `type`.
    void listsCalled(const DisplayLists& lists, std::uint32_t count, std::uint32_t type, const void* names);
    /// What else is compiled that changes GL_LIST_BASE.
    void compiled(DisplayLists::Step step);

private:
    void add(DisplayLists::Step step);

    bool inside_ = false;
    bool compiles_ = false; // a list is open
    bool executes_ = true;  // calls have their effect now
    std::uint32_t open_ = 0;
    std::uint32_t base_ = 0; // as it was last seen
    std::vector<DisplayLists::Step> steps_;
};

} // namespace ZLT::Interception
