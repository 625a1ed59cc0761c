#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

int run(AllPairs& test, RVGraph* graph, int undirected = 0) {
    test.input.undirected(undirected);
    takeDrawnDirections(test.input, graph);
    takeCosts(test.input, graph);
    return test(graph);
}

// The triple loop word by word.
class Reference {
public:
    struct Pair {
        int value = kInfinite;
        RVEdge* edge = nullptr;
    };

    Reference(const RVGraph* graph, bool undirected) {
        m_places.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));
        for (RVNode* node : *graph->pNodeList()) {
            m_places[rv::placeOf(node)] = m_nodes.size();
            m_nodes.push_back(node);
            m_costs.push_back(number(node, 0, 0));
        }
        m_pairs.assign(m_nodes.size(), std::vector<Pair>(m_nodes.size()));
        for (std::size_t i = 0; i < m_nodes.size(); ++i) m_pairs[i][i].value = 0;
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (isNegative) break;
            RVNode* const source = edge->pSourceNode();
            RVNode* const target = edge->pTargetNode();
            const int cost = number(edge, 0, 0);
            improve(pair(source, target), cost, edge);
            if (source == target) {
                isNegative = wrapped({costOf(source), cost}) < 0;
            } else if (undirected || rvtest::undirected(edge)) {
                improve(pair(target, source), cost, edge);
            }
        }
        for (RVNode* k : m_nodes) {
            for (RVNode* i : m_nodes) {
                for (RVNode* j : m_nodes) {
                    if (i == k || j == k || isNegative) continue;
                    const Pair ik = pair(i, k);
                    const Pair kj = pair(k, j);
                    if (ik.value == kInfinite || kj.value == kInfinite) continue;
                    if (i == j && wrapped({costOf(i), kj.value, ik.value, costOf(k)}) < 0) {
                        isNegative = true;
                    } else {
                        improve(pair(i, j), clamped(std::int64_t{kj.value} + ik.value + costOf(k)), kj.edge);
                    }
                }
            }
        }
    }

    Pair& pair(const RVNode* a, const RVNode* b) { return m_pairs[place(a)][place(b)]; }
    bool isNegative = false;

private:
    int costOf(const RVNode* node) const { return m_costs[place(node)]; }
    static void improve(Pair& pair, int value, RVEdge* edge) {
        if (value < pair.value) pair = {value, edge};
    }
    static int clamped(std::int64_t sum) {
        return static_cast<int>(std::clamp<std::int64_t>(sum, INT32_MIN, INT32_MAX));
    }
    static int wrapped(std::initializer_list<int> terms) {
        std::uint32_t sum = 0;
        for (const int term : terms) sum += static_cast<std::uint32_t>(term);
        return static_cast<int>(sum);
    }
    std::size_t place(const RVNode* node) const { return m_places[rv::placeOf(node)]; }

    std::vector<std::size_t> m_places;  // by dense index
    std::vector<int> m_costs;
    std::vector<RVNode*> m_nodes;
    std::vector<std::vector<Pair>> m_pairs;
};

// That every pair is as in the triple loop, and every path can be read to its end. Gives the code.
int expectReference(AllPairs& test, const TestGraph& g, int undirected, bool sumsFit) {
    Reference expected(g, undirected != 0);
    const int code = run(test, g, undirected);
    EXPECT_EQ(code, expected.isNegative ? 18 : 0);
    RVEdgeDList path;
    int differences = 0;
    for (RVNode* a : *g->pNodeList()) {
        for (RVNode* b : *g->pNodeList()) {
            const Reference::Pair pair = expected.pair(a, b);
            if (test.output.computeLengthOfShortestPath(a, b) != pair.value) ++differences;
            if (test.output.pLastEdge(a, b) != pair.edge) ++differences;
            test.output.buildShortestPathEdgeList(a, b, path);
            if (code == 0 && sumsFit && path.pLastEdge() != pair.edge) ++differences;
        }
    }
    EXPECT_EQ(differences, 0);
    return code;
}

// Sizes on both sides of a block of nodes, costs on both sides of a 32-bit sum.
TEST(AllPairs, AgreesWithTheTripleLoop) {
    AllPairs test;
    expectReference(test, TestGraph(), 0, true);
    int cycles = 0;
    for (unsigned seed = 0; seed < 150; ++seed) {
        const bool isLarge = seed % 10 == 0;
        const std::string tokens = randomText(seed, {.nodes = isLarge ? 150 : 9,
                                                     .edges = isLarge ? 600 : 20,
                                                     .least = seed % 3 == 0 ? 0 : -2,
                                                     .most = 12,
                                                     .undirected = 5,
                                                     .nodeNumbers = seed % 2 == 0});
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        if (expectReference(test, TestGraph(tokens), seed % 7 == 0 ? 1 : 0, true) != 0) ++cycles;
    }
    EXPECT_GT(cycles, 20);
    EXPECT_LT(cycles, 100);

    const char* const extremes[] = {"2147483647",  "2147483646", "-2147483648",
                                    "-2147483647", "1073741824", "-1073741824",
                                    "1",           "-1",         "0"};
    for (unsigned seed = 0; seed < 300; ++seed) {
        std::string tokens;
        std::istringstream stream(randomText(seed, {.nodes = 7,
                                                    .edges = 12,
                                                    .least = 0,
                                                    .most = 8,
                                                    .acyclic = seed % 2 == 0,
                                                    .nodeNumbers = seed % 3 == 0}));
        for (std::string token; stream >> token;) {
            const std::size_t colon = token.find(':');
            if (colon != std::string::npos)
                token = token.substr(0, colon + 1) + extremes[token[colon + 1] - '0'];
            tokens += token + " ";
        }
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        expectReference(test, TestGraph(tokens), 0, false);
    }
}

TEST(AllPairs, BuildsPaths) {
    const TestGraph g("a->b:1 b--c:1 c->d:1 d->d:-1 d:4 e");
    const TestGraph other("x");
    AllPairs test;
    RVEdgeDList list;
    const auto path = [&](const char* from, const char* to) {
        test.output.buildShortestPathEdgeList(g.node(from), g.node(to), list);
        return text(list);
    };
    list.appendEdge(g.edge("c->d:1"));
    RVNode* const a = g.node("a");
    for (RVNode* foreign : {other.node("x"), static_cast<RVNode*>(nullptr)}) {
        // Before a run there is no graph.
        for (const int isBound : {0, 1}) {
            if (isBound != 0) test.output.pAssociatedGraph(g);
            test.output.buildShortestPathEdgeList(a, foreign, list);
            test.output.buildShortestPathEdgeList(foreign, a, list);
            EXPECT_EQ(text(list), "c->d:1");
            EXPECT_EQ(test.output.computeLengthOfShortestPath(foreign, a), kInfinite);
            EXPECT_EQ(test.output.pLastEdge(a, foreign), nullptr);
        }
    }
    EXPECT_EQ(path("a", "b"), "");
    ASSERT_EQ(run(test, g), 0);
    EXPECT_EQ(path("a", "d"), "a->b:1 b--c:1 c->d:1");
    EXPECT_EQ(path("c", "b"), "b--c:1");
    EXPECT_EQ(path("d", "d"), "d->d:-1");
    EXPECT_EQ(path("a", "a") + path("e", "a") + path("a", "e"), "");
    EXPECT_EQ(test.output.number(g.node("d")), 3);
    EXPECT_EQ(test.output.pEdgeValuePair(a, g.node("d"))->value(), 3);

    // Records that the output made for another graph than the one that it was bound to do not stay.
    const TestGraph small("x y");
    const TestGraph large("p->q:7");
    AllPairs moving;
    ASSERT_EQ(run(moving, small), 0);
    EXPECT_NE(moving.output.pEdgeValuePair(large.node("p"), large.node("q")), nullptr);
    for (int i = 0; i < 3; ++i) large->addNode();
    large->insertNode(small->removeNode(small.node("x")));
    ASSERT_EQ(run(moving, large), 0);
    EXPECT_EQ(moving.output.computeLengthOfShortestPath(large.node("p"), large.node("q")), 7);

    // The output outlives the run, and a copy the output.
    const RVAllPairsShortestPathsOutputData copy(test.output);
    test.output.reset();
    EXPECT_EQ(test.output.computeLengthOfShortestPath(a, g.node("d")), 0);
    EXPECT_EQ(copy.computeLengthOfShortestPath(a, g.node("d")), 3);
    RVNode* const late = g->addNode();
    EXPECT_EQ(copy.pEdgeValuePair(a, late)->value(), 0);
    EXPECT_EQ(copy.pLastEdge(late, late), nullptr);
}

// A numbering of one's own.
class Backwards : public RVAllPairsShortestPathsAlgorithm {
protected:
    void initialize() override {
        RVAllPairsShortestPathsAlgorithm::initialize();
        const auto* output = RVAllPairsShortestPathsOutputData::castDown(pOutputData());
        int number = pInputData()->pAssociatedGraph()->numberOfNodes();
        for (RVNode* node : *pInputData()->pAssociatedGraph()->pNodeList()) output->number(node, --number);
    }
};

TEST(AllPairs, KeepToTheNumbersOfASubclass) {
    const TestGraph g("a->b:7 c->a:1");
    Runner<Backwards, RVAllPairsShortestPathsInputData, RVAllPairsShortestPathsOutputData> test(g);
    takeCosts(test.input, g);
    ASSERT_EQ(test(), 0);
    EXPECT_EQ(test.output.computeLengthOfShortestPath(g.node("c"), g.node("b")), 8);
    EXPECT_EQ(test.output.computeLengthOfShortestPath(g.node("b"), g.node("c")), kInfinite);
}

}  // namespace
