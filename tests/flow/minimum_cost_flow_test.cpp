// Minimum cost flow, and the core that it shares with callers' algorithms.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Names say capacity and cost.
int run(MinimumCostFlow& test, RVGraph* graph, RVNode* source, RVNode* sink, int desired = 0) {
    test.input.pSourceNode(source);
    test.input.pSinkNode(sink);
    test.input.desiredFlow(desired);
    for (RVNode* node : *graph->pNodeList()) {
        test.input.capacity(node, number(node, 0, kInfinite));
        test.input.cost(node, number(node, 1, 0));
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        test.input.capacity(edge, number(edge, 0, 0));
        test.input.cost(edge, number(edge, 1, 0));
    }
    return test(graph);
}

TEST(MinimumCostFlow, SendsFlowAtLeastCost) {
    const struct {
        const char* what;
        const char* graph;
        const char* sink;
        int desired;
        const char* answer;  // flow at cost; flows
    } cases[] = {
        {"two routes", "s->a:2,1 a->t:2,0 s->b:10,5 b->t:10,0", "t", 5, "5 at 17; 2 2 3 3"},
        {"all parallel edges", "s->t:3,1 s->t:4,1", "t", 0, "7 at 7; 3 4"},
        {"a negative cost of a node without a limit", "a:2147483647,-3 s->a:2,1 a->t:2,1", "t", 0,
         "2 at 4; 2 2"},
        {"a negative cycle", "s->a:2,1 a->b:2,-3 b->a:2,1 b->t:2,1", "t", 0, "code 18"},
        {"a capacity below 0", "s->t:-1", "s", 0, "code 16"},
        {"a node's capacity below 0", "s->t:1 a:-1", "t", 0, "code 16"},
        {"a desired flow below 0 before that", "s->t:-1", "t", -1, "code 19"},
        {"around", "s->a:3,1 a->s:2,1 s->s:4,9 s->s:5,1", "s", 0, "11 at 45; 2 2 4 5"},
        {"around, then loops, cheapest first", "s->a:3,1 a->s:2,1 s->s:4,9 s->s:5,1", "s", 8,
         "8 at 18; 2 2 1 5"},
        {"around, only the way", "s->a:3,1 a->s:2,1 s->s:4,-9", "s", 1, "1 at 2; 1 1 0"},
        {"past the range", "s->a:2147483647,1 a->t:2147483647,0 s->b:2147483647,2 b->t:2147483647,0", "t", 0,
         "2147483647 at 2147483647; 2147483647 2147483647 2147483647 2147483647"},
        {"to the end of the range", "s->a:2147483647,0 a->t:2147483647,0 s->b:9,0 b->t:9,0", "t", 2147483647,
         "2147483647 at 0; 2147483647 2147483647 0 0"},
        {"an edge that no path can pay", "s->a:1,2147483647 a->t:1,2147483647 s->t:1,1", "t", 0,
         "1 at 1; 0 0 1"},
        {"dear edges", "s->a:1,2147483640 a->t:1,6 s->b:1,2147483600 b->t:1,0 b->a:9,2147483647", "t", 0,
         "2 at 2147483647; 1 1 1 1 0"},
    };
    MinimumCostFlow test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        const int code = run(test, g, g.node("s"), g.node(c.sink), c.desired);
        std::string answer =
            std::to_string(test.output.totalFlow()) + " at " + std::to_string(test.output.totalCost()) + ";";
        for (RVEdge* edge : *g->pEdgeList()) answer += " " + std::to_string(test.output.flow(edge));
        if (code != 0) answer = "code " + std::to_string(code);
        EXPECT_EQ(answer, c.answer);
    }
}

// The residual network of a flow, with two nodes for each node.
class Residual {
public:
    Residual(const MinimumCostFlow& test, const RVGraph* graph, bool isEmpty) {
        const auto inOf = [](const RVNode* node) { return 2 * node->denseIndex(); };
        for (RVNode* node : *graph->pNodeList()) {
            std::int64_t through = 0;
            for (RVEdge* edge : *node->pInEdgeList()) through += isEmpty ? 0 : test.output.flow(edge);
            const bool isEnd = node == test.input.pSourceNode() || node == test.input.pSinkNode();
            const int limit = isEnd ? kInfinite : test.input.capacity(node);
            const int cost =
                isEnd || (limit == kInfinite && test.input.cost(node) < 0) ? 0 : test.input.cost(node);
            add(inOf(node), inOf(node) + 1, limit == kInfinite ? kInfinite : limit - through, through, cost);
        }
        for (RVEdge* edge : *graph->pEdgeList()) {
            const int flow = isEmpty ? 0 : test.output.flow(edge);
            add(inOf(edge->pSourceNode()) + 1, inOf(edge->pTargetNode()), test.input.capacity(edge) - flow,
                flow, test.input.cost(edge));
        }
        m_nodes = 2 * graph->nodeIndexLimit();
    }
    bool hasNegativeCycle() const {
        std::vector<std::int64_t> distances(static_cast<std::size_t>(m_nodes));
        for (int round = 0; round <= m_nodes; ++round) {
            bool changed = false;
            for (const Arc& arc : m_arcs) {
                const std::int64_t distance = distances[static_cast<std::size_t>(arc.from)] + arc.cost;
                if (distance >= distances[static_cast<std::size_t>(arc.to)]) continue;
                distances[static_cast<std::size_t>(arc.to)] = distance;
                changed = true;
            }
            if (!changed) return false;
        }
        return true;
    }

private:
    struct Arc {
        int from;
        int to;
        int cost;
    };
    void add(int from, int to, std::int64_t forward, std::int64_t backward, int cost) {
        if (forward > 0) m_arcs.push_back({from, to, cost});
        if (backward > 0) m_arcs.push_back({to, from, -cost});
    }
    std::vector<Arc> m_arcs;
    int m_nodes = 0;
};

// A flow of the right amount that breaks no limit is one of least cost when its residual network has no
// negative cycle.
TEST(MinimumCostFlow, LeavesNoNegativeCycle) {
    MinimumCostFlow test;
    MaximumFlow most;
    int checked = 0;
    int negative = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const MarkedGraph g(randomText(seed, {.nodes = 7, .edges = 16}), seed);
        SCOPED_TRACE(std::to_string(seed) + ": " + orders(g));
        std::mt19937 random(seed);
        const auto below = [&](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        const int least = seed % 3 == 0 ? -2 : 0;
        MaximumFlow& bound = most;
        bound.input.pAssociatedGraph(g);
        for (RVNode* node : *g->pNodeList()) {
            test.input.capacity(node, bound.input.capacity(node, below(3) == 0 ? below(6) : kInfinite));
            test.input.cost(node, below(3) == 0 ? least + below(5) : 0);
        }
        for (RVEdge* edge : *g->pEdgeList()) {
            test.input.capacity(edge, bound.input.capacity(edge, below(6)));
            test.input.cost(edge, least + below(8));
        }
        RVNode* const source = g->pFirstNode();
        for (RVNode* sink : *g->pNodeList()) {
            test.input.pSourceNode(bound.input.pSourceNode(source));
            test.input.pSinkNode(bound.input.pSinkNode(sink));
            test.input.desiredFlow(below(3) == 0 ? 1 + below(5) : 0);
            const bool hadCycle = Residual(test, g, true).hasNegativeCycle();
            const int code = test(g);
            ASSERT_EQ(bound(g), 0);
            if (hadCycle) {
                ++negative;
                ASSERT_TRUE(code == 0 || code == 18) << code;
                continue;  // cycles on no way from source to sink are not sought
            }
            ASSERT_EQ(code, 0);
            std::int64_t cost = 0;
            for (RVNode* node : *g->pNodeList()) {
                std::int64_t in = 0;
                std::int64_t out = 0;
                for (RVEdge* edge : *node->pInEdgeList()) in += test.output.flow(edge);
                for (RVEdge* edge : *node->pOutEdgeList()) out += test.output.flow(edge);
                if (node == source || node == sink) continue;
                EXPECT_EQ(in, out) << text(node);
                EXPECT_LE(in, test.input.capacity(node));
                const bool counts = test.input.capacity(node) < kInfinite || test.input.cost(node) > 0;
                cost += counts ? in * test.input.cost(node) : 0;
            }
            for (RVEdge* edge : *g->pEdgeList()) {
                EXPECT_GE(test.output.flow(edge), 0);
                EXPECT_LE(test.output.flow(edge), test.input.capacity(edge));
                cost += std::int64_t{test.output.flow(edge)} * test.input.cost(edge);
            }
            EXPECT_EQ(test.output.totalCost(), cost);
            if (source == sink) continue;
            const int desired = test.input.desiredFlow();
            EXPECT_EQ(test.output.totalFlow(),
                      desired == 0 ? bound.output.totalFlow() : std::min(desired, bound.output.totalFlow()));
            EXPECT_FALSE(Residual(test, g, false).hasNegativeCycle());
            checked += test.output.totalFlow() > 1 ? 1 : 0;
        }
    }
    EXPECT_GT(checked, 300);
    EXPECT_GT(negative, 50);
}

// Minimum cost flow with hooks of a caller's, which look at the outputs of the searches, close an end, and
// make costs negative behind the algorithm's back.
class HookedFlow : public RVMinimumCostFlowAlgorithm {
public:
    bool hasStart = true;
    bool hasClosedSource = false;
    int firstCost = 0;
    int distances = 0;
    int updates = 0;

protected:
    void parseInputData() override {
        RVMinimumCostFlowAlgorithm::parseInputData();
        RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
        if (firstCost != 0) data->cost(pAssociatedGraph()->pFirstEdge(), firstCost);
        if (hasClosedSource) data->capacity(data->pSourceNode(), 0);
    }
    void pStartNode(RVAnalysisInputData* input, RVNode* node) const override {
        if (hasStart) RVMinimumCostFlowAlgorithm::pStartNode(input, node);
    }
    int finished() const override {
        EXPECT_EQ(RVFlowAlgorithm::finished(), 0);
        return RVMinimumCostFlowAlgorithm::finished();
    }
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override {
        auto* answer = RVDijkstraOutputData::castDown(output);
        for (RVNode* node : *pMinimumCostFlowInternalData()->pCopyGraph()->pNodeList()) {
            if (answer->dist(node) >= 0) ++distances;
        }
        RVMinimumCostFlowAlgorithm::updateGraphData(input, output, amount);
        ++updates;
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList())
            EXPECT_EQ(forwardEdge(edge) + (pReverseEdge(edge) != nullptr), 1);
    }
};

// The class itself works in arrays, a subclass by the hooks of the flow core: by the same paths.
using Hooked = Runner<HookedFlow, RVMinimumCostFlowInputData, RVMinimumCostFlowOutputData>;

TEST(MinimumCostFlow, FindsTheSamePathsWhoeverLooksIn) {
    MinimumCostFlow plain;
    Hooked hooked;
    RVMinimumCostFlowInputData& input = plain.input;
    hooked.algorithm.pInputData(&input);
    int flows = 0;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const bool isLarge = seed % 25 == 0;
        const MarkedGraph g(
            randomText(seed, {.nodes = isLarge ? 50 : 9, .edges = isLarge ? 250 : 40, .loops = !isLarge}),
            seed);
        SCOPED_TRACE(std::to_string(seed) + ": " + orders(g));
        std::mt19937 random(seed);
        const auto below = [&](int limit) {
            return static_cast<int>(random() % static_cast<unsigned>(limit));
        };
        const int most = seed % 2 == 0 ? 4 : 100;
        const auto cost = [&] { return below(30) == 0 ? kInfinite - below(2) : below(most); };
        for (RVNode* node : *g->pNodeList()) {
            input.capacity(node, below(3) == 0 ? below(6) : kInfinite);
            input.cost(node, below(3) == 0 ? cost() : 0);
        }
        for (RVEdge* edge : *g->pEdgeList()) {
            input.capacity(edge, below(20) == 0 ? kInfinite : below(6));
            input.cost(edge, cost());
        }
        input.pSourceNode(g->pFirstNode());
        for (RVNode* sink : *g->pNodeList()) {
            input.pSinkNode(sink);
            input.desiredFlow(seed % 3 == 0 ? 1 + below(9) : 0);
            ASSERT_EQ(plain(g), 0);
            ASSERT_EQ(hooked(), 0);
            EXPECT_EQ(plain.output.totalFlow(), hooked.output.totalFlow());
            EXPECT_EQ(plain.output.totalCost(), hooked.output.totalCost());
            for (RVEdge* edge : *g->pEdgeList())
                EXPECT_EQ(plain.output.flow(edge), hooked.output.flow(edge)) << text(edge);
            flows += plain.output.totalFlow() > 2 ? 1 : 0;
        }
    }
    EXPECT_GT(flows, 500);
    EXPECT_GT(hooked.algorithm.distances, 100);
}

TEST(FlowCore, FailsWithHooksThatMeddle) {
    Hooked hooked;
    const TestGraph g("s->a:2,0 a->t:2,0 a->s:2,0");
    hooked.input.pSourceNode(g.node("s"));
    hooked.input.pSinkNode(g.node("t"));
    for (RVEdge* edge : *g->pEdgeList()) hooked.input.capacity(edge, 2);
    EXPECT_EQ(hooked(g), 0);
    EXPECT_EQ(hooked.output.totalFlow(), 2);
    EXPECT_EQ(hooked.algorithm.updates, 2) << "also after the search that finds nothing";
    hooked.algorithm.hasClosedSource = true;
    EXPECT_EQ(hooked(), 0);
    EXPECT_EQ(hooked.output.totalFlow(), 0);
    hooked.algorithm.hasClosedSource = false;
    hooked.algorithm.firstCost = -1;
    EXPECT_EQ(hooked(), 999);
    hooked.algorithm.firstCost = 0;
    hooked.algorithm.hasStart = false;
    EXPECT_EQ(hooked(), 999);
}

// A reset that leaves the flows of the run before.
template <class Output>
struct Unreset : Output {
    void reset() override {}
};

TEST(FlowCore, LeavesNoEarlierFlowAndAnswersOutsideRuns) {
    const TestGraph g("s->t");
    Runner<RVMaximumFlowAlgorithm, RVMaximumFlowInputData, Unreset<RVMaximumFlowOutputData>> most(g);
    Runner<RVMinimumCostFlowAlgorithm, RVMinimumCostFlowInputData, Unreset<RVMinimumCostFlowOutputData>>
        cheapest(g);
    const auto flowOf = [&](auto& run, int capacity) {
        run.input.pSourceNode(g.node("s"));
        run.input.pSinkNode(g.node("t"));
        run.input.capacity(g->pFirstEdge(), capacity);
        EXPECT_EQ(run(), 0);
        return run.output.flow(g->pFirstEdge());
    };
    for (const int capacity : {3, 0}) {
        EXPECT_EQ(flowOf(most, capacity), capacity);
        EXPECT_EQ(flowOf(cheapest, capacity), capacity);
    }
    struct Asked : RVMinimumCostFlowAlgorithm {
        using RVFlowAlgorithm::forwardEdge;
        using RVFlowAlgorithm::pReverseEdge;
    } asked;
    EXPECT_EQ(asked.forwardEdge(g->pFirstEdge()), 1);
    EXPECT_EQ(asked.pReverseEdge(g->pFirstEdge()), nullptr);
}

}  // namespace
