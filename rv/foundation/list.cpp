#include "rv/foundation/list.h"

#include <utility>

#include "rv/foundation/cell_pool.h"

void RVDListCell::operator delete(RVDListCell* cell, std::destroying_delete_t) {
    if (cell->isInList() || cell->isWaiting()) return;
    rv::CellPool* const pool = cell->pool();
    if (pool != nullptr) pool->destroySetAside(cell);
}

RVDList::RVDList(const RVDList& other, RVDeepFlagEnum) {
    for (const RVDListCell* cell = other.m_pFirst; cell != nullptr; cell = cell->m_pNext)
        newLastCell(cell->m_pObject);
}

RVDList& RVDList::operator=(const RVDList& other) {
    if (this != &other && !m_readOnly) {
        deleteAllCells();
        copyAllCells(&other);
    }
    return *this;
}

RVDList::~RVDList() {
    if (m_pPool != nullptr) m_pPool->abandon();
}

void RVDList::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }

void RVDList::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }

RVDList* RVDList::cloneObject() const { return new RVDList(*this, RVShallow); }

RVDList* RVDList::cloneAttributes() const { return new RVDList(*this, RVDeep); }

RVDListCell* RVDList::pCellInPosition(int i) const {
    if (i < 1 || i > m_length) return nullptr;
    RVDListCell* cell = m_pFirst;
    while (--i > 0) cell = cell->m_pNext;
    return cell;
}

RVObject* RVDList::pObjectInPosition(int i) const {
    const RVDListCell* cell = pCellInPosition(i);
    return cell == nullptr ? nullptr : cell->pObject();
}

// A pool for new cells.
rv::CellPool& RVDList::ownPool() {
    if (m_pPool == nullptr) m_pPool = rv::CellPool::create(sizeof(RVDListCell));
    if (m_pPool->isShared()) m_pPool = rv::CellPool::createOnTop(m_pPool);
    return *m_pPool;
}

RVDListCell* RVDList::newCell(RVObject* object) { return ::new (ownPool().allocate()) RVDListCell(object); }

void* RVDList::newRun(std::size_t& count) { return ownPool().allocateRun(count); }

RVDListCell* RVDList::newLastCell(RVObject* object) {
    if (m_readOnly) return nullptr;
    RVDListCell* cell = newCell(object);
    linkLast(cell);
    return cell;
}

RVDListCell* RVDList::newFirstCell(RVObject* object) {
    if (m_readOnly) return nullptr;
    RVDListCell* cell = newCell(object);
    linkFirst(cell);
    return cell;
}

RVDListCell* RVDList::appendObject(RVObject* object) { return newLastCell(object); }

RVDListCell* RVDList::prependObject(RVObject* object) { return newFirstCell(object); }

void RVDList::linkBefore(RVDListCell* cell, RVDListCell* place) {
    RVDListCell* const before = place->pPrevCell();
    cell->m_pNext = place;
    cell->prev(before);
    (before == nullptr ? m_pFirst : before->m_pNext) = cell;
    place->prev(cell);
    ++m_length;
}

RVDListCell* RVDList::searchObject(const RVObject* object) const {
    RVDListCell* cell = m_pFirst;
    while (cell != nullptr && cell->m_pObject != object) cell = cell->m_pNext;
    return cell;
}

RVDListCell* RVDList::removeCell(RVDListCell* cell) {
    if (cell == nullptr || m_readOnly || !cell->isInList()) return nullptr;
    unlink(cell);
    cell->setOut(m_pPool);
    m_pPool->setAside();
    return cell;
}

RVDListCell* RVDList::searchAndRemoveObject(const RVObject* object) {
    return removeCell(searchObject(object));
}

void RVDList::discardCell(RVDListCell* cell) {
    if (cell == nullptr || m_readOnly || !cell->isInList()) return;
    unlink(cell);
    m_pPool->recycle(cell);
}

void RVDList::forgetCells() {
    m_pFirst = m_pLast = nullptr;
    m_length = 0;
}

void RVDList::releaseCells() {
    if (m_pPool == nullptr) return;
    if (m_pPool->isShared()) {
        m_pPool->abandon();
        m_pPool = nullptr;
        ++m_releases;
    } else if (m_pPool->hasSetAside()) {
        for (RVDListCell* cell = m_pFirst; cell != nullptr;) {
            RVDListCell* next = cell->m_pNext;
            m_pPool->recycle(cell);
            cell = next;
        }
    } else {
        m_pPool->releaseAll();
        ++m_releases;
    }
    forgetCells();
}

void RVDList::deleteAllCells() {
    if (!m_readOnly) releaseCells();
}

void RVDList::deleteAllCellsAndObjects() {
    if (m_readOnly) return;
    // The cells move to another list, so that nothing is allocated and this one is empty from now on.
    RVDList objects;
    std::swap(objects.m_pPool, m_pPool);
    std::swap(objects.m_pFirst, m_pFirst);
    std::swap(objects.m_pLast, m_pLast);
    std::swap(objects.m_length, m_length);
    if (objects.m_pFirst == nullptr) return;
    ++m_releases;
    if (m_sorted) deleteAllCells();
    for (RVDListCell* cell = objects.m_pFirst; cell != nullptr; cell = cell->m_pNext) delete cell->m_pObject;
}

// NOLINTNEXTLINE(misc-no-recursion): once, for a list that is its own source
void RVDList::copyAllCells(const RVDList* source) {
    if (source == nullptr) return;
    if (source == this) {
        const RVDList snapshot(*this);
        copyAllCells(&snapshot);
        return;
    }
    for (const RVDListCell* cell = source->m_pFirst; cell != nullptr; cell = cell->m_pNext)
        appendObject(cell->m_pObject);
}

void RVDList::copyAppendList(const RVDList* source) { copyAllCells(source); }

void RVDList::reverse() {
    if (m_readOnly || m_sorted) return;
    for (RVDListCell* cell = m_pFirst; cell != nullptr;) {
        RVDListCell* const next = cell->m_pNext;
        cell->m_pNext = cell->pPrevCell();
        cell->prev(next);
        cell = next;
    }
    std::swap(m_pFirst, m_pLast);
}
