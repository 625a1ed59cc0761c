// What is left when memory runs out, at whatever point.

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <vector>

#include "rv/foundation/owned_lists.h"
#include "rv/framework/graph_snapshot.h"
#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {
int allocationsLeft = -1;  // none fails below 0
bool failsOnce = true;     // or all from then on
bool takeOne() {
    return allocationsLeft < 0 || ((allocationsLeft > 0 || failsOnce) && allocationsLeft-- > 0);
}
}  // namespace

// Not inlined, so that the compiler does not take what it sees inside for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* memory = takeOne() ? std::malloc(size) : nullptr;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return takeOne() ? std::malloc(size) : nullptr;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#ifndef RV_SANITIZED
// Where slabs come from.
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    void* memory = nullptr;
    if (!takeOne() || posix_memalign(&memory, alignment, size) != 0) return nullptr;
    return memory;
}
#endif

namespace {

using namespace rvtest;

// Every allocation of a run fails once, alone or with all that come after it. A graph that has been restored
// once may have the memory for it, so each run has a new one.
template <class R>
class OutOfMemory : public testing::Test {
protected:
    // A runner with its question.
    struct Asked : R {
        Asked(const TestGraph& g, unsigned way) {
            ask(*this, g, Question(g, way % 2));
            if (way % 2 == 1) constrain(*this, g, constraints);
            useOriginalGraph(*this, way / 2 % 2);
        }
        std::string answer() {
            EXPECT_EQ((*this)(), RV_NO_ERROR);
            return describe(this->output, this->input.pAssociatedGraph());
        }
        std::array<RVClusteringConstraint, 3> constraints;
    };
};
TYPED_TEST_SUITE(OutOfMemory, Algorithms, AlgorithmNames);

TYPED_TEST(OutOfMemory, LeavesTheCallersGraphAndTheAlgorithmAsTheyWere) {
    const char* const graphs[] = {"a->a b->c b->c c->b d b--e e--b a->a e f--g g--f:1 h c->h",
                                  "a->b b->c c->d d->f f->a b->d c--c", "a--b b--c c->b c->d d->c f a->b"};
    for (unsigned way = 0; way < 24; ++way) {
        const char* const tokens = graphs[way / 8];
        failsOnce = way / 4 % 2 == 0;
        const std::string expected = typename TestFixture::Asked(MarkedGraph(tokens, way), way).answer();
        bool isDone = false;
        for (int allocations = 0; !isDone; ++allocations) {
            const MarkedGraph g(tokens, way);
            typename TestFixture::Asked run(g, way);
            const std::string before = snapshot(g);
            allocationsLeft = allocations;
            try {
                isDone = run() == RV_NO_ERROR;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            run.output.reset();
            ASSERT_EQ(snapshot(g), before) << tokens << " after " << allocations;
            ASSERT_EQ(run.answer(), expected) << tokens << " after " << allocations;
        }
    }
}

TEST(OutOfMemoryOfData, LeavesNoMappingToACopyThatFailed) {
    const MarkedGraph g("a->b b->c c->a c->a d", 3);
    RVAlgorithmData data;
    bool isDone = false;
    for (int allocations = 0; !isDone; ++allocations) {
        RVGraph copy;
        allocationsLeft = allocations;
        try {
            data.copyGraph(g, &copy);
            isDone = true;
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = -1;
        for (RVNode* node : *g->pNodeList()) EXPECT_EQ(data.pCopyNode(node) != node, isDone);
        for (RVEdge* edge : *g->pEdgeList()) EXPECT_EQ(data.pCopyEdge(edge) != edge, isDone);
    }
    EXPECT_EQ(data.pCopyNode(g.node("a")), g.node("a")) << "the copy is gone";
}

// What data know of a node that cannot be moved goes with it or is lost; it is never found where the node
// was.
TEST(OutOfMemoryOfData, LeavesNothingOfAMovedNodeWhereItWas) {
    failsOnce = true;
    bool isDone = false;
    int againAtItsPlace = 0;
    for (int allocations = 0; !isDone; ++allocations) {
        const TestGraph g("a b c");
        const TestGraph other("d");
        RVPathCostInputData columns(g);
        RVDijkstraOutputData outputs[2];
        columns.cost(g.node("a"), -5);
        for (auto& output : outputs) output.dist(g.node("a"), 7);
        outputs[1].pAlgorithmExtension(g.node("a"));
        columns.pCopyNode(g.node("a"), g.node("b"));
        columns.pCopyNode(g.node("b"), g.node("a"));
        columns.pCopyNode(g.node("c"), g.node("a"));
        RVNode* const moved = g->removeNode(g.node("a"));
        const int index = moved->denseIndex();
        allocationsLeft = allocations;
        bool isMoved = false;
        try {
            isMoved = other->insertNode(moved) == moved;
        } catch (const std::bad_alloc&) {
        }
        isDone = allocationsLeft >= 0;  // none has failed
        allocationsLeft = -1;
        const bool isThere = moved->pHomeGraph() == other.get();
        const bool isComplete = isMoved || !isThere;
        EXPECT_TRUE(columns.cost(moved) == -5 || (!isComplete && columns.cost(moved) == 0));
        EXPECT_EQ(columns.nodeCosts().negatives(), columns.cost(moved) == 0 ? 0U : 1U);
        for (auto& output : outputs) {
            EXPECT_TRUE(output.dist(moved) == 7 || (!isComplete && output.dist(moved) == -100));
        }
        EXPECT_TRUE(columns.pCopyNode(moved) == g.node("b") ||
                    (!isComplete && columns.pCopyNode(moved) == moved));
        RVNode* const made = g->addNode();  // where the moved node was, as a rule
        againAtItsPlace += isThere && made->denseIndex() == index ? 1 : 0;
        EXPECT_EQ(columns.cost(made), 0);
        EXPECT_EQ(columns.pCopyNode(made), made);
        for (auto& output : outputs) EXPECT_EQ(output.dist(made), -100);
        delete moved;
        EXPECT_EQ(columns.pCopyNode(g.node("c")), g.node("c"));
        EXPECT_EQ(columns.nodeCosts().negatives(), 0U);
    }
    EXPECT_GT(againAtItsPlace, 3);
}

// A value that cannot be stored leaves what was stored before.
TEST(OutOfMemoryOfData, LeavesColumnsAsTheyWereWhenTheyCannotGrow) {
    for (int allocations = 0, stored = 0; stored < 2; ++allocations) {
        const TestGraph g("a b");
        RVPathCostInputData data(g);
        data.cost(g.node("a"), -1);
        RVNode* const late = g->addNode();
        stored = 0;
        allocationsLeft = allocations;
        try {
            data.cost(late, -2);
            ++stored;
            const RVPathCostInputData copy(data);
            ++stored;
            allocationsLeft = -1;
            EXPECT_EQ(copy.cost(late) + copy.cost(g.node("a")), -3);
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = -1;
        EXPECT_EQ(data.cost(g.node("a")), -1);
        EXPECT_EQ(data.cost(late), stored == 0 ? 0 : -2);
        EXPECT_EQ(data.nodeCosts().negatives(), stored == 0 ? 1U : 2U);
    }
}

TEST(OutOfMemoryOfSnapshots, LeavesWhatIsAskedForToBeMadeLater) {
    for (unsigned seed = 0; seed < 30; ++seed) {
        const std::string drawn = randomText(seed, {.nodes = 20, .edges = 60});
        const auto answer = [](RVGraph* graph) {
            const std::shared_ptr<const rv::FlatGraph> flat = rv::snapshotOf(graph);
            const rv::ScratchLoan<std::vector<int>> loan(graph);
            std::vector<rv::Index> all;
            const auto add = [&all](const auto& values) {
                all.insert(all.end(), values.begin(), values.end());
            };
            for (const rv::Arcs* arcs :
                 {&flat->undirected().space.arcs, &flat->directed().space.arcs, &flat->out(), &flat->in()}) {
                for (rv::Index node = 0; node < arcs->nodeLimit(); ++node) add(arcs->edgesOf(node));
            }
            const rv::SimpleGraph mixed = flat->mixedWhere([](rv::Index edge) { return edge % 2 == 0; });
            add(mixed.space.arcs.edges);
            return all;
        };
        const auto build = [&](TestGraph& graph) {
            rv::snapshotOf(graph);
            for (int i = 0; i < 3; ++i) graph->addEdge(graph->pFirstNode(), graph->pLastNode());
            graph->pFirstEdge()->invertDirection();
        };
        TestGraph other(drawn);
        build(other);
        const std::vector<rv::Index> expected = answer(other);
        bool isDone = false;
        for (int allocations = 0; !isDone; ++allocations) {
            TestGraph graph(drawn);
            build(graph);
            failsOnce = seed % 2 == 0;
            allocationsLeft = allocations;
            try {
                answer(graph);
                isDone = true;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            EXPECT_EQ(answer(graph), expected) << drawn << " after " << allocations;
        }
    }
}

TEST(OutOfMemoryOfLists, LeavesListsThatCanBeUsed) {
    RVObject object;
    const auto get = [&object](std::size_t) { return &object; };
    bool isDone = false;
    for (int allocations = 0; !isDone; ++allocations) {
        rv::OwnedLists<RVDList> lists;
        RVDList list;
        int made = 0;
        failsOnce = allocations % 2 == 0;
        allocationsLeft = allocations / 2;
        try {
            for (; made < 30; ++made) lists.add(9, get)->appendObject(&object);
            rv::ListAccess::append(list, 500, get);
            const rv::OwnedLists<RVDList> copy(lists);
            isDone = failsOnce;
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = -1;
        EXPECT_GE(lists->length(), made);
        for (RVDListIter it(lists.get()); it; it++) EXPECT_GE(RVDList::castDown(it.pObject())->length(), 9);
        const int length = list.length();
        rv::ListAccess::append(list, 3, get);
        EXPECT_EQ(list.length(), length + 3);
    }
}

}  // namespace
