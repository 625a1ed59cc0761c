// Arrays of numbers that are written before they are read. Internal to the library; installed, since columns
// of values are such arrays.
#pragma once

#include <cstddef>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>
#include <vector>

#include "rv/export.h"

namespace rv {

// Memory for large arrays, aligned and in huge pages where the system has them; throws std::bad_alloc.
RV_EXPORT void* allocateArray(std::size_t bytes);
RV_EXPORT void freeArray(void* memory, std::size_t bytes) noexcept;
// The same for at least so many bytes, to be freed by std::free.
inline constexpr std::size_t kHugePage = std::size_t{2} << 20;
void* allocateHuge(std::size_t bytes);

// Leaves new elements as they are unless a value is given.
template <class T>
class ArrayAllocator {
public:
    using value_type = T;
    ArrayAllocator() = default;
    template <class U>
    ArrayAllocator(const ArrayAllocator<U>&) {}

    // NOLINTBEGIN(bugprone-sizeof-expression): elements may be pointers
    T* allocate(std::size_t n) { return static_cast<T*>(allocateArray(n * sizeof(T))); }
    void deallocate(T* memory, std::size_t n) noexcept { freeArray(memory, n * sizeof(T)); }
    // NOLINTEND(bugprone-sizeof-expression)
    template <class U>
    void construct(U* place) {
        ::new (static_cast<void*>(place)) U;
    }
    template <class U, class... Args>
    void construct(U* place, Args&&... args) {
        ::new (static_cast<void*>(place)) U(std::forward<Args>(args)...);
    }
    friend bool operator==(const ArrayAllocator&, const ArrayAllocator&) { return true; }
};

// A vector whose resize does not write.
template <class T>
using Buffer = std::vector<T, ArrayAllocator<T>>;

}  // namespace rv
