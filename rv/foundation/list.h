// Doubly linked lists of objects.
//
// A list never owns its objects, unless an owner says so: destroying a list, or emptying it, leaves the
// objects alone and never looks at them, so a list may outlive what it lists. A list may hold an object
// several times.
//
// The cells of a list come from a pool of the list: O(1) for appending, prepending and removing, without
// a heap allocation per cell. A graph's own lists (its nodes and edges, a node's in- and out-edges) are
// lists whose cells are part of the objects; they are changed through the graph only and refuse every
// change of their own: append and prepend give none, removals change nothing.
//
// Iteration is live: an iterator holds its cell and nothing else and reads the next one when it steps, so
// a cell appended meanwhile is reached. Step past a cell before removing it; a walk from a cell that has
// been taken out of its list ends.
#pragma once

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <new>

#include "rv/foundation/object.h"

namespace rv {
class CellPool;
class GraphAccess;
class ListAccess;
class SharedCells;
}  // namespace rv

class RV_EXPORT RVDListCell {
public:
    RVDListCell(const RVDListCell&) = delete;
    RVDListCell& operator=(const RVDListCell&) = delete;

    RVDListCell* pNextCell() const { return m_pNext; }
    RVDListCell* pPrevCell() const {
        // NOLINTNEXTLINE(performance-no-int-to-ptr)
        return isInList() ? reinterpret_cast<RVDListCell*>(m_prev) : nullptr;
    }
    RVObject* pObject() const { return m_pObject; }
    bool isInList() const { return (m_prev & kOut) == 0; }

    // A cell that removeCell gave is destroyed by `delete`, before or after its list. Deleting a cell that
    // still stands in a list does nothing.
    static void operator delete(RVDListCell* cell, std::destroying_delete_t);

    ~RVDListCell() = default;

protected:
    explicit RVDListCell(RVObject* object) : m_pObject(object) {}

private:
    friend class RVDList;
    friend class RVBinTree;
    friend class RVDListSort;
    friend class rv::GraphAccess;
    friend class rv::ListAccess;
    friend class RVNode;
    friend class RVEdge;

    friend class RVGraph;

    // m_prev holds the previous cell while the cell is in a list (0 in the first one). Otherwise its lowest
    // bit is set, and it holds the pool that the cell belongs to, or, with the next bit set as well, the
    // place at which the cell of a detached edge waits for a node.
    static constexpr std::uintptr_t kOut = 1;
    static constexpr std::uintptr_t kWaiting = 2;
    bool isWaiting() const { return (m_prev & (kOut | kWaiting)) == (kOut | kWaiting); }
    std::uint32_t waitPlace() const { return static_cast<std::uint32_t>(m_prev >> 2); }
    void setWaiting(std::uint32_t place) {
        m_pNext = nullptr;
        m_prev = std::uintptr_t{place} << 2 | kOut | kWaiting;
    }
    rv::CellPool* pool() const {
        return reinterpret_cast<rv::CellPool*>(m_prev & ~kOut);  // NOLINT(performance-no-int-to-ptr)
    }
    void prev(RVDListCell* cell) { m_prev = reinterpret_cast<std::uintptr_t>(cell); }
    void setOut(rv::CellPool* pool) {
        m_pNext = nullptr;
        m_prev = reinterpret_cast<std::uintptr_t>(pool) | kOut;
    }

    RVDListCell* m_pNext = nullptr;
    RVObject* m_pObject;
    std::uintptr_t m_prev = kOut;
};

class RV_EXPORT RVDList : public RVObject {
public:
    RVDList() = default;
    // Copies hold the same objects in the same order; assignment replaces the contents. The copy of a
    // graph's own list is a list of its own.
    RVDList(const RVDList& other, RVDeepFlagEnum flag = RVShallow);
    RVDList& operator=(const RVDList& other);
    ~RVDList() override;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVDList* cloneObject() const override;
    RVDList* cloneAttributes() const override;
    static RVDList* castDown(RVObject* object) { return static_cast<RVDList*>(object); }

    int length() const { return m_length; }
    RVDListCell* pFirstCell() const { return m_pFirst; }
    RVDListCell* pLastCell() const { return m_pLast; }
    RVObject* pFirstObject() const { return m_pFirst == nullptr ? nullptr : m_pFirst->pObject(); }
    RVObject* pLastObject() const { return m_pLast == nullptr ? nullptr : m_pLast->pObject(); }

    // The cell or object in position i, counted from 1; none when there is no such position. O(i).
    RVDListCell* pCellInPosition(int i) const;
    RVObject* pObjectInPosition(int i) const;

    // Both give the new cell.
    virtual RVDListCell* appendObject(RVObject* object);
    virtual RVDListCell* prependObject(RVObject* object);

    // The first cell that holds the object, or none. O(n).
    virtual RVDListCell* searchObject(const RVObject* object) const;

    // Takes a cell out of this list and gives it; the caller destroys it with `delete`. None, and no
    // change, for a cell that stands in no list.
    virtual RVDListCell* removeCell(RVDListCell* cell);
    // The same for the first cell that holds the object; none when there is none.
    RVDListCell* searchAndRemoveObject(const RVObject* object);
    // Takes a cell out of this list and destroys it.
    virtual void discardCell(RVDListCell* cell);

    virtual void deleteAllCells();
    // Also destroys the objects, first to last. The list is empty before the first of them is destroyed.
    // REQUIRES: no object is in the list several times, and none destroys another one that is.
    void deleteAllCellsAndObjects();

    // Append the objects of another list, or this one's own once more, in its order. The contents of this
    // list stay in front.
    void copyAllCells(const RVDList* source);
    void copyAppendList(const RVDList* source);

    virtual void reverse();

    // Graphs' own lists refuse changes (see above).
    bool isReadOnly() const { return m_readOnly; }
    // Sorted trees keep an order of their own: what is appended or prepended goes to its sorted place.
    bool isSorted() const { return m_sorted; }
    // Grows whenever the memory of all cells is given up, so that cells noted elsewhere are gone.
    std::uint32_t releaseCount() const { return m_releases; }

protected:
    RVDListCell* newLastCell(RVObject* object);
    RVDListCell* newFirstCell(RVObject* object);

private:
    friend class RVBinTree;
    friend class RVDListSort;
    friend class rv::GraphAccess;
    friend class rv::ListAccess;
    friend class rv::SharedCells;
    friend class RVGraph;
    friend class RVNode;
    friend class RVEdge;

    rv::CellPool& ownPool();
    RVDListCell* newCell(RVObject* object);
    void* newRun(std::size_t& count);
    void linkLast(RVDListCell* cell);
    void linkFirst(RVDListCell* cell);
    void linkBefore(RVDListCell* cell, RVDListCell* place);
    void unlink(RVDListCell* cell);
    void forgetCells();
    void releaseCells();

    RVDListCell* m_pFirst = nullptr;
    RVDListCell* m_pLast = nullptr;
    rv::CellPool* m_pPool = nullptr;  // where its cells are; others may have cells there as well
    int m_length = 0;
    std::uint32_t m_releases : 30 = 0;
    bool m_readOnly : 1 = false;
    bool m_sorted : 1 = false;
};

// A position in a list. It is valid, and converts to true, while it stands on a cell; otherwise pObject()
// gives none and steps do nothing.
class RVDListIter {
public:
    RVDListIter() = default;
    explicit RVDListIter(const RVDList* list, RVIterDirectionEnum direction = RVForward) {
        init(list, direction);
    }
    void init(const RVDList* list, RVIterDirectionEnum direction = RVForward) {
        m_forward = direction != RVBackward;
        m_pCell = list == nullptr ? nullptr : m_forward ? list->pFirstCell() : list->pLastCell();
    }

    explicit operator bool() const { return m_pCell != nullptr; }
    RVDListCell* pCell() const { return m_pCell; }
    RVObject* pObject() const { return m_pCell == nullptr ? nullptr : m_pCell->pObject(); }

    // ++ steps in the iterator's direction, -- against it.
    void operator++(int) { step(m_forward); }
    void operator--(int) { step(!m_forward); }
    void operator++() { step(m_forward); }
    void operator--() { step(!m_forward); }

protected:
    void step(bool forward) {
        if (m_pCell != nullptr) m_pCell = forward ? m_pCell->pNextCell() : m_pCell->pPrevCell();
    }

    RVDListCell* m_pCell = nullptr;
    bool m_forward = true;
};

namespace rv {

// Range-for over a typed list, as live as an iterator: it reads the next cell when it steps.
template <class T>
class ListRange {
public:
    using value_type = T*;
    using reference = T*;
    using pointer = void;
    using difference_type = std::ptrdiff_t;
    // It gives pointers, not references to them, so that it is a forward iterator of ranges only.
    using iterator_category = std::input_iterator_tag;
    using iterator_concept = std::forward_iterator_tag;

    ListRange() = default;
    explicit ListRange(RVDListCell* cell) : m_pCell(cell) {}
    T* operator*() const { return static_cast<T*>(m_pCell->pObject()); }
    ListRange& operator++() {
        m_pCell = m_pCell->pNextCell();
        return *this;
    }
    ListRange operator++(int) {
        const ListRange before = *this;
        ++*this;
        return before;
    }
    friend bool operator==(const ListRange&, const ListRange&) = default;

private:
    RVDListCell* m_pCell = nullptr;
};

// The lists in a list of lists, such as components, clusters or paths:
//   for (const RVNodeDList* component : rv::listsOf<RVNodeDList>(output.pComponentList())) ...
// REQUIRES: the objects of the list are lists of that type.
template <class List>
class Lists {
public:
    explicit Lists(const RVDList* lists) : m_first(lists == nullptr ? nullptr : lists->pFirstCell()) {}
    ListRange<List> begin() const { return ListRange<List>(m_first); }
    ListRange<List> end() const { return ListRange<List>(nullptr); }

private:
    RVDListCell* m_first;
};
template <class List>
Lists<List> listsOf(const RVDList* lists) {
    return Lists<List>(lists);
}

// What the library does with lists beyond their public operations.
class ListAccess {
public:
    // Appends get(0) up to get(count - 1), whose cells are made at once. Some may have been appended when
    // memory fails.
    // REQUIRES: the list keeps no order of its own, and is no graph's own list.
    template <class Get>
    static void append(RVDList& list, std::size_t count, Get get) {
        assert(!list.m_readOnly && !list.m_sorted);
        append(list, count, get, [&list](std::size_t& run) { return list.newRun(run); });
    }
    // The same with memory for cells from newRun(run), which says for how many.
    template <class Get, class NewRun>
    static void append(RVDList& list, std::size_t count, Get get, NewRun newRun) {
        for (std::size_t i = 0; i < count;) {
            std::size_t run = count - i;
            auto* cell = static_cast<RVDListCell*>(newRun(run));
            for (const std::size_t end = i + run; i < end; ++i, ++cell) {
                list.linkLast(::new (static_cast<void*>(cell)) RVDListCell(get(i)));
            }
        }
    }
};

}  // namespace rv

inline void RVDList::linkLast(RVDListCell* cell) {
    cell->m_pNext = nullptr;
    cell->prev(m_pLast);
    (m_pLast == nullptr ? m_pFirst : m_pLast->m_pNext) = cell;
    m_pLast = cell;
    ++m_length;
}

inline void RVDList::linkFirst(RVDListCell* cell) {
    cell->m_pNext = m_pFirst;
    cell->prev(nullptr);
    if (m_pFirst == nullptr) {
        m_pLast = cell;
    } else {
        m_pFirst->prev(cell);
    }
    m_pFirst = cell;
    ++m_length;
}

inline void RVDList::unlink(RVDListCell* cell) {
    RVDListCell* const before = cell->pPrevCell();
    RVDListCell* const behind = cell->m_pNext;
    (before == nullptr ? m_pFirst : before->m_pNext) = behind;
    if (behind == nullptr) {
        m_pLast = before;
    } else {
        behind->prev(before);
    }
    --m_length;
}
