// Breadth-first and depth-first search.

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// The nodes in visiting order, after comparing the numbers of all nodes.
template <class Output>
std::string order(const Output& output, RVGraph* graph) {
    std::map<RVNode*, int> numbers;
    for (RVNode* node : *output.pNodeList()) numbers.emplace(node, static_cast<int>(numbers.size()) + 1);
    for (RVNode* node : *graph->pNodeList()) EXPECT_EQ(output.orderNumber(node), numbers[node]) << text(node);
    RVNodeDList list;
    list.appendNode(graph->pFirstNode());
    output.buildNodeOrderList(list);
    EXPECT_EQ(text(list), text(*output.pNodeList()));
    return text(list);
}

// Visiting order / completion order / parents / kinds of edges.
std::string answer(const RVDepthFirstSearchOutputData& output, RVGraph* graph) {
    std::string all = order(output, graph) + " /";
    std::map<int, RVNode*> completed;
    std::string parents;
    for (RVNode* node : *graph->pNodeList()) {
        if (output.completionNumber(node) != 0) completed.emplace(output.completionNumber(node), node);
        RVNode* const parent = output.pParentNode(node);
        if (parent != nullptr) parents += " " + text(node) + "<" + text(parent);
    }
    EXPECT_EQ(static_cast<int>(completed.size()), output.pNodeList()->length());
    EXPECT_TRUE(completed.empty() || completed.rbegin()->first == output.pNodeList()->length());
    for (const auto& [number, node] : completed) all += " " + text(node);
    all += " /" + parents + " /";
    for (RVEdge* edge : *graph->pEdgeList())
        all += " " + text(edge) + "=" + std::to_string(output.edgeType(edge));
    return all;
}

TEST(Searches, NumberNodesAndTellKindsOfEdges) {
    const struct {
        const char* what;
        const char* graph;
        const char* start;
        int undirected;
        const char* breadthFirst;
        const char* depthFirst;
    } cases[] = {
        {"nothing", "", "", 0, "", " / / /"},
        {"first source, then isolated nodes", "f a->b a->c b->d c->d e", "", 0, "a b c d f e",
         "a c d b f e / d c b a f e / b<a c<a d<c / a->b=1 a->c=1 b->d=4 c->d=1"},
        {"parallels do not count", "b->a:1 b->a:2 a->b c->b", "", 0, "c b a",
         "c b a / a b c / b<c a<b / b->a:1=1 b->a:2=2 a->b=3 c->b=1"},
        {"parallels of a forward and a cross edge", "a->b:1 a->b:2 a->c c->b a->d d->c:1 d->c:2", "a", 0,
         "a b c d",
         "a d c b / b c d a / b<c c<d d<a / a->b:1=2 a->b:2=2 a->c=2 c->b=1 a->d=1 d->c:1=1 d->c:2=2"},
        {"a loop that is not reached", "e->e a->b", "a", 0, "a b", "a b / b a / b<a / e->e=0 a->b=1"},
        {"undirected edges: no forward edge", "a--b a--c b--c", "", 0, "a b c",
         "a c b / b c a / b<c c<a / a--b=3 a--c=1 b--c=1"},
        {"reverse edges from the last one to the first", "a->b b->c a->c", "c", 1, "c a b",
         "c b a / a b c / a<b b<c / a->b=1 b->c=1 a->c=3"},
    };
    BreadthFirst breadth;
    DepthFirst depth;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        RVNode* const start = *c.start == '\0' ? nullptr : g.node(c.start);
        const int undirected = 2 * c.undirected;  // any nonzero flag
        EXPECT_EQ(runOn(breadth, g, start, nullptr, undirected), RV_NO_ERROR);
        EXPECT_EQ(runOn(depth, g, start, nullptr, undirected), RV_NO_ERROR);
        EXPECT_EQ(order(breadth.output, g), c.breadthFirst);
        EXPECT_EQ(answer(depth.output, g), c.depthFirst);
    }
}

}  // namespace
