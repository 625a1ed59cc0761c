#include "rv/foundation/sorted_tree.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <stdexcept>
#include <vector>

namespace {

using testing::ElementsAre;
using Cells = std::vector<RVBinTreeCell*>;

struct Item : RVObject {
    explicit Item(int k = 0) : key(k) {}
    int key;
};

class Tree : public RVSortedBinTree {
public:
    int virtualObjectCompare(RVObject* a, RVObject* b) const override {
        if (comparisons++ == throwAt) throw std::runtime_error("no order");
        const int first = static_cast<Item*>(a)->key;
        const int second = static_cast<Item*>(b)->key;
        return first < second ? -7 : first > second;
    }
    mutable int comparisons = 0;
    int throwAt = -1;
};

Cells cellsOf(const RVBinTree& tree) {
    Cells cells;
    for (RVBinTreeCell* cell = tree.pFirstCell(); cell != nullptr; cell = cell->pNextCell())
        cells.push_back(cell);
    return cells;
}

std::vector<RVObject*> objectsOf(const RVBinTree& tree) {
    std::vector<RVObject*> objects;
    for (const RVBinTreeCell* cell : cellsOf(tree)) objects.push_back(cell->pObject());
    return objects;
}

int keyOf(const RVBinTreeCell* cell) { return static_cast<Item*>(cell->pObject())->key; }

// Objects enter and leave a tree many times, with another key when no cell of theirs is in it; beside the
// tree, the cells that it should have.
void changeAtRandom(unsigned seed, std::size_t objects, unsigned keys, int steps) {
    std::minstd_rand random(seed);
    std::vector<Item> items(objects);
    auto tree = std::make_unique<Tree>();
    Cells cells;
    Cells out;
    const auto takeOut = [&](RVBinTreeCell* cell) {
        EXPECT_EQ(tree->removeCell(cell), nullptr) << "it is out already";
        std::erase(cells, cell);
        out.push_back(cell);
    };
    const auto enter = [&](RVBinTreeCell* cell) {
        const auto behindEqual = std::upper_bound(cells.begin(), cells.end(), keyOf(cell),
                                                  [](int key, auto* other) { return key < keyOf(other); });
        cells.insert(behindEqual, cell);
    };
    for (int step = 0; step < steps && !testing::Test::HasFailure(); ++step) {
        Item* const item = &items[random() % objects];
        const auto isItem = [&](auto* cell) { return cell->pObject() == item; };
        const auto found = std::find_if(cells.begin(), cells.end(), isItem);
        RVBinTreeCell* const first = found == cells.end() ? nullptr : *found;
        if (first == nullptr) item->key = static_cast<int>(random() % keys);
        tree->comparisons = 0;
        // An insertion compares with the last cell, and from the root down an AVL tree.
        const int allowed = 2 + static_cast<int>(1.45 * std::log2(tree->length() + 2));
        EXPECT_EQ(tree->searchObject(item), first);
        const auto action = random() % 9;
        if (action < 2 && first != nullptr) {
            takeOut(tree->removeCell(cells[random() % cells.size()]));
        } else if (action == 2 && first != nullptr) {
            takeOut(tree->searchAndRemoveObject(item));
        } else if (action == 3 && first != nullptr) {
            tree->discardCell(cells.front());
            cells.erase(cells.begin());
        } else if (action == 4 && random() % 40 == 0) {
            tree->deleteAllCells();
            cells.clear();
        }
        EXPECT_EQ(tree->comparisons, 0) << "neither search nor removal compares";
        if ((action == 5 || action == 6) && !out.empty()) {
            RVBinTreeCell* const cell = out[random() % out.size()];
            std::erase(out, cell);
            EXPECT_EQ(tree->insertCell(cell), cell);
            EXPECT_EQ(tree->insertCell(cell), nullptr) << "it is in the tree";
            enter(cell);
        } else if (action > 6 && (first == nullptr || random() % 3 == 0)) {
            enter(tree->addObject(item));
        }
        EXPECT_LE(tree->comparisons, allowed);
        EXPECT_EQ(cellsOf(*tree), cells);
        EXPECT_EQ(tree->length(), static_cast<int>(cells.size()));
        auto before = cells.rbegin();
        for (RVDListIter it(tree.get(), RVBackward); it; it++) EXPECT_EQ(it.pCell(), *before++);
    }
    tree.reset();
    for (RVBinTreeCell* cell : out) delete cell;
}

TEST(SortedTree, RandomOperationsAgreeWithAModel) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        changeAtRandom(seed, 6, 3, 200);  // the same objects several times
        if (seed % 3 == 0) changeAtRandom(seed, 60, 1, 500);
        if (seed % 3 == 1) changeAtRandom(seed, 60, 1000, 800);
        if (seed % 30 == 2) changeAtRandom(seed, 1000, 50, 4000);
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

// A tree that searches by key takes quadratic time here.
TEST(SortedTree, EqualKeysCostNothing) {
    std::vector<Item> items(100000);
    Tree tree;
    for (Item& item : items) tree.addObject(&item);
    EXPECT_LT(tree.comparisons, 100000) << "one for an object that goes last";
    tree.comparisons = 0;
    std::vector<Item*> order(items.size());
    std::transform(items.begin(), items.end(), order.begin(), [](Item& item) { return &item; });
    std::shuffle(order.begin(), order.end(), std::minstd_rand(1));
    for (Item* item : order) {
        RVBinTreeCell* const cell = tree.searchObject(item);
        ASSERT_TRUE(cell != nullptr && cell->pObject() == item);
        tree.discardCell(cell);
    }
    EXPECT_EQ(tree.comparisons, 0);
    EXPECT_EQ(tree.pFirstCell(), nullptr);
}

TEST(SortedTree, TakesCellsOfAnotherTree) {
    for (const bool otherIsGone : {false, true}) {
        Item items[] = {Item(1), Item(2), Item(3)};
        auto other = std::make_unique<Tree>();
        other->addObject(&items[0]);
        RVBinTreeCell* const foreign = other->removeCell(other->addObject(&items[1]));
        if (otherIsGone) other.reset();
        Tree tree;
        tree.addObject(&items[2]);
        tree.addObject(&items[0]);
        const RVBinTreeCell* const own = tree.insertCell(foreign);
        EXPECT_EQ(own, tree.searchObject(&items[1]));
        EXPECT_THAT(objectsOf(tree), ElementsAre(&items[0], &items[1], &items[2]));
    }
}

TEST(SortedTree, AThrowingComparisonLeavesTheTreeAsItWas) {
    for (int throwAt = 0; throwAt < 5; ++throwAt) {
        std::vector<Item> items(40);
        Tree tree;
        for (int i = 0; i < 40; ++i) {
            items[static_cast<std::size_t>(i)].key = i * 17 % 40;
            tree.addObject(&items[static_cast<std::size_t>(i)]);
        }
        Item late(3);
        RVBinTreeCell* const out = tree.removeCell(tree.searchObject(&items[1]));
        items[1].key = late.key;
        const Cells before = cellsOf(tree);
        tree.throwAt = throwAt;
        tree.comparisons = 0;
        EXPECT_THROW(tree.addObject(&late), std::runtime_error);
        tree.comparisons = 0;
        EXPECT_THROW(tree.insertCell(out), std::runtime_error);
        tree.throwAt = -1;
        EXPECT_EQ(cellsOf(tree), before);
        EXPECT_EQ(tree.searchObject(&late), nullptr);
        EXPECT_EQ(tree.searchObject(&items[1]), nullptr);
        EXPECT_EQ(tree.insertCell(out), out);
        EXPECT_EQ(tree.addObject(&late)->pPrevCell(), out);
    }
}

TEST(SortedTree, IsAListThatKeepsItsOrder) {
    Item items[] = {Item(2), Item(1), Item(2), Item(0)};
    RVDList source;
    for (Item& item : items) source.appendObject(&item);
    Tree tree;
    tree.copyTransferList(&source);
    RVDList& list = tree;
    list.reverse();
    EXPECT_THAT(objectsOf(tree), ElementsAre(&items[3], &items[1], &items[0], &items[2]));
    EXPECT_EQ(source.length(), 4);
    Item middle(1);
    list.prependObject(&middle);
    EXPECT_EQ(list.pObjectInPosition(3), &middle);
    delete list.searchAndRemoveObject(&items[1]);

    // A copy takes the order over without asking for it.
    const Tree copy(tree);
    EXPECT_EQ(copy.comparisons, tree.comparisons);
    tree.deleteAllCells();
    EXPECT_THAT(objectsOf(copy), ElementsAre(&items[3], &middle, &items[0], &items[2]));
    EXPECT_EQ(copy.searchObject(&items[2]), copy.pLastCell());
}

}  // namespace
