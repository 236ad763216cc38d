#pragma once

#include "zlt/core/Enforce.h"
#include "zlt/core/memory/ZLTAllocator.h"
#include "zlt/core/memory/ZLTDeleter.h"

#include <cstddef>
#include <vector>

namespace ZLT::OGL {

/// A vector of pointers that owns what they point at: objects made with `new (MemoryType(0), file, line) T`,
/// or null. Clearing and destroying it destroys and frees them.
template <class T>
class AutoVector {
public:
    AutoVector() = default;
    AutoVector(const AutoVector&) = delete;
    AutoVector& operator=(const AutoVector&) = delete;
    ~AutoVector() { clear(); }

    std::size_t size() const { return elements_.size(); }
    /// @param index  below size(), not checked
    T* operator[](std::size_t index) const { return elements_[index]; }

    void clear() {
        for (T* element : elements_)
            ZLTDeleter<T>()(element);
        elements_.clear();
    }
    /// Room for `count` elements.
    /// @throws InternalException "vector<T> too long"
    void reserve(std::size_t count) {
        checkLength(count);
        elements_.reserve(count);
    }
    /// Takes ownership of the element.
    /// @throws InternalException "vector<T> too long"; the caller keeps the element then
    void push_back(T* element) {
        checkLength(elements_.size() + 1);
        elements_.push_back(element);
    }
    /// Appends `value` until there are `count` elements. Each is owned, so it is null unless one is appended.
    /// @throws InternalException "!\"Resize to smaller size is not supported!\"", "vector<T> too long"
    void resize(std::size_t count, T* value) {
        if (count < elements_.size())
            raise(__LINE__, "!\"Resize to smaller size is not supported!\"");
        checkLength(count);
        elements_.resize(count, value);
    }
    void swap(AutoVector& other) noexcept { elements_.swap(other.elements_); }

private:
    // Under this header's name, whichever source includes it.
    [[noreturn]] static void raise(int line, const char* text) {
        Detail::raiseInternal("..\\..\\ogl\\AutoVector", line, text);
    }
    void checkLength(std::size_t count) const {
        if (count > elements_.max_size())
            raise(__LINE__, "vector<T> too long");
    }

    std::vector<T*, ZLTAllocator<T*>> elements_;
};

} // namespace ZLT::OGL
