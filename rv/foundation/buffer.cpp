#include "rv/foundation/buffer.h"

#include <cstdlib>

#ifndef RV_HUGE_PAGES
#define RV_HUGE_PAGES 1
#endif
#if RV_HUGE_PAGES && defined(__linux__)
#include <sys/mman.h>
#endif

namespace rv {

namespace {
constexpr std::size_t kHugePage = std::size_t{2} << 20;
}

// Small arrays come from the ordinary heap.
void* allocateArray(std::size_t bytes) {
    if (bytes < kHugePage) return ::operator new(bytes);
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
