// Cells of one list, from chunks instead of the heap. Internal to the library.
//
// A pool belongs to one list. A cell that is taken out of the list without being destroyed stays in the
// pool's memory, so the pool outlives its list until the last such cell is destroyed.
#pragma once

#include <cstddef>

#include "rv/foundation/slab.h"

namespace rv {

class CellPool {
public:
    // Makes a pool and its first cells in one piece of memory.
    static CellPool* create(std::size_t cellSize);

    CellPool(const CellPool&) = delete;
    CellPool& operator=(const CellPool&) = delete;

    void* allocate() { return m_slab.allocate(); }
    void recycle(void* cell) { m_slab.recycle(cell); }

    // A cell leaves the list and stays alive; a cell set aside comes back, or is destroyed.
    void setAside() { ++m_setAside; }
    void comeBack() { --m_setAside; }
    void destroySetAside(void* cell);

    // Makes all cells of the list free at once.
    // REQUIRES: no cell is set aside.
    void releaseAll() { m_slab.releaseAll(); }
    bool hasSetAside() const { return m_setAside != 0; }

    // The list dies, and the pool with it unless cells are set aside.
    void abandon();

private:
    CellPool(std::size_t cellSize, void* block, std::size_t blockSize) : m_slab(cellSize, block, blockSize) {}
    ~CellPool() = default;
    void destroy();

    Slab m_slab;
    std::size_t m_setAside = 0;
    bool m_abandoned = false;
};

}  // namespace rv
