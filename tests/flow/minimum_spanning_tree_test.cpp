#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

template <class Run>
std::string answer(Run& test, RVGraph* graph) {
    EXPECT_EQ(runOn(test, graph, nullptr), 0);
    RVEdgeDList edges;
    edges.appendEdge(nullptr);
    test.output.buildTreeEdgeList(edges);
    EXPECT_EQ(text(edges), text(*test.output.pTreeEdgeList()));
    int marked = 0;
    for (RVEdge* edge : *graph->pEdgeList()) marked += test.output.treeEdge(edge);
    EXPECT_EQ(marked, edges.length());
    return std::to_string(test.output.totalCost()) + ": " + text(edges);
}

TEST(MinimumSpanningTree, ConnectsAllAtLeastCost) {
    const struct {
        const char* what;
        const char* graph;
        const char* answer;
    } cases[] = {
        {"first of parallels", "a->b:2 a->b:2,1", "2: a->b:2"},
        {"in-edges before out-edges", "a->b:2 b->a:2", "2: b->a:2"},
        {"first edge found", "a->b:1 a->c:1 b->c:1", "2: a->b:1 a->c:1"},
        {"an infinite edge", "a->b:1 b->c:2147483647", "0: "},
        {"nothing", "", "0: "},
        {"past the range", "a->b:2147483646 b->c:2147483646", "2147483647: a->b:2147483646 b->c:2147483646"},
        {"past the other end", "a->b:-2147483648 b->c:-5", "-2147483648: a->b:-2147483648 b->c:-5"},
    };
    SpanningTree test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(answer(test, TestGraph(c.graph)), c.answer);
    }
}

// Which nodes hang together.
class Parts {
public:
    explicit Parts(std::size_t count) : m_parents(count) { std::iota(m_parents.begin(), m_parents.end(), 0); }
    bool join(const RVEdge* edge) {
        const std::size_t a = root(rv::placeOf(edge->pSourceNode()));
        const std::size_t b = root(rv::placeOf(edge->pTargetNode()));
        m_parents[a] = b;
        return a != b;
    }

private:
    std::size_t root(std::size_t i) const {
        while (m_parents[i] != i) i = m_parents[i];
        return i;
    }
    std::vector<std::size_t> m_parents;
};

TEST(MinimumSpanningTree, CostsNoMoreThanTheCheapestEdgesThatJoinParts) {
    SpanningTree test;
    int trees = 0;
    for (unsigned seed = 0; seed < 300; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 6, .edges = 11, .least = -3, .most = 6});
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        std::vector<RVEdge*> edges;
        for (RVEdge* edge : *g->pEdgeList()) edges.push_back(edge);
        std::sort(edges.begin(), edges.end(),
                  [](const RVEdge* a, const RVEdge* b) { return number(a) < number(b); });
        const Parts apart(static_cast<std::size_t>(g->nodeIndexLimit()));
        Parts parts(apart);
        int joined = 0;
        int cost = 0;
        for (const RVEdge* edge : edges) {
            if (!parts.join(edge)) continue;
            cost += number(edge);
            ++joined;
        }
        const bool hasTree = joined == g->numberOfNodes() - 1;
        answer(test, g);
        EXPECT_EQ(test.output.totalCost(), hasTree ? cost : 0);
        parts = apart;
        for (const RVEdge* edge : *test.output.pTreeEdgeList()) EXPECT_TRUE(parts.join(edge)) << text(edge);
        EXPECT_EQ(test.output.pTreeEdgeList()->length(), hasTree ? joined : 0);
        trees += hasTree && cost != 0 ? 1 : 0;
    }
    EXPECT_GT(trees, 60);
}

// Few different costs and many parallel edges, in lists of all orders; or costs too far apart for a bucket
// each.
TEST(MinimumSpanningTree, IsTheSameOnHooks) {
    SpanningTree test;
    OnHooks<SpanningTree> hooked;
    int trees = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const int most = seed % 3 == 0 ? 2147483647 : 1 + static_cast<int>(seed % 4);
        const std::string tokens =
            randomText(seed, {.nodes = 9, .edges = 30, .least = seed % 3 == 0 ? 1 : -1, .most = most});
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        const std::string expected = answer(hooked, g);
        ASSERT_EQ(answer(test, g), expected);
        for (RVEdge* edge : *g->pEdgeList())
            EXPECT_EQ(test.output.treeEdge(edge), hooked.output.treeEdge(edge)) << text(edge);
        trees += test.output.pTreeEdgeList()->length() > 0 ? 1 : 0;
    }
    EXPECT_GT(trees, 300);
}

}  // namespace
