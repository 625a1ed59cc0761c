#include "rv/foundation/buffer.h"

#include <cstdlib>

#ifndef RV_HUGE_PAGES
#define RV_HUGE_PAGES 1
#endif
#if RV_HUGE_PAGES && defined(__linux__)
#include <sys/mman.h>
#endif

namespace rv {

// Small arrays come from the ordinary heap.
void* allocateArray(std::size_t bytes) {
    return bytes < kHugePage ? ::operator new(bytes) : allocateHuge(bytes);
}

void* allocateHuge(std::size_t bytes) {
    void* memory = std::aligned_alloc(kHugePage, (bytes + kHugePage - 1) / kHugePage * kHugePage);
    if (memory == nullptr) throw std::bad_alloc();
#if RV_HUGE_PAGES && defined(__linux__)
    madvise(memory, bytes, MADV_HUGEPAGE);
#endif
    return memory;
}

void freeArray(void* memory, std::size_t bytes) noexcept {
    bytes < kHugePage ? ::operator delete(memory) : std::free(memory);
}

}  // namespace rv
