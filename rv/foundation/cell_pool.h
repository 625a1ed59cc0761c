// Cells of lists, from chunks instead of the heap. Internal to the library.
//
// A pool belongs to one list. A cell that is taken out of the list without being destroyed stays in the
// pool's memory, so the pool outlives its list until the last such cell is destroyed.
//
// A shared pool holds cells that one owner has made for several lists at once. They are not used again, so
// that the lists may go to different threads; a list that needs more cells gets a pool of its own, on top of
// the shared one. The pool lives as long as its owner, any of the lists, or any cell that was taken out.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstring>

#include "rv/foundation/slab.h"

namespace rv {

class CellPool {
public:
    // Makes a pool and its first cells in one piece of memory.
    static CellPool* create(std::size_t cellSize);
    // For the caller, which abandons it as lists do.
    static CellPool* createShared(std::size_t cellSize);
    // For a list that has cells in a shared pool. The new pool abandons that one in the list's place.
    static CellPool* createOnTop(CellPool* shared);

    CellPool(const CellPool&) = delete;
    CellPool& operator=(const CellPool&) = delete;

    bool isShared() const { return m_isShared; }

    void* allocate() { return m_slab.allocate(); }
    void* allocateRun(std::size_t& count) { return m_slab.allocateRun(count); }
    void recycle(void* cell) {
        if (m_isShared) {
            std::memset(cell, 0, 2 * sizeof(void*));  // it reads as free
        } else {
            m_slab.recycle(cell);
        }
    }

    // Another list has cells in a shared pool.
    void addUser() { m_users.fetch_add(1, std::memory_order_relaxed); }

    // A cell leaves the list and stays alive; a cell set aside comes back, or is destroyed.
    void setAside() { m_isShared ? addUser() : static_cast<void>(++m_setAside); }
    void comeBack() { --m_setAside; }
    void destroySetAside(void* cell);

    // Makes all cells of the list free at once.
    // REQUIRES: no cell is set aside, and the pool is not shared.
    void releaseAll();
    bool hasSetAside() const { return m_setAside != 0; }

    // The list dies, and the pool with it unless cells are set aside or others use it.
    void abandon();

private:
    CellPool(std::size_t cellSize, void* block, std::size_t blockSize) : m_slab(cellSize, block, blockSize) {}
    ~CellPool() = default;
    void destroy();

    Slab m_slab;
    CellPool* m_pBelow = nullptr;  // a shared pool in which the list has cells as well
    std::size_t m_setAside = 0;
    std::atomic<std::size_t> m_users = 1;  // of a shared pool
    bool m_abandoned = false;
    bool m_isShared = false;
};

}  // namespace rv
