#pragma once

#include "zlt/core/Memory.h"

#include <type_traits>

namespace ZLT {

/// Destroys and frees an object that was made with `new (MemoryType(0), file, line) T`. For smart pointers,
/// together with ZLTAllocator. A polymorphic `T` needs a virtual destructor, and may then be a base of the
/// object, even one that is not at its start.
template <class T>
struct ZLTDeleter {
    void operator()(T* p) const {
        if (!p)
            return;
        void* block = const_cast<std::remove_cv_t<T>*>(p);
        if constexpr (std::is_polymorphic_v<T>) {
            static_assert(std::has_virtual_destructor_v<T>, "a base needs a virtual destructor");
            block = const_cast<void*>(dynamic_cast<const volatile void*>(p));
        }
        // As with `delete`: the memory is freed even if the destructor throws.
        struct Release {
            void* block;
            ~Release() {
                ::operator delete(block, MemoryType(0), "..\\..\\zlt\\core\\memory\\ZLTDeleter", __LINE__);
            }
        };
        const Release release{block};
        p->~T();
    }
};

} // namespace ZLT
