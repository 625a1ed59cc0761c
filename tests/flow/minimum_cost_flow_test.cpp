// Minimum cost flow, and the core that it shares with callers' algorithms.

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
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
        {"as much as can be", "s->a:2,1 a->t:2,0 s->b:10,5 b->t:10,0", "t", 0, "12 at 52; 2 2 10 10"},
        {"more than can be", "s->a:2,1 a->t:2,0 s->b:10,5 b->t:10,0", "t", 99, "12 at 52; 2 2 10 10"},
        {"parallel edges", "s->t:1,1 s->t:1,2", "t", 2, "2 at 3; 1 1"},
        {"the cheaper parallel edge", "s->t:4,2 s->t:3,1", "t", 3, "3 at 3; 0 3"},
        {"all parallel edges", "s->t:3,1 s->t:4,1", "t", 0, "7 at 7; 3 4"},
        {"a node's cost", "a:2147483647,3 s->a:4,1 a->t:4,1", "t", 2, "2 at 10; 2 2"},
        {"a node's limit", "a:5 s->a:9,1 a->t:9,1", "t", 0, "5 at 10; 5 5"},
        {"a closed node", "a:0 s->a:9,1 a->t:9,1", "t", 0, "0 at 0; 0 0"},
        {"the ends' limits and costs", "s:1,7 t:1,7 s->t:4,2", "t", 0, "4 at 8; 4"},
        {"taking back", "s->a:1,1 s->b:1,4 a->b:1,1 a->t:1,5 b->t:1,1", "t", 0, "2 at 11; 1 1 0 1 1"},
        {"a negative cost", "s->a:2,-3 a->t:1,1 s->t:5,0", "t", 0, "6 at -2; 1 1 5"},
        {"a negative cost of a node without a limit", "a:2147483647,-3 s->a:2,1 a->t:2,1", "t", 0,
         "2 at 4; 2 2"},
        {"a negative cost of a node with a limit", "a:9,-3 s->a:2,1 a->t:2,1", "t", 0, "2 at -2; 2 2"},
        {"a negative cycle", "s->a:2,1 a->b:2,-3 b->a:2,1 b->t:2,1", "t", 0, "code 18"},
        {"no way", "t->s:2,1 s->a:1,1", "t", 0, "0 at 0; 0 0"},
        {"an isolated sink", "s->a:1,1 t", "t", 0, "0 at 0; 0"},
        {"without capacities", "s->t", "t", 0, "0 at 0; 0"},
        {"a capacity below 0", "s->t:-1", "s", 0, "code 16"},
        {"a node's capacity below 0", "s->t:1 a:-1", "t", 0, "code 16"},
        {"a desired flow below 0 before that", "s->t:-1", "t", -1, "code 19"},
        {"around", "s->a:3,1 a->s:2,1 s->s:4,9 s->s:5,1", "s", 0, "11 at 45; 2 2 4 5"},
        {"around, then loops, cheapest first", "s->a:3,1 a->s:2,1 s->s:4,9 s->s:5,1", "s", 8,
         "8 at 18; 2 2 1 5"},
        {"around, only the way", "s->a:3,1 a->s:2,1 s->s:4,-9", "s", 1, "1 at 2; 1 1 0"},
        {"loops elsewhere", "s->s:5,-1 s->t:1,1 t->t:5,0", "t", 0, "1 at 1; 0 1 0"},
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

// A maximum flow on the core, with the path exists test as its search, as a caller would write one.
class PlainFlow : public RVFlowAlgorithm {
public:
    std::map<std::string, int> flows;  // of the edges that were in the working copy, by name
    std::int64_t total = 0;
    int searches = 0;
    int sourceCapacity = kInfinite;

protected:
    void parseInputData() override {
        const auto* input = RVMaximumFlowInputData::castDown(pInputData());
        RVFlowInternalData* data = pFlowInternalData();
        data->pSourceNode(data->pCopyNode(input->pSourceNode()));
        data->pSinkNode(data->pCopyNode(input->pSinkNode()));
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList())
            data->capacity(edge, input->capacity(data->pOriginalEdge(edge)));
        for (RVNode* node : *pAssociatedGraph()->pNodeList())
            data->capacity(node, input->capacity(data->pOriginalNode(node)));
        data->capacity(data->pSourceNode(), sourceCapacity);
    }
    void generateOutputData() override {
        const RVFlowInternalData* data = pFlowInternalData();
        total = data->exactTotalFlow();
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
            if (*edge->pNameString() != L'\0') flows[token(edge)] = data->flow(edge);
        }
    }
    int pathExists(RVAnalysisOutputData* output) const override {
        return RVPathExistsTestOutputData::castDown(output)->pathExists();
    }
    void buildEdgeList(RVAnalysisOutputData* output, RVEdgeDList& list) const override {
        RVPathExistsTestOutputData::castDown(output)->buildEdgeList(list);
    }
    void pStartNode(RVAnalysisInputData* input, RVNode* node) const override {
        RVNode* dummy = pFlowInternalData()->pDummyStartNode();
        RVPathExistsTestInputData::castDown(input)->pStartNode(dummy != nullptr ? dummy : node);
    }
    void pFinishNode(RVAnalysisInputData* input, RVNode* node) const override {
        RVPathExistsTestInputData::castDown(input)->pFinishNode(node);
    }
    RVAlgorithm* newPathExistsTestAlgorithm() const override {
        auto* search = new RVPathExistsTestAlgorithm();
        search->useOriginalGraph(1);
        return search;
    }
    RVAlgorithmInputData* newPathExistsTestInputData() const override {
        return new RVPathExistsTestInputData(pFlowInternalData()->pCopyGraph());
    }
    RVAlgorithmOutputData* newPathExistsTestOutputData() const override {
        return new RVPathExistsTestOutputData();
    }
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override {
        RVFlowAlgorithm::updateGraphData(input, output, amount);
        ++searches;
    }
};

TEST(FlowCore, CarriesACallersSearch) {
    int flows = 0;
    for (unsigned seed = 0; seed < 200; ++seed) {
        const std::string tokens =
            randomText(seed, {.nodes = 7, .edges = 14, .least = 0, .most = 5, .nodeNumbers = seed % 2 == 0});
        const TestGraph g(tokens);
        const std::string before = orders(g);
        RVNode* const source = g->pFirstNode();
        for (RVNode* sink : *g->pNodeList()) {
            SCOPED_TRACE(std::to_string(seed) + ", to " + text(sink) + ": " + tokens);
            MaximumFlow expected;
            ASSERT_EQ(runOn(expected, g, source, sink), 0);
            expected.input.capacity(sink, kInfinite);
            PlainFlow flow;
            flow.pInputData(&expected.input);
            flow.pOutputData(&expected.output);
            const int total = expected.output.totalFlow();
            ASSERT_EQ(flow.run(), 0);
            EXPECT_EQ(orders(g), before);
            if (source == sink) continue;
            EXPECT_EQ(flow.total, total);
            for (const auto& [name, value] : flow.flows) EXPECT_LE(value, number(g.edge(name), 0, 0)) << name;
            flows += total > 0 ? 1 : 0;
            EXPECT_GE(flow.searches, total > 0 ? 2 : 0);

            PlainFlow closed;
            closed.sourceCapacity = 0;
            closed.pInputData(&expected.input);
            closed.pOutputData(&expected.output);
            EXPECT_EQ(closed.run(), 0);
            EXPECT_EQ(closed.total, 0);
        }
    }
    EXPECT_GT(flows, 150);
}

// Minimum cost flow with hooks of a caller's: searches and outputs of the documented classes, distances in
// the outputs, and costs that become negative behind the algorithm's back.
class HookedFlow : public RVMinimumCostFlowAlgorithm {
public:
    bool hasStart = true;
    int firstCost = 0;
    int distances = 0;

protected:
    void parseInputData() override {
        RVMinimumCostFlowAlgorithm::parseInputData();
        if (firstCost != 0) pMinimumCostFlowInternalData()->cost(pAssociatedGraph()->pFirstEdge(), firstCost);
    }
    void pStartNode(RVAnalysisInputData* input, RVNode* node) const override {
        if (hasStart) RVMinimumCostFlowAlgorithm::pStartNode(input, node);
    }
    RVAlgorithm* newPathExistsTestAlgorithm() const override {
        auto* search = new RVDijkstraAlgorithm();
        search->useOriginalGraph(1);
        search->storeDistances(1);
        return search;
    }
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override {
        auto* answer = RVDijkstraOutputData::castDown(output);
        for (RVNode* node : *pMinimumCostFlowInternalData()->pCopyGraph()->pNodeList()) {
            if (answer->dist(node) >= 0) ++distances;
        }
        RVMinimumCostFlowAlgorithm::updateGraphData(input, output, amount);
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList())
            EXPECT_EQ(forwardEdge(edge) + (pReverseEdge(edge) != nullptr), 1);
    }
};

// The class itself works in arrays, a subclass by the hooks of the flow core: by the same paths.
class SubclassedFlow : public RVMinimumCostFlowAlgorithm {};
template <class Algorithm>
using FlowBy = Runner<Algorithm, RVMinimumCostFlowInputData, RVMinimumCostFlowOutputData>;

TEST(MinimumCostFlow, FindsTheSamePathsWhoeverLooksIn) {
    MinimumCostFlow plain;
    FlowBy<SubclassedFlow> subclassed;
    FlowBy<HookedFlow> hooked;
    RVMinimumCostFlowInputData& input = plain.input;
    subclassed.algorithm.pInputData(&input);
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
            ASSERT_EQ(subclassed(), 0);
            ASSERT_EQ(hooked(), 0);
            for (const auto* output : {&subclassed.output, &hooked.output}) {
                EXPECT_EQ(plain.output.totalFlow(), output->totalFlow());
                EXPECT_EQ(plain.output.totalCost(), output->totalCost());
                for (RVEdge* edge : *g->pEdgeList())
                    EXPECT_EQ(plain.output.flow(edge), output->flow(edge)) << text(edge);
            }
            flows += plain.output.totalFlow() > 2 ? 1 : 0;
        }
    }
    EXPECT_GT(flows, 500);
    EXPECT_GT(hooked.algorithm.distances, 100);
}

TEST(FlowCore, FailsWithHooksThatMeddle) {
    FlowBy<HookedFlow> hooked;
    const TestGraph g("s->a:2,0 a->t:2,0 a->s:2,0");
    hooked.input.pSourceNode(g.node("s"));
    hooked.input.pSinkNode(g.node("t"));
    for (RVEdge* edge : *g->pEdgeList()) hooked.input.capacity(edge, 2);
    EXPECT_EQ(hooked(g), 0);
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
