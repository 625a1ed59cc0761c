// Connected, biconnected and strongly connected components.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
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
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(all.connectedOf(g), c.connected);
        EXPECT_EQ(all.blocksOf(g), c.blocks);
        EXPECT_EQ(all.strongOf(g), c.strong);
    }
}

bool isLoop(const RVEdge* edge) { return edge->pSourceNode() == edge->pTargetNode(); }

// In the order of the edges, then of the isolated nodes.
std::string connectedByRule(const RVGraph* graph) {
    const Distances steps(graph, Ways::both);
    std::set<RVNode*> done;
    std::string all;
    const auto add = [&](RVNode* from) {
        RVNodeDList component;
        for (RVNode* node : *graph->pNodeList()) {
            if (steps.reaches(from, node) && done.insert(node).second) component.appendNode(node);
        }
        if (component.length() != 0) all += "[" + text(component) + "]";
    };
    for (RVEdge* edge : *graph->pEdgeList())
        if (!isLoop(edge)) add(edge->pSourceNode());
    for (RVNode* node : *graph->pNodeList()) add(node);
    return all;
}

// An isolated node, or what holds together with an edge whatever other node is taken away.
std::set<std::set<RVNode*>> blocksByDefinition(const RVGraph* graph) {
    std::set<std::set<RVNode*>> all;
    std::set<RVNode*> joined;
    std::map<RVNode*, Distances> without;
    for (RVNode* node : *graph->pNodeList()) without.emplace(node, Distances(graph, Ways::both, {node}));
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (isLoop(edge)) continue;
        std::set<RVNode*> block;
        for (RVNode* node : *graph->pNodeList()) {
            const auto isHeld = [&](const auto& missing) {
                const auto holds = [&](RVNode* end) {
                    return end != missing.first && missing.second.reaches(node, end);
                };
                return missing.first == node || holds(edge->pSourceNode()) || holds(edge->pTargetNode());
            };
            if (std::all_of(without.begin(), without.end(), isHeld)) block.insert(node);
        }
        joined.insert(block.begin(), block.end());
        all.insert(block);
    }
    for (RVNode* node : *graph->pNodeList())
        if (joined.count(node) == 0) all.insert({node});
    return all;
}

void expectBlocks(const RVBiconnectedComponentsOutputData& output, RVGraph* graph) {
    DepthFirst search(graph);
    search.input.undirected(1);
    ASSERT_EQ(search(), RV_NO_ERROR);
    std::set<std::set<RVNode*>> found;
    std::map<RVNode*, int> joins;
    std::string articulations;
    int closed = 0;
    for (const RVNodeDList* block : nodeLists(output.pComponentList())) {
        std::set<RVNode*> nodes;
        for (RVNode* node : *block) nodes.insert(node);
        found.insert(nodes);
        for (int i = 2; i <= block->length(); ++i) {
            EXPECT_LT(search.output.orderNumber(block->pNodeInPosition(i)),
                      search.output.orderNumber(block->pNodeInPosition(i - 1)));
        }
        // Closed by the node before the last one, which its parent joins to the rest.
        RVNode* const closing = block->pNodeInPosition(std::max(block->length() - 1, 1));
        EXPECT_GT(search.output.completionNumber(closing), closed);
        closed = search.output.completionNumber(closing);
        RVNode* const joint = block->pLastNode();
        const int needed = search.output.pParentNode(joint) == nullptr ? 2 : 1;
        if (block->length() > 1 && ++joins[joint] == needed) articulations += " " + text(joint);
    }
    EXPECT_EQ(found, blocksByDefinition(graph));
    EXPECT_EQ(" " + text(*output.pArticulationNodeList()), articulations.empty() ? " " : articulations);
}

// The edges inside a component: out-edges in order, each first one of parallels followed by the others, then
// loops.
std::string edgesByRule(const RVGraph* graph, const RVNodeDList& component) {
    RVEdgeDList edges;
    for (RVNode* node : component) {
        for (RVEdge* edge : *node->pOutEdgeList()) {
            if (isLoop(edge) || component.searchObject(edge->pTargetNode()) == nullptr) continue;
            const auto isParallel = [&](const RVEdge* other) {
                return other->pSourceNode() == node && other->pTargetNode() == edge->pTargetNode();
            };
            RVEdgeIter first(graph);
            while (!isParallel(first.pEdge())) first++;
            if (first.pEdge() != edge) continue;
            edges.appendEdge(edge);
            for (RVEdge* parallel : *node->pOutEdgeList()) {
                if (parallel != edge && isParallel(parallel)) edges.appendEdge(parallel);
            }
        }
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (isLoop(edge) && edge->pSourceNode() == node) edges.appendEdge(edge);
        }
    }
    return "[" + text(edges) + "]";
}

void expectStrong(const RVStronglyConnectedComponentsOutputData& output, RVGraph* graph) {
    DepthFirst search(graph);
    ASSERT_EQ(search(), RV_NO_ERROR);
    const Distances steps(graph, Ways::directed);
    std::string edges;
    for (const RVNodeDList* component : nodeLists(output.pComponentList())) {
        for (int i = 2; i <= component->length(); ++i) {
            EXPECT_LT(search.output.orderNumber(component->pNodeInPosition(i)),
                      search.output.orderNumber(component->pNodeInPosition(i - 1)));
        }
        edges += edgesByRule(graph, *component);
    }
    EXPECT_EQ(lists<RVEdgeDList>(output.pEdgeComponentList()), edges);
    for (RVNode* a : *graph->pNodeList()) {
        for (RVNode* b : *graph->pNodeList()) {
            const bool together = steps.reaches(a, b) && steps.reaches(b, a);
            EXPECT_EQ(output.componentNumber(a) == output.componentNumber(b), together) << text(a) << text(b);
            EXPECT_TRUE(!steps.reaches(a, b) || output.componentNumber(a) >= output.componentNumber(b));
        }
    }
}

TEST(Components, AgreeWithSlowWays) {
    AllComponents all;
    HookedComponents hooked;
    for (unsigned seed = 0; seed < 250 && !HasFailure(); ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 6, .edges = seed % 3 == 0 ? 16 : 9});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        EXPECT_EQ(all.connectedOf(g), connectedByRule(g));
        EXPECT_EQ(hooked.connectedOf(g), connectedByRule(g));
        EXPECT_EQ(all.blocksOf(g), hooked.blocksOf(g));
        expectBlocks(all.blocks.output, g);
        EXPECT_EQ(all.strongOf(g), hooked.strongOf(g));
        expectStrong(all.strong.output, g);
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
