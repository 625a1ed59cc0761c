#include "rv/foundation/owned_lists.h"

#include <utility>

#include "rv/foundation/cell_pool.h"

namespace rv {

void SharedCells::release() {
    if (m_pPool != nullptr) std::exchange(m_pPool, nullptr)->abandon();
}

void SharedCells::lendTo(RVDList& list) {
    if (m_pPool == nullptr) m_pPool = CellPool::createShared(sizeof(RVDListCell));
    m_pPool->addUser();
    list.m_pPool = m_pPool;
}

void* SharedCells::newRun(std::size_t& count) { return m_pPool->allocateRun(count); }

}  // namespace rv
