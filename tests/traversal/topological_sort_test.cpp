#include "rv/traversal/topological_sort.h"

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "tests/test_graph.h"

namespace {

using rvtest::orders;
using rvtest::randomText;
using rvtest::TestGraph;
using rvtest::text;

// The sort with its data, for one graph after another.
class TopologicalSort : public testing::Test {
protected:
    TopologicalSort() {
        m_sort.pInputData(&m_input);
        m_sort.pOutputData(&m_output);
    }
    RVServiceErrorCodeEnum run(RVGraph* graph) {
        m_input.pAssociatedGraph(graph);
        return m_sort.run();
    }
    // The order of the nodes, or "cyclic", after comparing all that the output tells.
    std::string order(RVGraph* graph) {
        EXPECT_EQ(run(graph), RV_NO_ERROR);
        int number = 0;
        for (RVNode* node : *m_output.pNodeList())
            EXPECT_EQ(m_output.orderNumber(node), ++number) << text(node);
        if (m_output.acyclic() == 0) {
            EXPECT_EQ(number, 0);
            for (RVNode* node : *graph->pNodeList()) EXPECT_EQ(m_output.orderNumber(node), 0) << text(node);
            return "cyclic";
        }
        EXPECT_EQ(m_output.acyclic(), 1);
        EXPECT_EQ(number, graph->numberOfNodes());
        return text(*m_output.pNodeList());
    }

    RVTopologicalSortInputData m_input;
    RVTopologicalSortOutputData m_output;
    RVTopologicalSortAlgorithm m_sort;
};

// All on the same objects, so that nothing of one graph may be left for the next one.
TEST_F(TopologicalSort, OrdersNodesAndBreaksTies) {
    const struct {
        const char* what;
        const char* graph;
        const char* order;
    } cases[] = {
        {"nothing", "", ""},
        {"chain", "a->b b->c", "a b c"},
        {"chain against the graph order", "c b a a->b b->c", "a b c"},
        {"self-loop", "a->b b->b", "cyclic"},
        {"cycle behind a source", "a->b b->c c->b", "cyclic"},
        {"nodes without edges in graph order", "c b a", "c b a"},
        {"two sources before what follows them", "a->c b->c", "a b c"},
        {"parallel edges", "a b a->b a->b", "a b"},
        {"parallel edges in parts: the last one counts", "a b x y a->x b->y a->y a->x b->x", "a b y x"},
        {"out-edge order before graph order", "a x y z a->z a->x a->y", "a z x y"},
        {"last in-edge consumed before first", "a b x y a->x b->y b->x a->y", "a b y x"},
        {"a new node waits behind the sources", "a b x a->x b", "a b x"},
        {"first and last node of a cycle", "a->b b->c c->a d", "cyclic"},
    };
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        EXPECT_EQ(order(g), c.order) << c.what << ": " << c.graph;
    }
}

// Detached and destroyed objects leave gaps in the numbering of objects, and do not count.
TEST_F(TopologicalSort, SeesAttachedObjectsOnly) {
    TestGraph g("a->b b->c c->a d->a c->d");
    g->removeEdge(g.edge("c->a"));
    EXPECT_EQ(order(g), "cyclic");
    g->removeNode(g.node("d"));
    EXPECT_EQ(order(g), "a b c");
    g->insertNode(g.node("d"));
    g->discardEdge(g.edge("c->d"));
    EXPECT_EQ(order(g), "d a b c");
    g->discardNode(g.node("a"));
    EXPECT_EQ(order(g), "b d c");
}

TEST_F(TopologicalSort, GivesAnswersThatStay) {
    TestGraph g("b->a");
    RVNode* const a = g.node("a");
    EXPECT_EQ(order(g), "b a");
    RVNodeDList list = g.nodes("a a a");
    m_output.buildNodeOrderList(list);
    EXPECT_EQ(text(list), "b a");
    const RVTopologicalSortOutputData copy(m_output);
    EXPECT_EQ(run(nullptr), RV_NO_INPUT_GRAPH);
    RVGraph factoryless;
    EXPECT_EQ(run(&factoryless), RV_NO_GRAPH_FACTORY);
    EXPECT_EQ(text(*m_output.pNodeList()), "b a");
    m_output.orderNumber(a, 9);
    EXPECT_EQ(order(TestGraph("a->a")), "cyclic");
    EXPECT_EQ(text(*copy.pNodeList()), "b a");
    EXPECT_EQ(copy.orderNumber(a), 2);
    // A later node at the same address has no number.
    g->discardNode(a);
    ASSERT_EQ(g->addNode(), a);
    EXPECT_EQ(copy.orderNumber(a), 0);
}

// Whether some node reaches itself, by transitive closure.
bool isAcyclic(RVGraph* graph) {
    std::set<std::pair<RVNode*, RVNode*>> reaches;
    for (RVEdge* edge : *graph->pEdgeList()) reaches.emplace(edge->pSourceNode(), edge->pTargetNode());
    for (RVNode* via : *graph->pNodeList()) {
        for (RVNode* from : *graph->pNodeList()) {
            for (RVNode* to : *graph->pNodeList()) {
                if (reaches.count({from, via}) != 0 && reaches.count({via, to}) != 0)
                    reaches.emplace(from, to);
            }
        }
    }
    for (RVNode* node : *graph->pNodeList()) {
        if (reaches.count({node, node}) != 0) return false;
    }
    return true;
}

// The order by the rule for ties, asking each time for all in-edges of a node.
std::string orderByRule(RVGraph* graph) {
    std::set<const RVEdge*> consumed;
    const auto isReady = [&](RVNode* node) {
        for (const RVEdge* edge : *node->pInEdgeList()) {
            if (consumed.count(edge) == 0) return false;
        }
        return true;
    };
    RVNodeDList order;
    for (RVNode* node : *graph->pNodeList()) {
        if (isReady(node)) order.appendNode(node);
    }
    for (RVNode* node : order) {
        for (const RVEdge* edge : *node->pOutEdgeList()) {
            consumed.insert(edge);
            if (isReady(edge->pTargetNode())) order.appendNode(edge->pTargetNode());
        }
    }
    return text(order);
}

TEST_F(TopologicalSort, AgreesWithSlowWays) {
    int acyclic = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const std::string tokens =
            randomText(seed, {.edges = 10, .loops = seed % 3 == 0, .acyclic = seed % 3 == 1});
        const TestGraph g(tokens);
        // Changes after which lists do not stand in the order of the edges.
        if (seed % 2 == 0 && g->pFirstEdge() != nullptr) g->pFirstEdge()->invertDirection();
        const std::string before = orders(g);
        const bool expected = isAcyclic(g);
        acyclic += expected ? 1 : 0;
        EXPECT_EQ(order(g), expected ? orderByRule(g) : "cyclic") << "seed " << seed << ": " << tokens;
        EXPECT_EQ(orders(g), before) << "seed " << seed << ": " << tokens;
    }
    EXPECT_GT(acyclic, 200);
    EXPECT_LT(acyclic, 500);
}

TEST_F(TopologicalSort, WalksALongChain) {
    constexpr int kNodes = 1000000;
    RVAFactory factory;
    const std::unique_ptr<RVGraph> graph(factory.newGraph());
    RVNode* last = graph->addNode();
    for (int i = 1; i < kNodes; ++i) {
        RVNode* const node = graph->addNode();
        graph->addEdge(node, last);
        last = node;
    }
    ASSERT_EQ(run(graph.get()), RV_NO_ERROR);
    EXPECT_EQ(m_output.orderNumber(last), 1);
    EXPECT_EQ(m_output.orderNumber(graph->pFirstNode()), kNodes);
    graph->addEdge(graph->pFirstNode(), last);
    ASSERT_EQ(run(graph.get()), RV_NO_ERROR);
    EXPECT_EQ(m_output.acyclic(), 0);
}

}  // namespace
