// Sorted trees: lists that keep their objects in the order of a comparison. The library's priority queues.
//
// A balanced search tree (AVL) whose cells are threaded as the cells of a list, so the list's walks work
// on it and the first and the next cell are O(1). Equal objects stand in the order of their insertion.
//
// Keys are read through the comparison, from state that may change while an object is out of the tree.
// Only insertion compares: O(log n), O(1) where the object goes last. A tree whose order is that of an
// integer per object may say so (integerKey) and then compares integers that its cells keep. Removing a cell
// never compares. searchObject finds an object's cell by identity, not by key: O(1) through an index that is
// built on the first search, O(n) only for an object that is, or was, in the tree several times.
#pragma once

#include <memory>

#include "rv/foundation/list.h"

namespace rv {
class CellIndex;
}

class RVBinTreeCell : public RVDListCell {
public:
    RVBinTreeCell* pNextCell() const { return static_cast<RVBinTreeCell*>(RVDListCell::pNextCell()); }
    RVBinTreeCell* pPrevCell() const { return static_cast<RVBinTreeCell*>(RVDListCell::pPrevCell()); }

private:
    friend class RVBinTree;
    explicit RVBinTreeCell(RVObject* object) : RVDListCell(object) {}

    RVBinTreeCell* m_pParent = nullptr;
    RVBinTreeCell* m_pLeft = nullptr;
    RVBinTreeCell* m_pRight = nullptr;
    int m_balance = 0;  // height of the right subtree minus height of the left one: -1, 0 or 1
    int m_key = 0;      // in trees with integer keys
};

class RV_EXPORT RVBinTree : public RVDList {
    RV_OBJECT(RVBinTree)

public:
    RVBinTree();

    RVBinTreeCell* pFirstCell() const { return static_cast<RVBinTreeCell*>(RVDList::pFirstCell()); }
    RVBinTreeCell* pLastCell() const { return static_cast<RVBinTreeCell*>(RVDList::pLastCell()); }

    // Adds the object at its sorted place, behind equal ones, and gives its cell.
    RVBinTreeCell* addObject(RVObject* object);
    // Puts back a cell that removeCell took out, at the place of its object's present key. A cell of
    // another tree is destroyed and a new one takes its place. Gives the cell that is now in the tree; none
    // for a cell that still is in one.
    RVBinTreeCell* insertCell(RVBinTreeCell* cell);
    // Adds every object of the list, in its order, at its sorted place; the list stays as it is.
    void copyTransferList(const RVDList* list);

    // Append and prepend add as addObject does.
    RVDListCell* appendObject(RVObject* object) override;
    RVDListCell* prependObject(RVObject* object) override;
    RVBinTreeCell* searchObject(const RVObject* object) const override;
    RVBinTreeCell* removeCell(RVDListCell* cell) override;
    RVBinTreeCell* searchAndRemoveObject(const RVObject* object);
    void discardCell(RVDListCell* cell) override;
    void deleteAllCells() override;
    // A tree keeps its order.
    void reverse() override;

    // Negative when the first cell goes before the second one. Here 0: the order of insertion.
    virtual int virtualCellCompare(RVDListCell* first, RVDListCell* second) const;

protected:
    // Whether the tree's order is that of an integer per object, smallest first, and which one the object has
    // now. Asked once whenever an object goes in, and the same answer for all objects. Here: false; the
    // comparison is asked. A class that overrides this keeps to its comparison where a subclass changes that.
    virtual bool integerKey(RVObject* object, int& key) const;
    // Reads the integers of all objects in the tree, once there are any. Their order stays.
    void readKeys();

private:
    RVBinTreeCell* newCell(RVObject* object);
    void link(RVBinTreeCell* cell);
    template <class GoesBefore>
    RVBinTreeCell* findParent(GoesBefore goesBefore, bool& right) const;
    void attach(RVBinTreeCell* cell, RVBinTreeCell* parent, bool right);
    void unlink(RVBinTreeCell* cell);
    void replaceChild(RVBinTreeCell* parent, RVBinTreeCell* old, RVBinTreeCell* now);
    void rotateLeft(RVBinTreeCell* cell);
    void rotateRight(RVBinTreeCell* cell);
    RVBinTreeCell* rebalance(RVBinTreeCell* cell);
    void retraceGrown(RVBinTreeCell* cell);
    void retraceShrunk(RVBinTreeCell* parent, int side);

    RVBinTreeCell* m_pRoot = nullptr;
    mutable std::unique_ptr<rv::CellIndex> m_index;  // none before the first search
};

// A tree in the order of its objects. A subclass fixes the order by overriding virtualObjectCompare.
class RV_EXPORT RVSortedBinTree : public RVBinTree {
    RV_OBJECT(RVSortedBinTree)

public:
    RVSortedBinTree() = default;

    // Negative when a goes before b, positive when b goes before a, 0 when they are equal. Here: 0.
    virtual int virtualObjectCompare(RVObject* a, RVObject* b) const;
    // Compares the cells' objects by virtualObjectCompare.
    int virtualCellCompare(RVDListCell* first, RVDListCell* second) const override;
};
