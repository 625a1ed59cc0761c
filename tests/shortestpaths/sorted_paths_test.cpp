// Single-source shortest paths, sorted paths and their enumerator.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/shortestpaths/path_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

int run(SingleSource& test, RVGraph* graph, RVNode* start, int directed = 1) {
    test.input.pStartNode(start);
    test.input.directed(directed);
    takeDrawnDirections(test.input, graph);
    takeCosts(test.input, graph);
    return test(graph);
}

// Single source

TEST(SingleSource, FindsDistancesAndTree) {
    const struct {
        const char* what;
        const char* graph;
        const char* answer;
    } cases[] = {
        {"acyclic, first in-edge", "s->b:1 s->a:1 a->c:1 b->c:1",
         "s 0; b 1 s->b:1; a 1 s->a:1; c 2 a->c:1; "},
        {"cyclic, settled first", "s->b:1 s->a:1 a->c:1 b->c:1 c->s:1",
         "s 0; b 1 s->b:1; a 1 s->a:1; c 2 b->c:1; "},
        {"negative cycle at the end of the range", "s->a:-2147483648 a->b:-2147483648 b->a:2147483646",
         "code 18"},
        {"the least distance", "s->a:-2147483648 a->b:-2147483648 b->c:1 c->c:1",
         "s 0; a -2147483648 s->a:-2147483648; b -2147483648 a->b:-2147483648; c -2147483648 b->c:1; "},
        {"the greatest distance", "s->a:2147483640 a->b:6 a->c:7 c->d:-9",
         "s 0; a 2147483640 s->a:2147483640; b 2147483646 a->b:6; c -; d 2147483638 c->d:-9; "},
        {"a negative cycle behind the greatest distance", "s->a:2000000000 a->b:2000000000 b->c:-1 c->b:-1",
         "code 18"},
        {"the greatest distance with a cycle", "s->a:2147483640 a->c:7 c->s:0",
         "s 0; a 2147483640 s->a:2147483640; c -; "},
    };
    SingleSource test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        const int code = run(test, g, g.node("s"));
        std::string answer = code == 0 ? "" : "code " + std::to_string(code);
        for (RVNode* node : *g->pNodeList()) {
            if (code != 0) break;
            const int distance = test.output.distance(node);
            const RVEdge* edge = test.output.pTreeEdge(node);
            answer += text(node) + " " + (distance == kInfinite ? "-" : std::to_string(distance)) +
                      (edge == nullptr ? "" : " " + text(edge)) + "; ";
        }
        EXPECT_EQ(answer, c.answer);
    }
}

TEST(SingleSource, TakesMapsAndSetsOver) {
    const TestGraph g("s->a b->a");
    SingleSource test(g);
    auto* costs = new RVHashMap();
    costs->put(g.edge("s->a"), new RVInt(7));
    test.input.pCostMap(costs);
    auto* undirected = new RVHashSet();
    undirected->add(g.edge("b->a"));
    test.input.pUndirectedEdgeSet(undirected);
    test.input.cost(g.edge("s->a"), 8);
    test.input.pStartNode(g.node("s"));
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(test.output.distance(g.node("b")), 9);
    test.input.pCostMap(nullptr);
    EXPECT_EQ(test.input.cost(g.edge("s->a")), 1);
    EXPECT_EQ(test.input.undirected(g.edge("b->a"), 0), 0);
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(test.output.distance(g.node("b")), kInfinite);
    EXPECT_EQ(test.input.intField("undirected"), 0);
    EXPECT_FALSE(test.input.hasField("undirected"));
}

// Values are the same whether a map or set of them has been handed out, also in copies and in a later run.
TEST(SingleSource, HandsMapsAndSetsOut) {
    const TestGraph g("s->a b->a a->c");
    SingleSource test(g);
    test.input.pStartNode(g.node("s"));
    test.input.cost(g.edge("s->a"), 7);
    test.input.cost(g.node("a"), 3);
    test.input.undirected(g.edge("b->a"), 5);
    RVHashMap* const costs = test.input.pCostMap();
    EXPECT_EQ(costs->length(), 2);
    EXPECT_EQ(costs->getInt(g.edge("s->a"), 0), 7);
    costs->putInt(g.edge("b->a"), 4);
    EXPECT_EQ(test.input.cost(g.edge("b->a")) + test.input.cost(g.node("a")), 7);
    RVHashSet* const undirected = test.input.pUndirectedEdgeSet();
    EXPECT_TRUE(undirected->contains(g.edge("b->a")));
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(test.output.distance(g.node("b")), 11);
    RVHashMap* const distances = test.output.pDistanceMap();
    RVHashMap* const treeEdges = test.output.pTreeEdgeMap();
    EXPECT_EQ(distances->length(), 4);
    EXPECT_EQ(treeEdges->get(g.node("b")), g.edge("b->a"));

    undirected->remove(g.edge("b->a"));
    costs->putInt(g.edge("s->a"), -1);
    EXPECT_TRUE(test.input.hasNegativeCosts(g));
    const RVSingleSourceShortestPathsOutputData copy(test.output);
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(distances, test.output.pDistanceMap());
    EXPECT_EQ(distances->length(), 3);
    EXPECT_EQ(treeEdges->length(), 2);
    EXPECT_EQ(test.output.distance(g.node("c")), 0);
    EXPECT_EQ(test.output.pTreeEdge(g.node("b")), nullptr);
    EXPECT_EQ(copy.distance(g.node("c")), 8);
    EXPECT_EQ(copy.pTreeEdge(g.node("b")), g.edge("b->a"));
}

TEST(SingleSource, AgreesWithAllSimplePaths) {
    SingleSource test;
    int cycles = 0;
    int reached = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 7,
                                                     .edges = 12,
                                                     .least = seed % 3 == 0 ? 0 : -2,
                                                     .most = 7,
                                                     .undirected = seed % 3 == 2 ? 0 : 8,
                                                     .acyclic = seed % 6 == 5});
        const MarkedGraph g(tokens, seed);
        const int directed = seed % 7 == 0 ? 0 : 1;
        const Ways ways = directed == 0 ? Ways::both : Ways::drawn;
        PathOracle oracle(g, ways, false);
        for (RVNode* start : *g->pNodeList()) {
            SCOPED_TRACE(std::to_string(seed) + ", " + text(start) + ": " + tokens);
            const bool hasCycle = oracle.hasNegativeCycle(start);
            ASSERT_EQ(run(test, g, start, directed), hasCycle ? 18 : 0);
            cycles += hasCycle ? 1 : 0;
            for (RVNode* node : *g->pNodeList()) {
                if (hasCycle) break;
                const auto best = oracle.cheapest(start, node);
                ASSERT_EQ(test.output.distance(node), best ? *best : kInfinite) << text(node);
                RVEdge* edge = test.output.pTreeEdge(node);
                ASSERT_EQ(edge == nullptr, node == start || !best) << text(node);
                if (edge == nullptr) continue;
                RVNode* const before = follow(edge, node, Ways::both);
                EXPECT_EQ(test.output.distance(before) + number(edge, 0, 0), *best) << text(node);
                ++reached;
            }
        }
    }
    EXPECT_GT(reached, 1000);
    EXPECT_GT(cycles, 200);
}

// Sorted paths

// The first paths, with their costs.
std::string firstPaths(const RVSortedPathsOutputData& output, int most) {
    std::string all;
    RVSortedPathsEnumerator path(&output);
    RVEdgeDList edges;
    while (most-- > 0 && path.next()) {
        path.buildEdgeList(edges);
        all += std::to_string(path.totalCost()) + ": " + text(edges) + "; ";
    }
    return all;
}

TEST(SortedPaths, GivePathsInTheOrderOfTheirCost) {
    const struct {
        const char* what;
        const char* graph;
        int code;
        const char* paths;
        int number;
        int acyclic;
    } cases[] = {
        {"two parallel edges", "s->f:2 s->f:5", 0, "2: s->f:2; 5: s->f:5; ", 2, 1},
        {"a cycle of no cost", "s->a:1 a->a:0 a->f:1", 0,
         "2: s->a:1 a->f:1; 2: s->a:1 a->a:0 a->f:1; 2: s->a:1 a->a:0 a->a:0 a->f:1; ", kInfinite, 0},
        {"a negative cycle", "s->a:1 a->a:-1 a->f:1", 18, "", 0, 1},
        {"no way", "f->s:1 s->a:1 a->a:-1", 0, "", 0, 1},
        {"infinite", "s->a:2147483647 a->f:0", 0, "", 0, 1},
        {"edge and node past the range, a negative cycle",
         "s->a:0 a->b:-2000000000 b:-2000000000 b->c:1500000000 c->a:1500000000 b->f:0", 18, "", 0, 1},
        {"edge and node past the range, no negative cycle",
         "s->a:0 a->b:-2000000000 b:-2000000000 b->a:2147483647 a:2147483647 b->f:2000000000", 0,
         "147483647: s->a:0 a->b:-2000000000 b->f:2000000000; 442450941: s->a:0 a->b:-2000000000 "
         "b->a:2147483647 "
         "a->b:-2000000000 b->f:2000000000; 737418235: s->a:0 a->b:-2000000000 b->a:2147483647 "
         "a->b:-2000000000 "
         "b->a:2147483647 a->b:-2000000000 b->f:2000000000; ",
         kInfinite, 0},
        {"edge and node past the range, infinite", "s->a:2000000000 a:2000000000 a->f:-10", 0, "", 0, 1},
        {"edge and node past the range, in range in the end",
         "s->a:-2000000000 a:-2000000000 a->f:2147483646", 0,
         "-1852516354: s->a:-2000000000 a->f:2147483646; ", 1, 1},
        {"a detour past the range", "s->f:-1500000000 s->f:1000000000", 0,
         "-1500000000: s->f:-1500000000; 1000000000: s->f:1000000000; ", 2, 1},
        {"below the range on the way", "s->v:150 v->w:-2147483648 w->f:-100 v->x:-2147483648 x->f:10", 0,
         "-2147483598: s->v:150 v->w:-2147483648 w->f:-100; -2147483488: s->v:150 v->x:-2147483648 x->f:10; ",
         2, 1},
        {"infinite but for one", "s->a:2147483640 a->f:6 a->f:7 s->f:2147483646", 0,
         "2147483646: s->a:2147483640 a->f:6; 2147483646: s->f:2147483646; ", 3, 1},
    };
    SortedPaths test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(runOn(test, g, g.node("s"), g.node("f")), c.code);
        EXPECT_EQ(firstPaths(test.output, 3), c.paths);
        EXPECT_EQ(test.output.numberOfPaths(), c.number);
        EXPECT_EQ(test.output.acyclic(), c.acyclic);
        EXPECT_EQ(test.output.pathExists(), *c.paths != '\0' ? 1 : 0);
        test.output.discardPathGraph();
        EXPECT_EQ(firstPaths(test.output, 3), "");
    }
}

TEST(SortedPaths, StartWhereTheyFinish) {
    SortedPaths test;
    const TestGraph g("s->a:1 s:4 b->s:1 s->b:2");
    EXPECT_EQ(runOn(test, g, g.node("s"), g.node("s")), 0);
    EXPECT_EQ(firstPaths(test.output, 3), "0: ; 7: s->b:2 b->s:1; 14: s->b:2 b->s:1 s->b:2 b->s:1; ");
    RVSortedPathsEnumerator path(&test.output);
    EXPECT_EQ(path.totalCost() + path.pathNumber() + path.totalCostWithoutFinishNode(), 0);
    EXPECT_TRUE(path.next());
    EXPECT_EQ(path.totalCostWithoutFinishNode(), 0);
    EXPECT_TRUE(path.next());
    EXPECT_EQ(path.totalCostWithoutFinishNode(), 3);
    EXPECT_EQ(path.pathNumber(), 2);
    test.output.discardPathGraph();
}

// Heaps within heaps: their order, their number of edges, what they share, and how many nodes there are.
void expectPathGraph(const RVSortedPathsOutputData& output, const RVGraph* graph) {
    const RVGraph* const paths = output.pPathGraph();
    ASSERT_NE(paths, nullptr);
    std::map<const RVNode*, int> delta;
    for (RVNode* node : *paths->pNodeList()) {
        int heapEdges = 0;
        int crossEdges = 0;
        for (RVEdge* edge : *node->pOutEdgeList()) {
            EXPECT_GE(output.cost(edge), 0);
            EXPECT_EQ(output.type(edge) == 0, node == output.pRootNode());
            heapEdges += output.type(edge) == 1 ? 1 : 0;
            crossEdges += output.type(edge) == 2 ? 1 : 0;
            if (output.type(edge) == 1) continue;
            // Root and cross edges cost what the detour costs.
            const auto known = delta.emplace(edge->pTargetNode(), output.cost(edge)).first;
            EXPECT_EQ(known->second, output.cost(edge));
        }
        EXPECT_LE(heapEdges, 3);
        EXPECT_LE(crossEdges, 1);
        EXPECT_EQ(output.pSidetrackEdge(node) == nullptr, node == output.pRootNode());
    }
    const double n = graph->numberOfNodes();
    EXPECT_LE(paths->numberOfNodes(), graph->numberOfEdges() + n * (std::log2(n) + 2));
}

// The costs of the cheapest walks, by brute force. What is at least still to come from a node tells which
// walk goes on next.
std::vector<std::int64_t> walkCosts(const RVGraph* graph, RVNode* start, RVNode* finish,
                                    const std::map<RVNode*, std::int64_t>& rest, std::size_t most) {
    std::vector<std::int64_t> costs;
    int found = 0;
    std::map<std::pair<std::int64_t, int>, RVNode*> walks{{{rest.at(start), found}, start}};
    while (!walks.empty() && costs.size() < most) {
        const auto [key, at] = *walks.begin();
        walks.erase(walks.begin());
        if (at == finish) costs.push_back(key.first);
        for (RVEdge* edge : *graph->pEdgeList()) {
            RVNode* const next = edge->pTargetNode();
            if (edge->pSourceNode() != at || rest.count(next) == 0) continue;
            const std::int64_t cost = key.first - rest.at(at) + number(edge) + number(next, 0, 0);
            walks[{cost + rest.at(next), ++found}] = next;
        }
    }
    return costs;
}

TEST(SortedPaths, AgreeWithAllWalksAndPaths) {
    SortedPaths test;
    int compared = 0;
    int longest = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 6,
                                                     .edges = 11,
                                                     .least = seed % 3 == 0   ? -1
                                                              : seed % 3 == 1 ? 0
                                                                              : 1,
                                                     .most = 5,
                                                     .nodeNumbers = seed % 2 == 0});
        const MarkedGraph g(tokens, seed);
        PathOracle oracle(g, Ways::directed, true);
        RVNode* const start = g->pFirstNode();
        for (RVNode* finish : *g->pNodeList()) {
            SCOPED_TRACE(std::to_string(seed) + ", to " + text(finish) + ": " + tokens);
            // A walk pays for the node where it ends, but not for that where it starts.
            std::map<RVNode*, std::int64_t> rest;
            for (RVNode* node : *g->pNodeList()) {
                const auto best = oracle.cheapest(node, finish);
                if (node == finish) {
                    rest[node] = 0;
                } else if (best) {
                    rest[node] = *best + oracle.costOf(finish);
                }
            }
            const bool hasCycle = oracle.hasNegativeCycle(start, finish);
            ASSERT_EQ(runOn(test, g, start, finish), hasCycle ? 18 : 0);
            if (hasCycle || rest.count(start) == 0) {
                EXPECT_EQ(test.output.pathExists() + test.output.numberOfPaths(), 0);
                continue;
            }
            EXPECT_EQ(test.output.shortestPathLength(), rest[start]);
            expectPathGraph(test.output, g);

            RVSortedPathsEnumerator path(&test.output);
            RVEdgeDList edges;
            std::set<std::string> walks;
            std::vector<std::int64_t> costs;
            while (path.pathNumber() < 60 && path.next()) {
                path.buildEdgeList(edges);
                std::string walk;
                std::int64_t cost = 0;
                const RVNode* at = start;
                for (const RVEdge* edge : edges) {
                    ASSERT_EQ(edge->pSourceNode(), at);
                    at = edge->pTargetNode();
                    cost += number(edge) + number(at, 0, 0);
                    walk += " " + std::to_string(edge->denseIndex());
                }
                ASSERT_EQ(at, finish);
                ASSERT_EQ(path.totalCost(), cost);
                EXPECT_TRUE(walks.insert(walk).second) << walk;
                costs.push_back(cost);
                longest = std::max(longest, edges.length());
            }
            ASSERT_EQ(costs, walkCosts(g, start, finish, rest, 60));
            ++compared;
            const std::multiset<std::int64_t> simple = oracle.simplePathCosts(start, finish);
            if (test.output.acyclic() != 0) {
                EXPECT_EQ(test.output.numberOfPaths(), static_cast<int>(simple.size()));
            }

            // Those without repetition, all of them.
            const std::int64_t end = start == finish ? 0 : oracle.costOf(finish);
            std::multiset<std::int64_t> givenSimple;
            RVSortedPathsEnumerator simplePath(&test.output);
            simplePath.simplePathsOnly(1);
            while (simplePath.next()) {
                simplePath.buildEdgeList(edges);
                std::set<const RVNode*> nodes{start};
                for (const RVEdge* edge : edges) ASSERT_TRUE(nodes.insert(edge->pTargetNode()).second);
                givenSimple.insert(simplePath.totalCost() - end);
            }
            EXPECT_EQ(givenSimple, simple);
            test.output.discardPathGraph();
        }
    }
    EXPECT_GT(compared, 800);
    EXPECT_GT(longest, 8);
}

TEST(SortedPaths, LeaveThePathGraphToTheCaller) {
    const TestGraph g("s->f:1 s->f:2 s->a:1 a->f:1");
    auto test = std::make_unique<SortedPaths>();
    ASSERT_EQ(runOn(*test, g, g.node("s"), g.node("f")), 0);
    const std::unique_ptr<RVGraph> paths(test->output.pPathGraph());
    ASSERT_NE(paths, nullptr);
    const RVSortedPathsOutputData copy(test->output);
    RVSortedPathsEnumerator path(&copy);
    EXPECT_TRUE(path.next());
    test->output.reset();
    EXPECT_EQ(test->output.pPathGraph(), nullptr);
    EXPECT_EQ(test->output.pTreeEdge(g.node("s")), nullptr);
    test.reset();
    EXPECT_TRUE(path.next());
    const RVSortedPathsEnumerator second(path);
    EXPECT_EQ(second.totalCost(), 2);

    RVSortedPathsOutputData kept(copy);
    paths->discardNode(kept.pRootNode());
    EXPECT_EQ(kept.pRootNode(), nullptr);
    EXPECT_FALSE(RVSortedPathsEnumerator(&kept).next());
    // Values are those of one graph.
    RVEdge* const foreign = g.edge("s->f:1");
    EXPECT_EQ(kept.cost(foreign, 9), 9);
    EXPECT_EQ(kept.cost(foreign) + kept.type(foreign) + kept.cost(nullptr), 0);
    RVSortedPathsOutputData plain;
    plain.pRootNode(g.node("s"));
    plain.pPathGraph(g);
    EXPECT_EQ(plain.pRootNode(), g.node("s"));
    plain.pPathGraph(nullptr);
    EXPECT_EQ(plain.pRootNode(), nullptr);
    plain.cost(foreign, 9);
    plain.type(foreign, 2);
    plain.pSidetrackEdge(g.node("s"), foreign);
    EXPECT_EQ(plain.cost(foreign) + plain.type(foreign), 11);
    EXPECT_EQ(plain.pSidetrackEdge(g.node("s")), foreign);
    EXPECT_EQ(plain.pPathGraph(), nullptr);
    EXPECT_FALSE(RVSortedPathsEnumerator(nullptr).next());

    // A walk does not go on in another path graph.
    SortedPaths again;
    ASSERT_EQ(runOn(again, g, g.node("s"), g.node("f")), 0);
    RVSortedPathsEnumerator stale(&again.output);
    EXPECT_TRUE(stale.next());
    again.output.discardPathGraph();
    ASSERT_EQ(again(), 0);
    EXPECT_FALSE(stale.next());
    again.output.discardPathGraph();
}

// Hooks of a subclass that change the graph after it was read, or throw before they do what is theirs.
class Meddler : public RVSortedPathsAlgorithm {
public:
    RVNode* from = nullptr;
    RVNode* to = nullptr;
    bool throws = false;

protected:
    void preprocessGraph() override {
        for (int i = 0; i < 40 && from != nullptr; ++i)
            pAssociatedGraph()->addEdge(pInternalData()->pCopyNode(from), pInternalData()->pCopyNode(to), 0);
        RVSortedPathsAlgorithm::preprocessGraph();
    }
    void privatePostprocessGraph() override {
        if (throws) throw 1;
        RVSortedPathsAlgorithm::privatePostprocessGraph();
    }
};

TEST(SortedPaths, BearHooksThatMeddle) {
    const TestGraph g("e s->f:5 x->s");
    const std::string before = orders(g);
    Runner<Meddler, RVSortedPathsInputData, RVSortedPathsOutputData> test(g);
    test.input.pStartNode(g.node("s"));
    test.input.pFinishNode(g.node("f"));
    test.algorithm.from = g.node("s");
    test.algorithm.to = g.node("f");
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(test.output.numberOfPaths(), 41);
    test.output.discardPathGraph();
    test.algorithm.from = nullptr;
    test.algorithm.throws = true;
    test.algorithm.useOriginalGraph(1);
    EXPECT_THROW(test(), int);
    EXPECT_EQ(orders(g), before);
    test.output.discardPathGraph();
}

// Twice as many paths with every diamond, until there are too many to count.
TEST(SortedPaths, CountToTheEndOfTheRange) {
    const struct {
        int diamonds;
        bool oneMore;
        int number;
    } cases[] = {{30, false, 1 << 30}, {31, false, kInfinite}, {30, true, 1073741825}};
    for (const auto& c : cases) {
        const TestGraph g;
        const std::vector<RVNode*> nodes = addChain(g, c.diamonds + 1);
        for (std::size_t i = 1; i < nodes.size(); ++i) g->addEdge(nodes[i - 1], nodes[i]);
        if (c.oneMore) g->addEdge(nodes.front(), nodes.back());
        SortedPaths test;
        test.input.pStartNode(nodes.front());
        test.input.pFinishNode(nodes.back());
        EXPECT_EQ(test(g), 0);
        EXPECT_EQ(test.output.numberOfPaths(), c.number);
        test.output.discardPathGraph();
    }
}

// A long way with a detour at every step, walked far.
TEST(SortedPaths, TakeLargeGraphs) {
    constexpr int kNodes = 100000;
    const TestGraph graph;
    const std::vector<RVNode*> nodes = addChain(graph, kNodes);
    SortedPaths test(graph);
    for (std::size_t i = 1; i < nodes.size(); ++i) test.input.cost(graph->addEdge(nodes[i - 1], nodes[i]), 2);
    test.input.pStartNode(nodes.front());
    test.input.pFinishNode(nodes.back());
    EXPECT_EQ(test(), 0);
    EXPECT_EQ(test.output.numberOfPaths(), kInfinite);
    expectPathGraph(test.output, graph);
    RVSortedPathsEnumerator path(&test.output);
    while (path.pathNumber() < 200000 && path.next()) {
        const int detours = path.pathNumber() == 1 ? 0 : path.pathNumber() <= kNodes ? 1 : 2;
        ASSERT_EQ(path.totalCost(), kNodes - 1 + detours);
    }
    test.output.discardPathGraph();
}

}  // namespace
