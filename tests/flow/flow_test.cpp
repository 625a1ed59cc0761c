// Maximum flow, minimum cut, disjoint paths.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Flow that enters a node less what leaves it.
std::int64_t excess(const RVMaximumFlowOutputData& output, const RVNode* node) {
    std::int64_t sum = 0;
    for (RVEdge* edge : *node->pInEdgeList()) sum += output.flow(edge);
    for (RVEdge* edge : *node->pOutEdgeList()) sum -= output.flow(edge);
    return sum;
}

TEST(MaximumFlow, PushesAsMuchAsFits) {
    const struct {
        const char* what;
        const char* graph;
        const char* sink;
        const char* answer;  // total; flows; visited nodes
    } cases[] = {
        {"a node in between", "s->a:3 s->b:3 a->m:3 b->m:3 m:4 m->t:9", "t", "4; 3 1 3 1 4; s b m a"},
        {"taking back", "s->a:1 s->b:1 a->c:1 a->t:1 b->a:1 c->t:1", "t", "2; 1 1 1 1 1 1; s"},
        {"first paths first", "s->a:1 a->t:1 s->b:1 b->t:1 s->t:1", "t", "3; 1 1 1 1 1; s"},
        {"around", "s->a:2 a->s:1", "s", "1; 1 1; s a"},
        {"past the range", "s->a:2147483647 s->b:2147483647 a->t:2147483647 b->t:2147483647", "t",
         "2147483647; 2147483647 2147483647 2147483647 2147483647; s"},
        {"past the range of a node", "s->a:2147483647 s->a:5 a->t:2147483647 a->t:7", "t",
         "2147483647; 2147483647 5 2147483647 5; s"},
    };
    MaximumFlow test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        ASSERT_EQ(runOn(test, g, g.node("s"), g.node(c.sink)), 0);
        std::string answer = std::to_string(test.output.totalFlow()) + ";";
        for (RVEdge* edge : *g->pEdgeList()) answer += " " + std::to_string(test.output.flow(edge));
        EXPECT_EQ(answer + "; " + text(*test.output.pVisitedNodeList()), c.answer);
    }
}

// Any set of nodes with the source and without the sink tells a bound: what its edges carry away, plus what
// the capacities of nodes at its border let through. The least of them is the flow.
std::int64_t leastCut(const RVGraph* graph, const RVNode* source, const RVNode* sink, bool withNodes,
                      int nodeCapacity = kInfinite) {
    // Every node stands on the side of the source, of the sink, or is cut itself.
    std::vector<RVNode*> nodes;
    for (RVNode* node : *graph->pNodeList()) {
        if (node != source && node != sink) nodes.push_back(node);
    }
    std::int64_t least = std::numeric_limits<std::int64_t>::max();
    const int kinds = withNodes ? 3 : 2;
    std::vector<int> kind(nodes.size());
    for (;;) {
        std::map<const RVNode*, int> side{{source, 0}, {sink, 1}};
        std::int64_t cost = 0;
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            side[nodes[i]] = kind[i];
            if (kind[i] == 2) cost += number(nodes[i], 0, nodeCapacity);
        }
        // A node that is cut is entered on the sink's side and left on the source's.
        for (const RVEdge* edge : *graph->pEdgeList()) {
            const bool leaves = side[edge->pSourceNode()] == 0;
            const bool arrives = side[edge->pTargetNode()] == 1;
            if (leaves && arrives) cost += number(edge);
        }
        least = std::min(least, cost);
        std::size_t i = 0;
        while (i < kind.size() && ++kind[i] == kinds) kind[i++] = 0;
        if (i == kind.size()) return least;
    }
}

TEST(MaximumFlow, EqualsTheLeastCut) {
    MaximumFlow flow;
    MinimumCut cut;
    OnHooks<MinimumCut> hookedCut;
    std::int64_t total = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const bool withNodes = seed % 2 == 0;
        const std::string tokens =
            randomText(seed, {.nodes = 7, .edges = 16, .least = 0, .most = 6, .nodeNumbers = withNodes});
        const MarkedGraph g(tokens, seed);
        RVNode* const source = g->pFirstNode();
        for (RVNode* sink : *g->pNodeList()) {
            SCOPED_TRACE(std::to_string(seed) + ", to " + text(sink) + ": " + tokens);
            ASSERT_EQ(runOn(flow, g, source, sink), 0);
            ASSERT_EQ(runOn(cut, g, source, sink), 0);
            ASSERT_EQ(runOn(hookedCut, g, source, sink), 0);
            EXPECT_EQ(describe(cut.output, g), describe(hookedCut.output, g));
            std::set<const RVEdge*> listed;
            std::int64_t cost = 0;
            for (const RVEdge* edge : *cut.output.pEdgeList()) {
                EXPECT_EQ(edge->pOwnerGraph(), g.get());
                EXPECT_TRUE(listed.insert(edge).second) << text(edge);
                cost += number(edge, 0, 0);
            }
            EXPECT_EQ(cost, cut.output.totalCost());
            for (RVNode* node : *g->pNodeList()) {
                std::int64_t in = 0;
                for (RVEdge* edge : *node->pInEdgeList()) {
                    in += flow.output.flow(edge);
                    EXPECT_GE(flow.output.flow(edge), 0);
                    EXPECT_LE(flow.output.flow(edge), number(edge, 0, 0));
                }
                if (node == source || node == sink) continue;
                EXPECT_EQ(excess(flow.output, node), 0) << text(node);
                EXPECT_LE(in, number(node, 0, kInfinite)) << text(node);
            }
            if (source == sink) continue;
            EXPECT_EQ(excess(flow.output, sink), flow.output.totalFlow());
            EXPECT_EQ(flow.output.totalFlow(), leastCut(g, source, sink, true));
            EXPECT_EQ(cut.output.totalCost(), leastCut(g, source, sink, false));
            EXPECT_EQ(flow.output.pVisitedNodeList()->pFirstNode(), source);
            EXPECT_EQ(flow.output.pVisitedNodeList()->searchObject(sink), nullptr);
            total += flow.output.totalFlow();
            // Without the cut there is no way.
            for (const RVEdge* edge : listed) g->removeEdge(const_cast<RVEdge*>(edge));
            const Distances steps(g, Ways::directed);
            EXPECT_FALSE(steps.reaches(source, sink));
            for (const RVEdge* edge : listed)
                g->insertEdge(const_cast<RVEdge*>(edge), edge->pSourceNode(), edge->pTargetNode());
        }
    }
    EXPECT_GT(total, 500);
}

TEST(MinimumCut, ListsItsEdgesInOrder) {
    const struct {
        const char* what;
        const char* graph;
        const char* sink;
        const char* answer;
    } cases[] = {
        {"without costs all edges, those at the source first", "a->t s->a t->s", "t", "0: s->a a->t t->s"},
        {"an edge without cost once", "s->a:0 a->t:4 s->t:2", "t", "2: s->a:0 s->t:2"},
        {"no way", "t->s:2 a->s:3", "t", "0: "},
        {"cycles through one node", "s->a:3 a->s:1 a->s:1,2 b->s:5 s->s:4 s->s:0", "s",
         "6: a->s:1 a->s:1,2 s->s:0 s->s:4"},
        {"past the range", "s->t:2147483647 s->t:9", "t", "2147483647: s->t:2147483647 s->t:9"},
    };
    MinimumCut test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        ASSERT_EQ(runOn(test, g, g.node("s"), g.node(c.sink)), 0);
        RVEdgeDList edges;
        edges.appendEdge(nullptr);
        test.output.buildEdgeList(edges);
        EXPECT_EQ(std::to_string(test.output.totalCost()) + ": " + text(edges), c.answer);
    }
}

// Disjoint paths

std::string answer(DisjointPaths& test, const TestGraph& g, const char* start, const char* finish,
                   int nodeDisjoint) {
    test.input.nodeDisjointPaths(nodeDisjoint);
    EXPECT_EQ(runOn(test, g, g.node(start), g.node(finish)), 0);
    RVDList copies;
    test.output.buildPathList(copies);
    EXPECT_EQ(copies.length(), test.output.numberOfDisjointPaths());
    std::string all;
    for (RVDListIter it(&copies); it; it++)
        all += (all.empty() ? "" : "; ") + text(*RVEdgeDList::castDown(it.pObject()));
    copies.deleteAllCellsAndObjects();
    return all;
}

TEST(DisjointPaths, AreTakenApart) {
    const struct {
        const char* what;
        const char* graph;
        const char* finish;
        const char* byEdges;
        const char* byNodes;
    } cases[] = {
        {"parallel edges", "s->a:1 s->a:2 a->t:1 a->t:2", "t", "s->a:1 a->t:1; s->a:2 a->t:2",
         "s->a:1 a->t:1"},
        {"straight", "s->t:1 s->a s->t:2 a->t", "t", "s->t:1; s->a a->t; s->t:2",
         "s->t:1; s->a a->t; s->t:2"},
        {"a shared node", "s->a s->b a->m b->m m->c m->d c->t d->t", "t",
         "s->a a->m m->c c->t; s->b b->m m->d d->t", "s->a a->m m->c c->t"},
        {"around", "s->a a->s s->s:1 s->s:2 b->s", "s", "s->a a->s; s->s:1; s->s:2",
         "s->a a->s; s->s:1; s->s:2"},
        {"no way", "t->s a->t", "t", "", ""},
    };
    DisjointPaths test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(answer(test, g, "s", c.finish, 0), c.byEdges);
        EXPECT_EQ(answer(test, g, "s", c.finish, 1), c.byNodes);
    }
}

// As many as the least number of edges, or of nodes and of straight edges, that cut all ways.
TEST(DisjointPaths, AreAsManyAsTheLeastCut) {
    DisjointPaths test;
    OnHooks<DisjointPaths> hooked;
    int several = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 6, .edges = 16});
        const MarkedGraph g(tokens, seed);
        RVNode* const start = g->pFirstNode();
        for (RVNode* finish : *g->pNodeList()) {
            for (const int nodeDisjoint : {0, 1}) {
                SCOPED_TRACE(std::to_string(seed) + ", to " + text(finish) + ": " + tokens);
                test.input.nodeDisjointPaths(nodeDisjoint);
                ASSERT_EQ(runOn(test, g, start, finish), 0);
                hooked.input.nodeDisjointPaths(nodeDisjoint);
                ASSERT_EQ(runOn(hooked, g, start, finish), 0);
                EXPECT_EQ(describe(test.output, g), describe(hooked.output, g));
                const RVDList* paths = test.output.pPathList();
                ASSERT_EQ(paths->length(), test.output.numberOfDisjointPaths());
                std::set<const RVEdge*> edges;
                std::set<const RVNode*> nodes;
                for (RVDListIter it(paths); it; it++) {
                    const RVNode* at = start;
                    for (const RVEdge* edge : *RVEdgeDList::castDown(it.pObject())) {
                        ASSERT_EQ(edge->pSourceNode(), at);
                        EXPECT_TRUE(edges.insert(edge).second) << text(edge);
                        at = edge->pTargetNode();
                        if (nodeDisjoint == 0 || at == finish) continue;
                        EXPECT_TRUE(nodes.insert(at).second) << text(at);
                    }
                    EXPECT_EQ(at, finish);
                    EXPECT_FALSE(RVEdgeDList::castDown(it.pObject())->length() == 0);
                }
                several += paths->length() > 1 ? 1 : 0;
                if (start == finish) continue;
                EXPECT_EQ(paths->length(), leastCut(g, start, finish, nodeDisjoint != 0, 1));
            }
        }
    }
    EXPECT_GT(several, 100);
}

// Graphs of many ways, with lists in all orders.
TEST(DisjointPaths, AndCutsAreTheSameOnHooks) {
    DisjointPaths paths;
    OnHooks<DisjointPaths> hookedPaths;
    MinimumCut cut;
    OnHooks<MinimumCut> hookedCut;
    int number = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 25, .edges = 160, .least = 0, .most = 5});
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        for (RVNode* finish : {g->pFirstNode(), g->pLastNode()}) {
            ASSERT_EQ(runOn(cut, g, g->pFirstNode(), finish), 0);
            ASSERT_EQ(runOn(hookedCut, g, g->pFirstNode(), finish), 0);
            ASSERT_EQ(describe(cut.output, g), describe(hookedCut.output, g));
            for (const int nodeDisjoint : {0, 1}) {
                paths.input.nodeDisjointPaths(nodeDisjoint);
                hookedPaths.input.nodeDisjointPaths(nodeDisjoint);
                ASSERT_EQ(runOn(paths, g, g->pFirstNode(), finish), 0);
                ASSERT_EQ(runOn(hookedPaths, g, g->pFirstNode(), finish), 0);
                ASSERT_EQ(describe(paths.output, g), describe(hookedPaths.output, g));
                number += paths.output.numberOfDisjointPaths();
            }
        }
    }
    EXPECT_GT(number, 1000);
}

}  // namespace
