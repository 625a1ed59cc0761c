#include "rv/foundation/cell_pool.h"

#include <new>
#include <utility>

namespace rv {

namespace {
constexpr std::size_t kCellsInFirstBlock = 4;
}

CellPool* CellPool::create(std::size_t cellSize) {
    const std::size_t blockSize = kCellsInFirstBlock * cellSize;
    void* memory = ::operator new(sizeof(CellPool) + blockSize);
    return ::new (memory) CellPool(cellSize, static_cast<char*>(memory) + sizeof(CellPool), blockSize);
}

CellPool* CellPool::createShared(std::size_t cellSize) {
    CellPool* pool = create(cellSize);
    pool->m_isShared = true;
    return pool;
}

CellPool* CellPool::createOnTop(CellPool* shared) {
    CellPool* pool = create(shared->m_slab.slotSize());
    pool->m_pBelow = shared;
    return pool;
}

void CellPool::releaseAll() {
    m_slab.releaseAll();
    if (m_pBelow != nullptr) std::exchange(m_pBelow, nullptr)->abandon();
}

// NOLINTNEXTLINE(misc-no-recursion): once, for the pool below
void CellPool::destroy() {
    if (m_pBelow != nullptr) m_pBelow->abandon();
    this->~CellPool();
    ::operator delete(static_cast<void*>(this));
}

void CellPool::destroySetAside(void* cell) {
    if (m_isShared) {
        abandon();
        return;
    }
    --m_setAside;
    if (!m_abandoned) {
        m_slab.recycle(cell);
    } else if (m_setAside == 0) {
        destroy();
    }
}

// Whoever gives up a shared pool last has seen what the others did with it.
// NOLINTNEXTLINE(misc-no-recursion)
void CellPool::abandon() {
    if (m_isShared) {
        if (m_users.fetch_sub(1, std::memory_order_acq_rel) == 1) destroy();
        return;
    }
    m_abandoned = true;
    if (m_setAside == 0) destroy();
}

}  // namespace rv
