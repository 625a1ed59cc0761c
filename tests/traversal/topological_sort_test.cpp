#include "rv/traversal/topological_sort.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// The order of the nodes, or "cyclic", after comparing all that the output tells.
std::string order(TopologicalSort& sort, RVGraph* graph) {
    EXPECT_EQ(sort(graph), RV_NO_ERROR);
    int number = 0;
    for (RVNode* node : *sort.output.pNodeList())
        EXPECT_EQ(sort.output.orderNumber(node), ++number) << text(node);
    EXPECT_EQ(number, sort.output.acyclic() == 1 ? graph->numberOfNodes() : 0);
    RVNodeDList list;
    list.appendNode(nullptr);
    sort.output.buildNodeOrderList(list);
    EXPECT_EQ(text(list), text(*sort.output.pNodeList()));
    if (sort.output.acyclic() != 0) return text(*sort.output.pNodeList());
    for (RVNode* node : *graph->pNodeList()) EXPECT_EQ(sort.output.orderNumber(node), 0) << text(node);
    return "cyclic";
}

// All on the same objects, so that nothing of one graph may be left for the next one.
TEST(TopologicalSort, OrdersNodesAndBreaksTies) {
    const struct {
        const char* what;
        const char* graph;
        const char* order;
    } cases[] = {
        {"nothing", "", ""},
        {"self-loop", "a->b b->b", "cyclic"},
        {"parallel edges in parts: the last one counts", "a b x y a->x b->y a->y a->x b->x", "a b y x"},
        {"out-edge order before graph order", "a x y z a->z a->x a->y", "a z x y"},
        {"last in-edge consumed before first", "a b x y a->x b->y b->x a->y", "a b y x"},
    };
    TopologicalSort sort;
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        EXPECT_EQ(order(sort, g), c.order) << c.what << ": " << c.graph;
    }
}

// Detached and destroyed objects leave gaps in the numbering of objects, and do not count.
TEST(TopologicalSort, SeesAttachedObjectsOnly) {
    TopologicalSort sort;
    TestGraph g("a->b b->c c->a d->a c->d");
    g->removeEdge(g.edge("c->a"));
    EXPECT_EQ(order(sort, g), "cyclic");
    g->removeNode(g.node("d"));
    EXPECT_EQ(order(sort, g), "a b c");
    g->insertNode(g.node("d"));
    g->discardEdge(g.edge("c->d"));
    EXPECT_EQ(order(sort, g), "d a b c");
    g->discardNode(g.node("a"));
    EXPECT_EQ(order(sort, g), "b d c");
}

}  // namespace
