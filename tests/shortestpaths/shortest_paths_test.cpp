// Dijkstra traversal, acyclic shortest paths, the shortest-path service and the unique path test.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/shortestpaths/path_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// The path with its cost, or the code.
template <class Run>
std::string answer(Run& test, const TestGraph& g, const char* start, const char* finish, int undirected = 0) {
    const int code = runOn(test, g, g.node(start), g.node(finish), undirected);
    if (code != 0) return "code " + std::to_string(code);
    RVEdgeDList path;
    path.appendEdge(nullptr);
    test.output.buildEdgeList(path);
    EXPECT_EQ(text(path), text(*test.output.pEdgeList()));
    if constexpr (requires { test.output.uniquePathExists(); }) {
        return (test.output.uniquePathExists() != 0 ? "unique: " : "not unique: ") + text(path);
    } else {
        if (test.output.pathExists() == 0) {
            EXPECT_EQ(path.length(), 0);
            EXPECT_EQ(test.output.totalCost(), kInfinite);
            return "none";
        }
        return std::to_string(test.output.totalCost()) + ": " + text(path);
    }
}

struct Case {
    const char* what;
    const char* graph;
    const char* start;
    const char* finish;
    int undirected;
    const char* answer;
};

template <class Run, std::size_t n>
void expectAnswers(Run& test, const Case (&cases)[n]) {
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(answer(test, TestGraph(c.graph), c.start, c.finish, c.undirected), c.answer);
    }
}

TEST(Dijkstra, FindsACheapestPath) {
    Dijkstra test;
    expectAnswers(
        test,
        {
            {"first parallel", "a->b:2 a->b:2,7", "a", "b", 0, "2: a->b:2"},
            {"of the dearest parallels the first", "b->c a->b:2147483647 a->b:2147483647,7", "a", "b", 0,
             "none"},
            {"first of opposite edges", "b->a:1 a->b:1", "a", "b", 1, "1: b->a:1"},
            {"first of equal paths", "a->c:1 a->b:1 b->d:1 c->d:1", "a", "d", 0, "2: a->c:1 c->d:1"},
            {"zero-cost cycle", "a->b:0 b->a:0 b->b:0 b->c:0", "a", "c", 0, "0: a->b:0 b->c:0"},
            {"a sum that is infinite", "a->b:2147483647 b->c:5", "a", "c", 0, "none"},
            {"the largest sum", "a->b:2147483640 b->c:6", "a", "c", 0, "2147483646: a->b:2147483640 b->c:6"},
            {"a sum past the largest", "a->b:2147483640 b->c:7 a->d:2147483646 d->c:2147483646", "a", "c", 0,
             "none"},
            {"a negative cost anywhere", "a->b:1 c->c:-1", "a", "b", 0, "code 999"},
        });
}

TEST(Dijkstra, StoresDistancesWhenAsked) {
    const TestGraph g("s->a:2 a->b:3 s->b:9 b--c:1 x->s:1 e s->s:1");
    Dijkstra test;
    const auto distances = [&] {
        std::string all;
        for (RVNode* node : *g->pNodeList())
            all += text(node) + "=" + std::to_string(test.output.dist(node)) + " ";
        return all;
    };
    EXPECT_EQ(runOn(test, g, g.node("s"), g.node("a")), 0);
    EXPECT_EQ(distances(), "s=-100 a=-100 b=-100 c=-100 x=-100 e=-100 ");
    test.algorithm.storeDistances(1);
    EXPECT_EQ(runOn(test, g, g.node("s"), g.node("e")), 0);
    EXPECT_EQ(distances(), "s=0 a=2 b=5 c=6 x=2147483647 e=2147483647 ");
    test.output.reset();
    EXPECT_EQ(distances(), "s=-100 a=-100 b=-100 c=-100 x=-100 e=-100 ");

    // An output without distances is as good.
    RVShortestPathsOutputData plain;
    test.algorithm.pOutputData(&plain);
    EXPECT_EQ(runOn(test, g, g.node("s"), g.node("c")), 0);
    EXPECT_EQ(plain.totalCost(), 6);
}

TEST(AcyclicPaths, TakesTheOrderThatItIsGiven) {
    const struct {
        const char* what;
        const char* graph;
        const char* order;
        const char* start;
        const char* finish;
        const char* answer;
    } cases[] = {
        {"a node left out", "s->a:1 a->f:1 s->f:5", "s f", "s", "f", "5: s->f:5"},
        {"a node left out on the only way", "s->a:1 a->f:1", "s f", "s", "f", "none"},
        {"nothing", "s->f:1", "", "s", "f", "none"},
        {"nothing and no way to go", "s->f:1", "", "s", "s", "0: "},
        {"first of equal paths", "a->f:1 s->a:1 s->f:2", "s a f", "s", "f", "2: s->f:2"},
        {"no order", "s->a:1 a->f:1", "a s f", "s", "f", "none"},
        {"a circle of parents", "s->a:5 a->b:-2 b->a:-2 b->f:0", "s a b a b", "s", "f", "none"},
        {"a circle through the start", "s->a:1 a->s:-2 a->f:1", "s a s a", "s", "f", "1: s->a:1 a->f:1"},
        {"the least sum", "s->a:-2147483648 a->f:-1 f->g:1", "s a f g", "s", "g",
         "-2147483647: s->a:-2147483648 a->f:-1 f->g:1"},
        {"infinite before negative", "s->a:2147483647 a->f:-5", "s a f", "s", "f", "none"},
    };
    AcyclicPaths test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        *test.input.pCandidateNodeList() = g.nodes(c.order);
        EXPECT_EQ(answer(test, g, c.start, c.finish), c.answer);
    }
    const TestGraph g("a->b");
    const TestGraph other("x");
    for (RVNode* foreign : {other.node("x"), static_cast<RVNode*>(nullptr)}) {
        *test.input.pCandidateNodeList() = g.nodes("a b");
        test.input.pCandidateNodeList()->appendNode(foreign);
        EXPECT_EQ(answer(test, g, "a", "b"), "code 999");
    }
}

TEST(ShortestPaths, FindsACheapestPathWhateverTheCosts) {
    ShortestPaths test;
    expectAnswers(
        test,
        {
            {"acyclic, first in-edge", "a->b:1 c->f:-1 b->f:-1 a->c:1", "a", "f", 0, "0: a->c:1 c->f:-1"},
            {"undirected and negative, past the range", "a->b:1 b--c:-1073741825 c->f:1", "a", "f", 0,
             "code 18"},
            {"undirected and most negative", "a->b:1 b--c:-2147483648 c->f:1", "a", "f", 0, "code 18"},
            {"no step through a cycle that the node makes dear", "a:5 a->b:-1 b->a:-1", "a", "a", 0,
             "-2: a->b:-1 b->a:-1"},
            {"past the largest sum on the way", "c->d:-1073741824 b->c:1073741824 a->b:2147483646 c->b:1",
             "a", "d", 0, "none"},
            {"the largest sum", "b:1 a->b:2147483640 b->f:5", "a", "f", 0,
             "2147483646: a->b:2147483640 b->f:5"},
            {"past the largest sum", "b:2 a->b:2147483640 b->f:5", "a", "f", 0, "none"},
            {"past the largest sum, acyclic", "a->b:2147483640 b->f:9 a->c:-1", "a", "f", 0, "none"},
            {"the least sum", "a->b:-2147483648 b->f:-1", "a", "f", 0,
             "-2147483648: a->b:-2147483648 b->f:-1"},
            {"a cycle whose 32-bit sum wraps", "a->b:1 b->c:2 c->b:2147483646 c->f:-5", "a", "f", 0,
             "code 18"},
        });
}

TEST(UniquePath, TellsWhetherThereIsOnlyOne) {
    UniquePath test;
    expectAnswers(test, {
                            {"parallels", "a->b b->c:1 b->c:2", "a", "c", 0, "not unique: a->b b->c:1"},
                            {"none", "b->a", "a", "b", 0, "not unique: "},
                            {"undirected beside directed", "b--a a->b:1", "a", "b", 0, "not unique: a->b:1"},
                        });
}

TEST(Paths, AgreeWithAllSimplePaths) {
    Dijkstra dijkstra;
    AcyclicPaths acyclic;
    ShortestPaths service;
    UniquePath unique;
    TopologicalSort sort;
    dijkstra.algorithm.storeDistances(1);
    int paths = 0;
    int cycles = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        const bool isAcyclic = seed % 5 == 1;
        const bool isNegative = isAcyclic || seed % 5 > 2;
        const std::string tokens = randomText(seed, {.nodes = 6,
                                                     .edges = 10,
                                                     .least = isAcyclic    ? -6
                                                              : isNegative ? -2
                                                                           : 0,
                                                     .most = 7,
                                                     .undirected = isAcyclic ? 0 : 20,
                                                     .acyclic = isAcyclic,
                                                     .nodeNumbers = seed % 2 == 0});
        const MarkedGraph g(tokens, seed);
        const int undirected = seed % 5 == 2 ? 1 : 0;
        const Ways ways = undirected != 0 ? Ways::both : Ways::drawn;
        PathOracle withNodes(g, ways, true);
        PathOracle withoutNodes(g, ways, false);
        const Distances steps(g, ways);
        const bool canSort = sort(g) == RV_NO_ERROR && sort.output.acyclic() != 0 && undirected == 0 &&
                             tokens.find("--") == std::string::npos;
        for (RVNode* start : *g->pNodeList()) {
            for (RVNode* finish : *g->pNodeList()) {
                SCOPED_TRACE(std::to_string(seed) + ", " + text(start) + " to " + text(finish) + ": " +
                             orders(g));
                const auto check = [&](auto& test, PathOracle& oracle) {
                    const auto best = oracle.cheapest(start, finish);
                    ASSERT_EQ(test.output.pathExists(), best ? 1 : 0);
                    ASSERT_EQ(test.output.totalCost(), best ? *best : kInfinite);
                    if (best) oracle.expectPath(*test.output.pEdgeList(), start, finish, *best);
                    paths += test.output.pEdgeList()->length() > 1 ? 1 : 0;
                };
                // The service.
                const bool hasCycle = withNodes.hasNegativeCycle(start, finish);
                const int code = runOn(service, g, start, finish, undirected);
                ASSERT_EQ(code, hasCycle ? 18 : 0);
                if (hasCycle) {
                    ++cycles;
                    EXPECT_EQ(service.output.pathExists() + service.output.pEdgeList()->length(), 0);
                } else {
                    check(service, withNodes);
                }
                // Under edge costs alone.
                const int dijkstraCode = runOn(dijkstra, g, start, finish, undirected);
                if (dijkstraCode == 0) {
                    check(dijkstra, withoutNodes);
                    for (RVNode* node : *g->pNodeList()) {
                        const auto best = withoutNodes.cheapest(start, node);
                        EXPECT_EQ(dijkstra.output.dist(node), best ? *best : kInfinite) << text(node);
                    }
                } else {
                    EXPECT_TRUE(isNegative);
                    EXPECT_EQ(dijkstraCode, 999);
                }
                if (canSort) {
                    *acyclic.input.pCandidateNodeList() = *sort.output.pNodeList();
                    ASSERT_EQ(runOn(acyclic, g, start, finish), 0);
                    check(acyclic, withoutNodes);
                }
                ASSERT_EQ(runOn(unique, g, start, finish, undirected), 0);
                const std::size_t count = withoutNodes.simplePathCosts(start, finish).size();
                EXPECT_EQ(unique.output.uniquePathExists(), count == 1 ? 1 : 0);
                if (count > 0) {
                    EXPECT_EQ(unique.output.pEdgeList()->length(), steps(start, finish));
                }
            }
        }
    }
    EXPECT_GT(paths, 900);
    EXPECT_GT(cycles, 300);
}

// Ties, parallel and opposite edges, lists in all orders, and sums that leave the range.
TEST(Paths, AreThoseOfTheHooks) {
    Dijkstra dijkstra;
    AcyclicPaths acyclic;
    ShortestPaths service;
    OnHooks<Dijkstra> hookedDijkstra;
    OnHooks<AcyclicPaths> hookedAcyclic;
    OnHooks<ShortestPaths> hookedService;
    for (unsigned seed = 0; seed < 600 && !HasFailure(); ++seed) {
        const int least = seed % 3 == 0 ? 0 : -3;
        const std::string tokens = randomText(
            seed, {.nodes = 6, .edges = 18, .least = least, .most = 3, .undirected = seed % 4 == 0 ? 30 : 0});
        const MarkedGraph g(tokens, seed);
        const int undirected = seed % 5 == 0 ? 1 : 0;
        const int scale = seed % 7 == 0 ? 1000000000 : 1;
        for (auto* run : {&dijkstra.algorithm, static_cast<RVDijkstraAlgorithm*>(&hookedDijkstra.algorithm),
                          static_cast<RVDijkstraAlgorithm*>(&acyclic.algorithm),
                          static_cast<RVDijkstraAlgorithm*>(&hookedAcyclic.algorithm)})
            run->storeDistances(seed % 2 == 0 ? 1 : 0);
        const auto answer = [&](auto& run) {
            run.input.pStartNode(g->pFirstNode());
            run.input.pFinishNode(g->pLastNode());
            run.input.undirected(undirected);
            takeDrawnDirections(run.input, g);
            for (RVEdge* edge : *g->pEdgeList())
                run.input.cost(
                    edge, static_cast<int>(std::clamp<std::int64_t>(std::int64_t{number(edge, 0, 0)} * scale,
                                                                    -2147483648LL, kInfinite)));
            if constexpr (requires { run.input.pCandidateNodeList(); }) {
                run.input.pCandidateNodeList()->deleteAllCells();
                for (RVNode* node : *g->pNodeList()) run.input.pCandidateNodeList()->appendNode(node);
                if (seed % 3 == 1) run.input.pCandidateNodeList()->appendNode(g->pFirstNode());
            }
            const int code = run(g);  // an output stays as it was where the input is wrong
            return code == RV_ALGORITHM_FAILURE ? "failed" : std::to_string(code) + describe(run.output, g);
        };
        SCOPED_TRACE(std::to_string(seed) + ": " + orders(g));
        EXPECT_EQ(answer(dijkstra), answer(hookedDijkstra));
        EXPECT_EQ(answer(acyclic), answer(hookedAcyclic));
        EXPECT_EQ(answer(service), answer(hookedService));
    }
}

TEST(Paths, AnnounceCopiesThatAreDebugged) {
    Dijkstra dijkstra;
    AcyclicPaths acyclic;
    testing::internal::CaptureStdout();
    const RVDijkstraAlgorithm quiet(dijkstra.algorithm);
    dijkstra.algorithm.debugMode(1);
    acyclic.algorithm.debugMode(1);
    const RVDijkstraAlgorithm copy(dijkstra.algorithm, RVDeep);
    const RVShortestPathsAcyclicAlgorithm other(acyclic.algorithm);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Dijkstra algorithm running\n"
              "Dijkstra algorithm running\nAcyclic shortest paths algorithm running\n");
}

TEST(ShortestPathsBinTree, OrdersByCurrentCostAndArrival) {
    const TestGraph g("a b c d e");
    RVDijkstraInternalData data;
    RVShortestPathsBinTree& tree = *data.pCandidateNodeList();
    const auto add = [&](const char* name, int cost) {
        data.currentCost(g.node(name), cost);
        tree.addObject(g.node(name));
    };
    const auto order = [](const RVDList& list) {
        RVNodeDList nodes;
        nodes.copyAppendList(&list);
        return text(nodes);
    };
    add("a", 4);
    add("b", 0);
    add("c", -5);
    add("d", 4);
    EXPECT_EQ(order(tree), "c b a d");
    EXPECT_EQ(tree.virtualObjectCompare(g.node("a"), g.node("d")), 0);
    EXPECT_LT(tree.virtualObjectCompare(g.node("c"), g.node("b")), 0);

    // Costs that come later count from then on.
    RVShortestPathsBinTree late;
    late.addObject(g.node("a"));
    late.pData(&data);
    late.addObject(g.node("c"));
    EXPECT_EQ(order(late), "c a");

    // A copy of the data has a queue by its own costs.
    const RVDijkstraInternalData copy(data);
    copy.pCandidateNodeList()->addObject(g.node("b"));
    EXPECT_EQ(copy.pCandidateNodeList()->pData(), &copy);
    EXPECT_EQ(order(*copy.pCandidateNodeList()), "c b b a d");

    // A subclass that compares in another way is asked.
    class Backwards : public RVShortestPathsBinTree {
    public:
        using RVShortestPathsBinTree::RVShortestPathsBinTree;
        int virtualObjectCompare(RVObject* a, RVObject* b) const override {
            return RVShortestPathsBinTree::virtualObjectCompare(b, a);
        }
    };
    Backwards backwards(&data);
    backwards.copyTransferList(&tree);
    EXPECT_EQ(order(backwards), "a d b c");
}

// Chains of nodes that wait for one another, in a number at which squares would show.
TEST(Paths, TakeLargeGraphs) {
    constexpr int kNodes = 200000;
    const TestGraph graph;
    const std::vector<RVNode*> nodes = addChain(graph, kNodes);
    ShortestPaths service(graph);
    Dijkstra dijkstra(graph);
    for (RVEdge* edge : *graph->pEdgeList()) service.input.cost(edge, -1);
    for (std::size_t i = 1; i < nodes.size(); ++i) graph->addEdge(nodes.front(), nodes[i]);
    for (auto* input : {&service.input, &dijkstra.input}) {
        input->pStartNode(nodes.front());
        input->pFinishNode(nodes.back());
    }
    EXPECT_EQ(service(), 0);
    EXPECT_EQ(service.output.totalCost(), 1 - kNodes);
    EXPECT_EQ(service.output.pEdgeList()->length(), kNodes - 1);
    EXPECT_EQ(dijkstra(), 0);
    EXPECT_EQ(dijkstra.output.pEdgeList()->length(), 1);
}

}  // namespace
