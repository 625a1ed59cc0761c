// Lists of lists that are members of their owner.
#pragma once

#include <memory>

#include "rv/foundation/list.h"

namespace rv {

// A list whose objects, lists of type List, live and die with it; copying copies them with their contents.
template <class List>
class OwnedLists {
public:
    OwnedLists() = default;
    OwnedLists(const OwnedLists& other) { *this = other; }
    OwnedLists& operator=(const OwnedLists& other) {
        if (this == &other) return *this;
        clear();
        for (RVDListIter it(&other.m_lists); it; it++) *add() = *static_cast<const List*>(it.pObject());
        return *this;
    }
    ~OwnedLists() { clear(); }

    RVDList* get() const { return &m_lists; }
    RVDList* operator->() const { return &m_lists; }

    // A new empty list behind all others.
    List* add() { return addTo(m_lists); }
    void clear() { m_lists.deleteAllCellsAndObjects(); }

    // Destroys what another list holds and fills it with copies of these lists, which are then its owner's.
    void buildCopies(RVDList& list) const {
        if (&list == &m_lists) return;
        list.deleteAllCellsAndObjects();
        for (RVDListIter it(&m_lists); it; it++) *addTo(list) = *static_cast<const List*>(it.pObject());
    }

private:
    static List* addTo(RVDList& list) {
        auto made = std::make_unique<List>();
        list.appendObject(made.get());
        return made.release();
    }

    mutable RVDList m_lists;
};

}  // namespace rv
