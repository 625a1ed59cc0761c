#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

int run(Reachable& test, RVGraph* graph, RVNode* start, int range, int reversed = 0, int undirected = 0) {
    test.input.range(range);
    test.input.reversed(reversed);
    return runOn(test, graph, start, nullptr, undirected);
}

TEST(ReachableNodes, ListsNodesByDistance) {
    const struct {
        const char* what;
        const char* graph;
        const char* start;
        int range;
        int reversed;
        int undirected;
        const char* nodes;
    } cases[] = {
        {"all, by number of edges", "a->b:9 a->c:1 c->d:1 b->e:1 f->a:1", "a", -1, 0, 0, "a b c e d"},
        {"undirected edges, reversed", "b--a:1 c->a:1 b->d:1", "b", -1, 1, 0, "b a c"},
        {"undirected as a whole", "b->a:1 c->b:1 a->d:1", "a", -1, 0, 1, "a d b c"},
        {"equal distances in the order of arrival", "s->b:2 s->a:2 s->c:1 c->d:1 c->b:0", "s", 9, 0, 0,
         "s c b a d"},
        {"out-edges before in-edges", "c->s:1 s->a:1", "s", 9, 0, 1, "s a c"},
        {"the largest distance", "s->a:2147483646 s->b:2147483647", "s", 2147483647, 0, 0, "s a"},
        {"past the largest distance", "s->a:2147483646 a:3 a->b:5", "s", 2147483647, 0, 0, "s a"},
    };
    Reachable test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(run(test, g, g.node(c.start), c.range, c.reversed, c.undirected), RV_NO_ERROR);
        RVNodeDList nodes;
        nodes.appendNode(nullptr);
        test.output.buildReachableNodeList(nodes);
        EXPECT_EQ(text(nodes), c.nodes);
        EXPECT_EQ(text(*test.output.pNodeList()), c.nodes);
    }
}

TEST(ReachableNodes, ChecksItsNumbersInOrder) {
    const struct {
        const char* graph;
        int range;
        int code;
    } cases[] = {
        {"a->b:-1", -2, 11},   {"a->b:-1", -1, 17},           {"a->b b:-1", 0, 17},
        {"a->b b:-1", -1, 17}, {"a->b", -2147483647 - 1, 11}, {"a->b", 2147483647, 0},
    };
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        Reachable test;
        EXPECT_EQ(run(test, g, g.node("a"), c.range), c.code) << c.graph;
    }
}

TEST(ReachableNodes, HaveNoDistanceOutsideARun) {
    const TestGraph g("a->b:1");
    Reachable test;
    const RVReachableNodesBinTree tree(&test.algorithm);
    EXPECT_EQ(tree.virtualObjectCompare(g.node("a"), g.node("b")), 0);
    EXPECT_EQ(run(test, g, g.node("a"), 5), 0);
    EXPECT_EQ(tree.virtualObjectCompare(g.node("a"), g.node("b")), 0);
}

TEST(ReachableNodes, AgreesWithRelaxation) {
    Reachable test;
    std::size_t listed = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string tokens = randomText(
            seed,
            {.nodes = 8, .edges = 14, .least = 0, .most = 4, .undirected = 20, .nodeNumbers = seed % 2 == 0});
        const MarkedGraph g(tokens, seed);
        const int undirected = seed % 5 == 0 ? 1 : 0;
        const int reversed = seed % 3 == 0 ? 1 : 0;
        const int range = static_cast<int>(seed % 8) - 1;
        for (RVNode* start : *g->pNodeList()) {
            SCOPED_TRACE(std::to_string(seed) + ", " + text(start) + ": " + tokens);
            auto distances = relaxedDistances(
                g, start, undirected != 0 ? Ways::both : Ways::drawn, reversed != 0,
                [&](const RVEdge* edge, const RVNode* from) {
                    return range == -1 ? 1 : number(edge, 0, 0) + (from == start ? 0 : number(from, 0, 0));
                });
            ASSERT_EQ(run(test, g, start, range, reversed, undirected), RV_NO_ERROR);
            std::int64_t last = 0;
            for (RVNode* node : *test.output.pNodeList()) {
                ASSERT_EQ(distances.count(node), 1U) << text(node);
                EXPECT_LE(last, distances[node]) << text(node);
                last = distances[node];
            }
            const auto inRange = std::count_if(distances.begin(), distances.end(), [&](const auto& entry) {
                return range == -1 || entry.second <= range;
            });
            EXPECT_EQ(test.output.pNodeList()->length(), inRange);
            listed += static_cast<std::size_t>(inRange);
        }
    }
    EXPECT_GT(listed, 3000U);
}

}  // namespace
