// Stable sorting of a list by a subclass's comparison.
//
// Adaptive merge sort: ascending runs of the list are found, short ones lengthened by insertion, and
// merged pairwise after what already stands in place at both ends has been set aside. O(n log n)
// comparisons, O(n) on sorted, reversed and nearly sorted lists; O(n) memory.
#pragma once

#include "rv/foundation/list.h"

class RV_EXPORT RVDListSort : public RVObject {
    RV_OBJECT(RVDListSort)

public:
    RVDListSort() = default;

    // Sorts the list in place; cells move, so iterators stay on their objects. The flag has no meaning and
    // is passed as 0. A graph's own lists and sorted trees are left alone. When a comparison throws, the
    // list is as it was.
    void quickSort(RVDList* list, int flag = 0);

    // Negative when the first cell's object goes first, positive when the second's does, 0 when they keep
    // the order in which they stand. Here: 0.
    virtual int virtualCellCompare(RVDListCell* first, RVDListCell* second) const;
    // Called for every cell, in sorted order, when the list has been sorted. Does nothing here.
    virtual void virtualCellAction(RVDListCell* cell);
};
