#include "rv/foundation/list_sort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

#include "rv/foundation/sorted_tree.h"

namespace {

using Keys = std::vector<int>;
using Random = std::minstd_rand;

struct Item : RVObject {
    explicit Item(int k) : key(k) {}
    int key;
};

int keyOf(const RVDListCell* cell) { return static_cast<Item*>(cell->pObject())->key; }

class Sort : public RVDListSort {
public:
    int virtualCellCompare(RVDListCell* a, RVDListCell* b) const override {
        if (comparisons++ == throwAt) throw std::runtime_error("no order");
        return keyOf(a) < keyOf(b) ? -3 : keyOf(a) > keyOf(b);
    }
    void virtualCellAction(RVDListCell* cell) override { acted.push_back(cell); }
    mutable long comparisons = 0;
    long throwAt = -1;
    std::vector<RVDListCell*> acted;
};

// A list beside the cells as they should stand.
struct Sequence {
    explicit Sequence(const Keys& keys) : items(keys.begin(), keys.end()) {
        for (Item& item : items) cells.push_back(list.appendObject(&item));
    }
    void sort(Sort& by) {
        by.quickSort(&list, 0);
        std::stable_sort(cells.begin(), cells.end(), [](auto* a, auto* b) { return keyOf(a) < keyOf(b); });
    }
    void expectOrder() const {
        EXPECT_EQ(list.length(), static_cast<int>(cells.size()));
        std::size_t i = 0;
        for (RVDListIter it(&list); it; it++) ASSERT_EQ(it.pCell(), cells[i++]);
        for (RVDListIter it(&list, RVBackward); it; it++) ASSERT_EQ(it.pCell(), cells[--i]);
    }
    std::vector<Item> items;
    RVDList list;
    std::vector<RVDListCell*> cells;
};

Keys ascending(std::size_t n) {
    Keys keys(n);
    std::iota(keys.begin(), keys.end(), 0);
    return keys;
}

Keys randomKeys(std::size_t n, unsigned range, Random& random) {
    Keys keys(n);
    for (int& key : keys) key = static_cast<int>(random() % range);
    return keys;
}

// Every key at most three places away from its own.
Keys shaken(std::size_t n, Random& random) {
    const Keys late = randomKeys(n, 4, random);
    Keys keys = ascending(n);
    const auto place = [&](int key) { return key + late[static_cast<std::size_t>(key)]; };
    std::stable_sort(keys.begin(), keys.end(), [&](int a, int b) { return place(a) < place(b); });
    return keys;
}

TEST(ListSort, AgreesWithAStableSort) {
    Random random(1);
    for (int round = 0; round < 1500 && !HasFailure(); ++round) {
        const std::size_t n = random() % (round % 50 == 0 ? 2000 : 100);
        Keys keys = randomKeys(n, random() % 2 == 0 ? 5 : 1000, random);
        // Stretches that rise or fall, so that runs of all lengths come to be merged.
        for (auto at = keys.begin(); round % 3 != 0 && at != keys.end();) {
            const auto end =
                at + std::min<std::ptrdiff_t>(keys.end() - at, 1 + static_cast<int>(random() % 60));
            std::sort(at, end);
            if (random() % 2 == 0) std::reverse(at, end);
            at = end;
        }
        SCOPED_TRACE(testing::PrintToString(keys));
        Sequence sequence(keys);
        Sort sort;
        sequence.sort(sort);
        sequence.expectOrder();
        EXPECT_EQ(sort.acted, sequence.cells) << "the hook follows the sorted order";
    }
}

TEST(ListSort, ComparesLittleOnNearlySortedLists) {
    Random random(2);
    const std::size_t n = 20000;
    const Keys rising = ascending(n);
    Keys halves = rising;
    std::rotate(halves.begin(), halves.begin() + n / 2, halves.end());
    Keys swapped = rising;
    for (int i = 0; i < 10; ++i) std::swap(swapped[random() % n], swapped[random() % n]);
    const struct {
        const char* what;
        Keys keys;
        double perCell;
    } cases[] = {
        {"sorted", rising, 1},
        {"reversed", Keys(rising.rbegin(), rising.rend()), 1},
        {"two sorted halves", halves, 1.6},
        {"ten swaps", swapped, 5},
        {"displaced by up to three", shaken(n, random), 4},
        {"random", randomKeys(n, 1U << 30, random), 1.2 * std::log2(n)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Sequence sequence(c.keys);
        Sort sort;
        sequence.sort(sort);
        sequence.expectOrder();
        EXPECT_LE(sort.comparisons, static_cast<long>(c.perCell * n));
    }
}

TEST(ListSort, AThrowingComparisonLeavesTheListAsItWas) {
    Random random(3);
    for (long throwAt = 0; throwAt < 1000; throwAt += 37) {
        Sequence sequence(randomKeys(200, 50, random));
        Sort sort;
        sort.throwAt = throwAt;
        EXPECT_THROW(sort.quickSort(&sequence.list, 0), std::runtime_error);
        sequence.expectOrder();
        EXPECT_TRUE(sort.acted.empty());
    }
}

TEST(ListSort, LeavesTreesAlone) {
    Item items[] = {Item(2), Item(1)};
    RVSortedBinTree tree;  // in the order of insertion
    for (Item& item : items) tree.addObject(&item);
    Sort sort;
    sort.quickSort(&tree, 0);
    sort.quickSort(nullptr, 0);
    EXPECT_EQ(tree.pFirstObject(), &items[0]);
}

}  // namespace
