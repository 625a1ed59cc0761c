// Lists of lists that are members of their owner.
#pragma once

#include <cstddef>
#include <memory>

#include "rv/foundation/list.h"

namespace rv {

// Makes the cells of several lists in memory that they share, and which lives as long as any of them does.
class RV_EXPORT SharedCells {
public:
    SharedCells() = default;
    SharedCells(const SharedCells&) = delete;
    SharedCells& operator=(const SharedCells&) = delete;
    ~SharedCells() { release(); }

    // Fills an empty list with get(0) up to get(count - 1).
    template <class Get>
    void fill(RVDList& list, std::size_t count, Get get) {
        if (count == 0) return;
        lendTo(list);
        ListAccess::append(list, count, get, [this](std::size_t& run) { return newRun(run); });
    }
    // Leaves the memory to the lists.
    void release();

private:
    void lendTo(RVDList& list);
    void* newRun(std::size_t& count);

    CellPool* m_pPool = nullptr;
};

// A list whose objects, lists of type List, live and die with it; copying copies them with their contents.
template <class List>
class OwnedLists {
public:
    OwnedLists() = default;
    // By the default constructor first, so that what was copied goes if a copy fails.
    OwnedLists(const OwnedLists& other) : OwnedLists() { *this = other; }
    OwnedLists& operator=(const OwnedLists& other) {
        if (this == &other) return *this;
        clear();
        copyTo(m_lists, m_cells, other);
        return *this;
    }
    ~OwnedLists() { clear(); }

    RVDList* get() const { return &m_lists; }
    RVDList* operator->() const { return &m_lists; }

    // A new empty list after all others.
    List* add() {
        return add(0, [](std::size_t) { return nullptr; });
    }
    // A new list of get(0) up to get(count - 1), made faster than by appending them.
    template <class Get>
    List* add(std::size_t count, Get get) {
        return addTo(m_lists, m_cells, count, get);
    }
    void clear() {
        m_lists.deleteAllCellsAndObjects();
        m_cells.release();
    }

    // Destroys what another list holds and fills it with copies of these lists, which are then its owner's.
    void buildCopies(RVDList& list) const {
        if (&list == &m_lists) return;
        list.deleteAllCellsAndObjects();
        SharedCells cells;
        copyTo(list, cells, *this);
    }

private:
    template <class Get>
    static List* addTo(RVDList& lists, SharedCells& cells, std::size_t count, Get get) {
        auto made = std::make_unique<List>();
        cells.fill(*made, count, get);
        lists.appendObject(made.get());
        return made.release();
    }
    static void copyTo(RVDList& lists, SharedCells& cells, const OwnedLists& from) {
        for (RVDListIter it(&from.m_lists); it; it++) {
            const auto* list = static_cast<const List*>(it.pObject());
            RVDListIter object(list);
            const auto next = [&object](std::size_t) {
                RVObject* const each = object.pObject();
                object++;
                return each;
            };
            addTo(lists, cells, static_cast<std::size_t>(list->length()), next);
        }
    }

    mutable RVDList m_lists;
    SharedCells m_cells;
};

}  // namespace rv
