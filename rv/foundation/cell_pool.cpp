#include "rv/foundation/cell_pool.h"

#include <new>

namespace rv {

namespace {
constexpr std::size_t kCellsInFirstBlock = 4;
}

CellPool* CellPool::create(std::size_t cellSize) {
    const std::size_t blockSize = kCellsInFirstBlock * cellSize;
    void* memory = ::operator new(sizeof(CellPool) + blockSize);
    return ::new (memory) CellPool(cellSize, static_cast<char*>(memory) + sizeof(CellPool), blockSize);
}

void CellPool::destroy() {
    this->~CellPool();
    ::operator delete(static_cast<void*>(this));
}

void CellPool::destroySetAside(void* cell) {
    --m_setAside;
    if (!m_abandoned) {
        m_slab.recycle(cell);
    } else if (m_setAside == 0) {
        destroy();
    }
}

void CellPool::abandon() {
    m_abandoned = true;
    if (m_setAside == 0) destroy();
}

}  // namespace rv
