#include "rv/foundation/sorted_tree.h"

#include <vector>

#include "rv/foundation/cell_pool.h"

namespace rv {

// From an object to its cell: open addressing with linear probing, at most half full. Removal moves later
// entries of the probe sequence back, so there are no marks of removed entries.
class CellIndex {
public:
    explicit CellIndex(const RVBinTree& tree) {
        std::size_t size = 16;
        while (size < 4 * static_cast<std::size_t>(tree.length())) size *= 2;
        m_slots.resize(size);
        for (RVBinTreeCell* cell = tree.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) add(cell);
    }

    // The object's only cell; none when it has none, or several. Of several the last one that is left is
    // looked for in the tree.
    RVBinTreeCell* find(const RVObject* object, const RVBinTree& tree, bool& several) {
        Slot& slot = m_slots[position(object)];
        several = slot.count > 1;
        if (slot.count != 1) return nullptr;
        if (slot.cell == nullptr) {
            slot.cell = tree.pFirstCell();
            while (slot.cell->pObject() != object) slot.cell = slot.cell->pNextCell();
        }
        return slot.cell;
    }

    void add(RVBinTreeCell* cell) {
        if (2 * (m_used + 1) > m_slots.size()) grow();
        Slot& slot = m_slots[position(cell->pObject())];
        if (slot.count++ == 0) {
            slot.object = cell->pObject();
            slot.cell = cell;
            ++m_used;
        }
    }

    // Forgets a cell that has left the tree.
    void remove(const RVBinTreeCell* cell) {
        std::size_t hole = position(cell->pObject());
        Slot& slot = m_slots[hole];
        if (slot.count == 0) return;
        if (--slot.count > 0) {
            slot.cell = nullptr;  // perhaps another one
            return;
        }
        --m_used;
        slot = Slot{};
        const std::size_t mask = m_slots.size() - 1;
        for (std::size_t next = (hole + 1) & mask; m_slots[next].count != 0; next = (next + 1) & mask) {
            const std::size_t home = addressHash(m_slots[next].object) & mask;
            if (((next - home) & mask) >= ((next - hole) & mask)) {
                m_slots[hole] = m_slots[next];
                m_slots[next] = Slot{};
                hole = next;
            }
        }
    }

private:
    struct Slot {
        const RVObject* object = nullptr;
        RVBinTreeCell* cell = nullptr;
        std::size_t count = 0;  // of the object's cells in the tree; 0 in a free slot
    };

    // The slot of the object, or the free one where it would go.
    std::size_t position(const RVObject* object) const {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t i = addressHash(object) & mask;
        while (m_slots[i].count != 0 && m_slots[i].object != object) i = (i + 1) & mask;
        return i;
    }

    void grow() {
        std::vector<Slot> old(2 * m_slots.size());
        old.swap(m_slots);
        for (const Slot& slot : old) {
            if (slot.count != 0) m_slots[position(slot.object)] = slot;
        }
    }

    std::vector<Slot> m_slots;
    std::size_t m_used = 0;
};

}  // namespace rv

RVBinTree::RVBinTree() { m_sorted = true; }

RVBinTree::RVBinTree(const RVBinTree& other, RVDeepFlagEnum) : RVBinTree() { RVBinTree::copyObject(&other); }

RVBinTree::~RVBinTree() = default;

// The other tree's order is taken over as it stands: nothing is compared, since a subclass may not have
// its own members yet.
RVBinTree& RVBinTree::operator=(const RVBinTree& other) {
    if (this == &other) return *this;
    RVBinTree::deleteAllCells();
    for (const RVBinTreeCell* cell = other.pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
        RVBinTreeCell* copy = newCell(cell->pObject());
        copy->m_key = cell->m_key;
        attach(copy, pLastCell(), true);
    }
    return *this;
}

RV_OBJECT_COPY_IMPL(RVBinTree)

RVBinTreeCell* RVBinTree::newCell(RVObject* object) {
    if (m_pPool == nullptr) m_pPool = rv::CellPool::create(sizeof(RVBinTreeCell));
    return ::new (m_pPool->allocate()) RVBinTreeCell(object);
}

RVBinTreeCell* RVBinTree::addObject(RVObject* object) {
    RVBinTreeCell* cell = newCell(object);
    try {
        link(cell);
    } catch (...) {
        m_pPool->recycle(cell);
        throw;
    }
    return cell;
}

RVBinTreeCell* RVBinTree::insertCell(RVBinTreeCell* cell) {
    if (cell == nullptr || cell->isInList()) return nullptr;
    if (cell->pool() != m_pPool) {
        RVBinTreeCell* own = addObject(cell->pObject());
        delete cell;
        return own;
    }
    link(cell);
    m_pPool->comeBack();
    return cell;
}

void RVBinTree::copyTransferList(const RVDList* list) { copyAllCells(list); }

RVDListCell* RVBinTree::appendObject(RVObject* object) { return addObject(object); }

RVDListCell* RVBinTree::prependObject(RVObject* object) { return addObject(object); }

RVBinTreeCell* RVBinTree::searchObject(const RVObject* object) const {
    if (m_index == nullptr) m_index = std::make_unique<rv::CellIndex>(*this);
    bool several = false;
    RVBinTreeCell* cell = m_index->find(object, *this, several);
    return several ? static_cast<RVBinTreeCell*>(RVDList::searchObject(object)) : cell;
}

RVBinTreeCell* RVBinTree::removeCell(RVDListCell* listCell) {
    if (listCell == nullptr || !listCell->isInList()) return nullptr;
    auto* cell = static_cast<RVBinTreeCell*>(listCell);
    unlink(cell);
    cell->setOut(m_pPool);
    m_pPool->setAside();
    return cell;
}

RVBinTreeCell* RVBinTree::searchAndRemoveObject(const RVObject* object) {
    return removeCell(searchObject(object));
}

void RVBinTree::discardCell(RVDListCell* listCell) {
    if (listCell == nullptr || !listCell->isInList()) return;
    unlink(static_cast<RVBinTreeCell*>(listCell));
    m_pPool->recycle(listCell);
}

void RVBinTree::deleteAllCells() {
    RVDList::deleteAllCells();
    m_pRoot = nullptr;
    m_index.reset();
}

void RVBinTree::reverse() {}

int RVBinTree::virtualCellCompare(RVDListCell*, RVDListCell*) const { return 0; }

bool RVBinTree::integerKey(RVObject*, int&) const { return false; }

void RVBinTree::readKeys() {
    for (RVBinTreeCell* cell = pFirstCell(); cell != nullptr; cell = cell->pNextCell()) {
        integerKey(cell->pObject(), cell->m_key);
    }
}

// The cell below which a new one goes, and on which side: behind all that it does not go before.
template <class GoesBefore>
RVBinTreeCell* RVBinTree::findParent(GoesBefore goesBefore, bool& right) const {
    RVBinTreeCell* parent = pLastCell();
    right = true;
    if (parent == nullptr || !goesBefore(parent)) return parent;
    for (RVBinTreeCell* next = m_pRoot; next != nullptr; next = right ? next->m_pRight : next->m_pLeft) {
        parent = next;
        right = !goesBefore(parent);
    }
    return parent;
}

// All comparisons come before the first change, so a comparison that throws leaves the tree as it was.
void RVBinTree::link(RVBinTreeCell* cell) {
    bool right = true;
    RVBinTreeCell* const parent =
        integerKey(cell->pObject(), cell->m_key)
            ? findParent([key = cell->m_key](const RVBinTreeCell* at) { return key < at->m_key; }, right)
            : findParent([=, this](RVBinTreeCell* at) { return virtualCellCompare(cell, at) < 0; }, right);
    if (m_index != nullptr) m_index->add(cell);
    attach(cell, parent, right);
}

// Hangs the cell below a parent that has no child on that side; no parent makes it the root.
void RVBinTree::attach(RVBinTreeCell* cell, RVBinTreeCell* parent, bool right) {
    cell->m_pParent = parent;
    cell->m_pLeft = cell->m_pRight = nullptr;
    cell->m_balance = 0;
    if (parent == nullptr) {
        m_pRoot = cell;
        linkLast(cell);
        return;
    }
    RVDListCell* const behind = right ? parent->pNextCell() : parent;
    (right ? parent->m_pRight : parent->m_pLeft) = cell;
    if (behind == nullptr) {
        linkLast(cell);
    } else {
        linkBefore(cell, behind);
    }
    retraceGrown(cell);
}

void RVBinTree::unlink(RVBinTreeCell* cell) {
    RVBinTreeCell* const parent = cell->m_pParent;
    if (cell->m_pLeft != nullptr && cell->m_pRight != nullptr) {
        // The next cell, leftmost in the right subtree, takes the place.
        RVBinTreeCell* const heir = cell->pNextCell();
        RVBinTreeCell* shrunk = heir;
        int side = 1;
        if (heir->m_pParent != cell) {
            shrunk = heir->m_pParent;
            side = -1;
            replaceChild(shrunk, heir, heir->m_pRight);
            heir->m_pRight = cell->m_pRight;
            heir->m_pRight->m_pParent = heir;
        }
        heir->m_pLeft = cell->m_pLeft;
        heir->m_pLeft->m_pParent = heir;
        heir->m_balance = cell->m_balance;
        replaceChild(parent, cell, heir);
        retraceShrunk(shrunk, side);
    } else {
        const int side = parent != nullptr && parent->m_pRight == cell ? 1 : -1;
        replaceChild(parent, cell, cell->m_pLeft != nullptr ? cell->m_pLeft : cell->m_pRight);
        retraceShrunk(parent, side);
    }
    RVDList::unlink(cell);
    if (m_index != nullptr) m_index->remove(cell);
}

void RVBinTree::replaceChild(RVBinTreeCell* parent, RVBinTreeCell* old, RVBinTreeCell* now) {
    if (parent == nullptr) {
        m_pRoot = now;
    } else {
        (parent->m_pLeft == old ? parent->m_pLeft : parent->m_pRight) = now;
    }
    if (now != nullptr) now->m_pParent = parent;
}

void RVBinTree::rotateLeft(RVBinTreeCell* cell) {
    RVBinTreeCell* const up = cell->m_pRight;
    replaceChild(cell->m_pParent, cell, up);
    cell->m_pRight = up->m_pLeft;
    if (cell->m_pRight != nullptr) cell->m_pRight->m_pParent = cell;
    up->m_pLeft = cell;
    cell->m_pParent = up;
}

void RVBinTree::rotateRight(RVBinTreeCell* cell) {
    RVBinTreeCell* const up = cell->m_pLeft;
    replaceChild(cell->m_pParent, cell, up);
    cell->m_pLeft = up->m_pRight;
    if (cell->m_pLeft != nullptr) cell->m_pLeft->m_pParent = cell;
    up->m_pRight = cell;
    cell->m_pParent = up;
}

// Mends a cell whose subtrees differ in height by two and gives the new root of its subtree, whose balance
// is 0 exactly when the subtree has lost one level.
RVBinTreeCell* RVBinTree::rebalance(RVBinTreeCell* cell) {
    const bool rightHeavy = cell->m_balance > 0;
    const int sign = rightHeavy ? 1 : -1;
    RVBinTreeCell* const child = rightHeavy ? cell->m_pRight : cell->m_pLeft;
    if (child->m_balance != -sign) {
        rightHeavy ? rotateLeft(cell) : rotateRight(cell);
        cell->m_balance = child->m_balance == 0 ? sign : 0;
        child->m_balance = child->m_balance == 0 ? -sign : 0;
        return child;
    }
    RVBinTreeCell* const top = rightHeavy ? child->m_pLeft : child->m_pRight;
    if (rightHeavy) {
        rotateRight(child);
        rotateLeft(cell);
    } else {
        rotateLeft(child);
        rotateRight(cell);
    }
    cell->m_balance = top->m_balance == sign ? -sign : 0;
    child->m_balance = top->m_balance == -sign ? sign : 0;
    top->m_balance = 0;
    return top;
}

// The subtree of the cell has gained one level.
void RVBinTree::retraceGrown(RVBinTreeCell* cell) {
    for (RVBinTreeCell* parent = cell->m_pParent; parent != nullptr;
         cell = parent, parent = cell->m_pParent) {
        parent->m_balance += cell == parent->m_pRight ? 1 : -1;
        if (parent->m_balance == 0) return;
        if (parent->m_balance == 2 || parent->m_balance == -2) {
            rebalance(parent);
            return;
        }
    }
}

// The subtree on the given side (1 right, -1 left) of the parent has lost one level.
void RVBinTree::retraceShrunk(RVBinTreeCell* parent, int side) {
    while (parent != nullptr) {
        parent->m_balance -= side;
        if (parent->m_balance == 1 || parent->m_balance == -1) return;
        RVBinTreeCell* const top = parent->m_balance == 0 ? parent : rebalance(parent);
        if (top->m_balance != 0) return;
        parent = top->m_pParent;
        side = parent != nullptr && parent->m_pRight == top ? 1 : -1;
    }
}

RV_OBJECT_IMPL(RVSortedBinTree)

int RVSortedBinTree::virtualObjectCompare(RVObject*, RVObject*) const { return 0; }

int RVSortedBinTree::virtualCellCompare(RVDListCell* first, RVDListCell* second) const {
    return virtualObjectCompare(first->pObject(), second->pObject());
}
