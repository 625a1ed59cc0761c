// Connected, biconnected and strongly connected components.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

template <class List>
std::string lists(const RVDList* list) {
    std::string all;
    for (RVDListIter it(list); it; it++) all += "[" + text(*static_cast<List*>(it.pObject())) + "]";
    return all;
}
std::vector<RVNodeDList*> nodeLists(const RVDList* list) {
    std::vector<RVNodeDList*> all;
    for (RVDListIter it(list); it; it++) all.push_back(static_cast<RVNodeDList*>(it.pObject()));
    return all;
}

// Numbers say what the lists say.
template <class Output>
void expectNumbers(const Output& output, const RVGraph* graph) {
    std::map<RVNode*, int> numbers;
    int number = 0;
    for (const RVNodeDList* component : nodeLists(output.pComponentList())) {
        ++number;
        for (RVNode* node : *component) EXPECT_TRUE(numbers.emplace(node, number).second) << text(node);
    }
    EXPECT_EQ(static_cast<int>(numbers.size()), graph->numberOfNodes());
    for (RVNode* node : *graph->pNodeList())
        EXPECT_EQ(output.componentNumber(node), numbers[node]) << text(node);
}

// What they answer, as text; each on one object for all graphs.
template <class ConnectedRun, class BlocksRun, class StrongRun>
struct ComponentsOf {
    std::string connectedOf(RVGraph* graph) {
        EXPECT_EQ(connected(graph), RV_NO_ERROR);
        expectNumbers(connected.output, graph);
        return lists<RVNodeDList>(connected.output.pComponentList());
    }
    std::string blocksOf(RVGraph* graph) {
        EXPECT_EQ(blocks(graph), RV_NO_ERROR);
        return lists<RVNodeDList>(blocks.output.pComponentList()) + " " +
               text(*blocks.output.pArticulationNodeList());
    }
    std::string strongOf(RVGraph* graph) {
        EXPECT_EQ(strong(graph), RV_NO_ERROR);
        expectNumbers(strong.output, graph);
        return lists<RVNodeDList>(strong.output.pComponentList()) + " " +
               lists<RVEdgeDList>(strong.output.pEdgeComponentList());
    }
    ConnectedRun connected;
    BlocksRun blocks;
    StrongRun strong;
};
using AllComponents = ComponentsOf<Connected, Blocks, Strong>;
using HookedComponents = ComponentsOf<OnHooks<Connected>, OnHooks<Blocks>, OnHooks<Strong>>;

TEST(Components, ComeInTheStatedOrders) {
    const struct {
        const char* what;
        const char* graph;
        const char* connected;
        const char* blocks;  // and articulation nodes
        const char* strong;  // and edges
    } cases[] = {
        {"nothing", "", "", " ", " "},
        {"isolated nodes", "c a b", "[c][a][b]", "[c][a][b] ", "[c][a][b] [][][]"},
        {"isolated nodes last", "e a->b c->d", "[a b][c d][e]", "[b a][d c][e] ",
         "[b][a][d][c][e] [][][][][]"},
        {"numbered by edges, listed by nodes", "d c b a a->b c->d", "[b a][d c]", "[c d][a b] ",
         "[d][c][b][a] [][][][]"},
        {"loops and parallels", "a->a b->c:1 b->c:2 c->b c->c", "[b c][a]", "[c b][a] ",
         "[c b][a] [c->b c->c b->c:1 b->c:2][a->a]"},
        {"a root that joins", "x->a a->b b->c c->d d->a a->c b->d x->e e->f f->g g->h h->e e->g f->h",
         "[x a b c d e f g h]", "[f g h e][e x][b c d a][a x] e a x",
         "[f h g e][b d c a][x] [f->g f->h h->e g->h e->f e->g][b->c b->d d->a c->d a->b a->c][]"},
        {"a joint of three blocks", "a->b b->c b->d", "[a b c d]", "[d b][c b][b a] b",
         "[d][c][b][a] [][][][]"},
    };
    AllComponents all;
    HookedComponents hooked;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        const auto expect = [&](auto& components) {
            EXPECT_EQ(components.connectedOf(g), c.connected);
            EXPECT_EQ(components.blocksOf(g), c.blocks);
            EXPECT_EQ(components.strongOf(g), c.strong);
        };
        expect(all);
        expect(hooked);
    }
}

// Built lists belong to the caller, as do the lists in the list that is filled.
TEST(Components, AreHandedOutAsCopies) {
    RVDList built[4];
    for (RVDList& list : built) list.appendObject(new RVNodeDList);
    const TestGraph g("a->b b->a b->c c->c");
    {
        AllComponents all;
        all.connectedOf(g);
        all.blocksOf(g);
        all.strongOf(g);
        for (int again = 0; again < 2; ++again) {
            all.connected.output.buildComponentList(built[0]);
            all.blocks.output.buildComponentList(built[1]);
            all.strong.output.buildComponentList(built[2]);
            all.strong.output.buildEdgeComponentList(built[3]);
        }
        RVNodeDList joints = g.nodes("a c");
        all.blocks.output.buildArticulationNodeList(joints);
        EXPECT_EQ(text(joints), "b");
        static_cast<RVNodeDList*>(built[0].pFirstObject())->deleteAllCells();
        EXPECT_EQ(lists<RVNodeDList>(all.connected.output.pComponentList()), "[a b c]");
    }
    EXPECT_EQ(lists<RVNodeDList>(&built[0]), "[]");
    EXPECT_EQ(lists<RVNodeDList>(&built[1]), "[c b][b a]");
    EXPECT_EQ(lists<RVNodeDList>(&built[2]), "[c][b a]");
    EXPECT_EQ(lists<RVEdgeDList>(&built[3]), "[c->c][b->a a->b]");
    for (RVDList& list : built) list.deleteAllCellsAndObjects();
}

}  // namespace
