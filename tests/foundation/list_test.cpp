#include "rv/foundation/list.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <random>
#include <thread>
#include <vector>

#include "rv/foundation/graph_iterators.h"
#include "rv/foundation/owned_lists.h"

namespace {

using testing::ElementsAre;
using Objects = std::vector<RVObject*>;
using Cells = std::vector<RVDListCell*>;

Objects walked(const RVDList& list, RVIterDirectionEnum direction = RVForward) {
    Objects objects;
    for (RVDListIter it(&list, direction); it; it++) objects.push_back(it.pObject());
    return objects;
}

void expectCells(const RVDList& list, const Cells& cells) {
    Objects expected;
    for (RVDListCell* cell : cells) {
        expected.push_back(cell->pObject());
        EXPECT_EQ(list.pCellInPosition(static_cast<int>(expected.size())), cell);
    }
    EXPECT_EQ(list.pObjectInPosition(0), nullptr);
    EXPECT_EQ(list.pObjectInPosition(static_cast<int>(cells.size()) + 1), nullptr);
    EXPECT_EQ(list.length(), static_cast<int>(cells.size()));
    EXPECT_EQ(walked(list), expected);
    EXPECT_EQ(walked(RVDList(list)), expected);
    std::reverse(expected.begin(), expected.end());
    EXPECT_EQ(walked(list, RVBackward), expected);
}

Cells cellsOf(const RVDList& list) {
    Cells cells;
    for (RVDListIter it(&list); it; it++) cells.push_back(it.pCell());
    return cells;
}

// A few objects enter and leave a list many times; beside it, the cells that it should have. At first it has
// its cells in memory that it shares with another list.
void changeAtRandom(unsigned seed) {
    std::minstd_rand random(seed);
    RVObject objects[8];
    const auto any = [&](std::size_t) { return &objects[random() % 8]; };
    auto owner = std::make_unique<rv::OwnedLists<RVDList>>();
    std::unique_ptr<RVDList> list(owner->add(seed % 12, any));
    delete owner->get()->searchAndRemoveObject(list.get());
    owner->add(3, any);
    Cells cells = cellsOf(*list);
    Cells out;
    for (int step = 0; step < 200 && !testing::Test::HasFailure(); ++step) {
        RVObject* const object = &objects[random() % 8];
        auto first =
            std::find_if(cells.begin(), cells.end(), [&](auto* cell) { return cell->pObject() == object; });
        RVDListCell* const cell = first == cells.end() ? nullptr : *first;
        EXPECT_EQ(list->searchObject(object), cell);
        const auto action = random() % (cells.size() > 40 ? 6 : 12);
        if (action < 2 && cell != nullptr) {
            cells.erase(first);
            out.push_back(cell);
            EXPECT_EQ(action == 0 ? list->removeCell(cell) : list->searchAndRemoveObject(object), cell);
            EXPECT_EQ(list->removeCell(cell), nullptr) << "it is out already";
            EXPECT_TRUE(cell->pNextCell() == nullptr && cell->pPrevCell() == nullptr);
        } else if (action == 2 && cell != nullptr) {
            cells.erase(first);
            list->discardCell(cell);
        } else if (action == 3 && !out.empty()) {
            delete out.back();
            out.pop_back();
        } else if (action == 4) {
            list->reverse();
            std::reverse(cells.begin(), cells.end());
        } else if (action == 5 && random() % 4 == 0) {
            list->deleteAllCells();
            cells.clear();
        } else if (action == 6) {
            list->copyAllCells(list.get());
            const std::size_t length = cells.size();
            for (std::size_t i = 0; i < length; ++i) {
                cells.push_back(list->pCellInPosition(static_cast<int>(length + i) + 1));
                EXPECT_EQ(cells.back()->pObject(), cells[i]->pObject());
            }
        } else if (action == 7 && random() % 4 == 0) {
            rv::ListAccess::append(*list, random() % 9, any);
            cells = cellsOf(*list);
        } else if (action == 5) {
            owner.reset();
        } else if (action == 7 || action == 8) {
            cells.insert(cells.begin(), list->prependObject(object));
        } else if (action > 8) {
            cells.push_back(list->appendObject(object));
        }
        expectCells(*list, cells);
    }
    list.reset();
    for (RVDListCell* cell : out) delete cell;  // a cell may outlive its list
}

TEST(List, RandomOperationsAgreeWithAModel) {
    for (unsigned seed = 0; seed < 60; ++seed) {
        changeAtRandom(seed);
        ASSERT_FALSE(HasFailure()) << "seed " << seed;
    }
}

TEST(OwnedLists, MayLoseListsAndCells) {
    RVObject objects[3];
    const auto all = [&objects](std::size_t i) { return &objects[i]; };
    auto lists = std::make_unique<rv::OwnedLists<RVDList>>();
    lists->add(3, all);
    lists->add()->appendObject(&objects[2]);
    lists->add(2, all);
    const auto contents = [](const RVDList& listOfLists) {
        std::vector<Objects> each;
        for (RVObject* list : walked(listOfLists)) each.push_back(walked(*RVDList::castDown(list)));
        return each;
    };
    const std::vector<Objects> expected = contents(*lists->get());
    EXPECT_THAT(expected, ElementsAre(Objects{&objects[0], &objects[1], &objects[2]}, Objects{&objects[2]},
                                      Objects{&objects[0], &objects[1]}));

    const rv::OwnedLists<RVDList> copy(*lists);
    RVDList copies;
    lists->buildCopies(copies);
    auto* const taken = RVDList::castDown((*lists)->pFirstObject());
    RVDListCell* const cell = RVDList::castDown((*lists)->pLastObject())
                                  ->removeCell(RVDList::castDown((*lists)->pLastObject())->pFirstCell());
    delete (*lists)->searchAndRemoveObject(taken);
    // The taken list changes in another thread while its owner goes on.
    std::thread other([&] {
        for (int i = 0; i < 100; ++i) {
            taken->appendObject(&objects[1]);
            taken->discardCell(taken->pFirstCell());
        }
    });
    for (int i = 0; i < 100; ++i) {
        lists->add(2, all);
        if (i % 10 == 0) lists->clear();
    }
    lists.reset();
    other.join();
    EXPECT_EQ(walked(*taken), Objects(3, &objects[1]));
    EXPECT_EQ(cell->pObject(), &objects[0]);
    delete cell;
    delete taken;
    EXPECT_EQ(contents(*copy.get()), expected);
    EXPECT_EQ(contents(copies), expected);
    copies.deleteAllCellsAndObjects();
}

TEST(List, WalksAreLive) {
    RVGraph graph;
    RVNode* const n[] = {graph.addNode(0), graph.addNode(0), graph.addNode(0), graph.addNode(0)};
    RVNodeDList list;
    list.appendNode(n[0]);
    Objects seen;
    for (RVNodeDListIter it(&list); it; it++) {
        seen.push_back(it.pNode());
        if (seen.size() < 3) list.appendNode(n[seen.size()]);
    }
    for (RVNode* node : list) {
        seen.push_back(node);
        if (list.length() < 4) list.appendNode(n[3]);
    }
    EXPECT_THAT(seen, ElementsAre(n[0], n[1], n[2], n[0], n[1], n[2], n[3]));

    // Backward, what is appended stays behind and what is prepended is reached.
    seen.clear();
    for (RVNodeDListIter it(&list, RVBackward); it; it++) {
        seen.push_back(it.pNode());
        if (list.length() == 4) list.appendNode(n[0]);
        if (list.length() == 5) list.prependNode(n[1]);
    }
    EXPECT_THAT(seen, ElementsAre(n[3], n[2], n[1], n[0], n[1]));
}

TEST(List, StepsPastWhatIsRemovedAndBothWays) {
    RVObject objects[5];
    RVDList list;
    for (RVObject& object : objects) list.appendObject(&object);
    for (RVDListIter it(&list); it;) {
        RVDListCell* const cell = it.pCell();
        it++;
        if (cell->pObject() != &objects[0]) list.discardCell(cell);
        if (list.length() == 3) break;
    }
    EXPECT_THAT(walked(list), ElementsAre(&objects[0], &objects[3], &objects[4]));

    RVDListIter it(&list, RVBackward);
    it++;
    EXPECT_EQ(it.pObject(), &objects[3]);
    it--;
    EXPECT_EQ(it.pObject(), &objects[4]);
    it--;
    it++;
    EXPECT_TRUE(!it && it.pObject() == nullptr) << "an iterator that has left the list does not come back";

    it.init(&list);
    RVDListCell* const cell = list.removeCell(it.pCell());
    it++;
    EXPECT_FALSE(it) << "a walk from a cell that was taken out ends";
    delete cell;
    delete list.pFirstCell();
    EXPECT_EQ(list.length(), 2) << "a cell that stands in its list is not destroyed";
    EXPECT_FALSE(RVDListIter(nullptr));
}

// Notes in which order the objects of a list die, and whether the list is empty by then.
struct Mortal : RVObject {
    Mortal(const RVDList& l, std::vector<int>& d, int n) : list(l), deaths(d), number(n) {}
    ~Mortal() override { deaths.push_back(list.length() == 0 ? number : -1); }
    const RVDList& list;
    std::vector<int>& deaths;
    int number;
};

TEST(List, DestroysItsObjectsOnlyWhenAskedTo) {
    RVDList list;
    std::vector<int> deaths;
    for (int i = 1; i <= 3; ++i) list.appendObject(new Mortal(list, deaths, i));
    const RVDList copy(list);
    list.deleteAllCells();
    EXPECT_TRUE(deaths.empty());
    list.copyAppendList(&copy);
    list.deleteAllCellsAndObjects();
    EXPECT_THAT(deaths, ElementsAre(1, 2, 3));
    EXPECT_EQ(copy.length(), 3) << "a list may outlive what it lists";
}

TEST(List, AGraphsOwnListsRefuseChanges) {
    RVGraph graph;
    RVNode* const a = graph.addNode(0);
    RVNode* const b = graph.addNode(0);
    for (RVNode* source : {a, a, b}) graph.addEdge(source, b, 0);
    RVDList other;
    other.appendObject(b);
    const std::function<bool(RVDList&)> changes[] = {
        [&](RVDList& list) { return list.appendObject(a) == nullptr; },
        [&](RVDList& list) { return list.prependObject(a) == nullptr; },
        [&](RVDList& list) { return list.removeCell(list.pFirstCell()) == nullptr; },
        [&](RVDList& list) { return list.searchAndRemoveObject(list.pLastObject()) == nullptr; },
        [&](RVDList& list) { return list.discardCell(list.pLastCell()), true; },
        [&](RVDList& list) { return delete list.pFirstCell(), true; },
        [&](RVDList& list) { return list.deleteAllCells(), true; },
        [&](RVDList& list) { return list.deleteAllCellsAndObjects(), true; },
        [&](RVDList& list) { return list.copyAllCells(&other), true; },
        [&](RVDList& list) { return list.copyAllCells(&list), true; },
        [&](RVDList& list) { return list.copyObject(&other), true; },
        [&](RVDList& list) { return list.reverse(), true; },
    };
    RVDList* const lists[] = {graph.pNodeList(), graph.pEdgeList(), a->pOutEdgeList(), b->pInEdgeList()};
    for (RVDList* list : lists) {
        const Objects before = walked(*list);
        for (std::size_t i = 0; i < std::size(changes); ++i) {
            EXPECT_TRUE(changes[i](*list)) << i;
            EXPECT_EQ(walked(*list), before) << i;
        }
    }
    RVNodeDList copy(*graph.pNodeList());
    copy.appendNode(a);
    EXPECT_THAT(walked(copy), ElementsAre(a, b, a)) << "a copy is a list of its own";
}

}  // namespace
