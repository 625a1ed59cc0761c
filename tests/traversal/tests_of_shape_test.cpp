// Path exists test, acyclic test and tree test.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// The path, or the nodes that can be reached.
std::string answer(const RVPathExistsTestOutputData& output) {
    RVEdgeDList path;
    path.appendEdge(nullptr);
    output.buildEdgeList(path);
    EXPECT_EQ(text(path), text(*output.pEdgeList()));
    const std::string nodes = text(*output.pVisitedNodeList());
    if (output.pathExists() == 1) return "path:" + text(path) + nodes;
    EXPECT_EQ(output.pathExists() + path.length(), 0);
    return "only " + nodes;
}

TEST(PathExistsTest, FindsAShortestPathOrWhatCanBeReached) {
    const struct {
        const char* what;
        const char* graph;
        const char* start;
        const char* finish;
        int undirected;
        const char* answer;
    } cases[] = {
        {"no step", "a->b", "a", "a", 0, "path:"},
        {"from start to finish", "b->c a->b c->d a->d:9 d->e", "a", "e", 0, "path:a->d:9 d->e"},
        {"all in visiting order", "a->b a->c b->d e->a", "a", "e", 0, "only a b c d"},
        {"the first of parallels", "a->b:1 a->b:2 b->c", "a", "c", 0, "path:a->b:1 b->c"},
        {"and of opposite ones in an undirected search", "a->b b->a", "b", "a", 1, "path:a->b"},
    };
    PathTest test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(runOn(test, g, g.node(c.start), g.node(c.finish), c.undirected), RV_NO_ERROR);
        EXPECT_EQ(answer(test.output), c.answer);
    }
}

TEST(PathExistsTest, StopsAtTheFinish) {
    class Counting : public RVPathExistsTestAlgorithm {
    public:
        std::string edges;

    protected:
        void privateTraverseEdge(RVEdge* edge) override {
            edges += " " + text(edge);
            RVPathExistsTestAlgorithm::privateTraverseEdge(edge);
        }
    };
    const TestGraph g("a->b a->c b->d c->d c->e d->e e->a");
    Runner<Counting, RVPathExistsTestInputData, RVPathExistsTestOutputData> test;
    ASSERT_EQ(runOn(test, g, g.node("a"), g.node("d"), 0), RV_NO_ERROR);
    EXPECT_EQ(test.algorithm.edges, " a->b a->c b->d");
}

// Forest and tree by definition: no edge joins what earlier ones have joined; every node of a rooted forest
// has one in-edge at most.
std::string shapeByDefinition(const RVGraph* graph, bool directed) {
    std::map<RVNode*, RVNode*> part;
    for (RVNode* node : *graph->pNodeList()) part[node] = node;
    bool isForest = graph->numberOfNodes() > 0;
    for (RVEdge* edge : *graph->pEdgeList()) {
        RVNode* const from = part[edge->pSourceNode()];
        RVNode* const to = part[edge->pTargetNode()];
        if (from == to) isForest = false;
        for (auto& each : part) each.second = each.second == from ? to : each.second;
    }
    for (RVNode* node : *graph->pNodeList()) isForest = isForest && !(directed && node->inDegree() > 1);
    const bool isConnected = std::all_of(
        part.begin(), part.end(), [&](const auto& each) { return each.second == part.begin()->second; });
    const bool isTree = graph->numberOfNodes() == 0 || (isForest && isConnected);
    return std::string(isForest ? "forest " : "- ") + (isTree ? "tree" : "-");
}

std::string shape(const RVTreeTestOutputData& output) {
    return std::string(output.isForest() == 1 ? "forest " : "- ") + (output.isTree() == 1 ? "tree" : "-");
}

// All on the same objects, where a negative answer must not stay for the next run.
TEST(ShapeTests, AgreeWithDefinitions) {
    TreeTest tree;
    AcyclicTest acyclic;
    int forests = 0;
    int cyclic = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        const std::string tokens =
            seed == 0 ? "" : randomText(seed, {.edges = 6, .loops = seed % 2 == 0, .acyclic = seed % 3 == 0});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const TestGraph g(tokens);
        for (const int directed : {0, 1, 5, 0}) {
            tree.input.directed(directed);
            ASSERT_EQ(tree(g), RV_NO_ERROR);
            EXPECT_EQ(shape(tree.output), shapeByDefinition(g, directed != 0));
        }
        forests += tree.output.isForest();

        ASSERT_EQ(acyclic(g), RV_NO_ERROR);
        EXPECT_EQ(acyclic.output.acyclic(), isAcyclic(g) ? 1 : 0);
        cyclic += 1 - acyclic.output.acyclic();
    }
    EXPECT_GT(forests, 100);
    EXPECT_GT(cyclic, 100);
}

}  // namespace
