// The data of the clustering algorithms, and ratio-cut bipartitioning.

#include <gtest/gtest.h>

#include <limits>
#include <list>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

TEST(ClusteringData, KeepsLimitsAndConstraints) {
    const TestGraph g("a");
    RVClusteringInputData input(g);
    for (const int count : {0, -5}) EXPECT_EQ(input.maxClusterCount(count) + input.maxClusterCount(), 2);
    input.getWeights(nullptr);
    RVClusteringConstraint constraint(3, L"apart");
    RVDList constraints;
    constraints.appendObject(&constraint);
    input.addConstraint(&constraint);
    input.addConstraint(nullptr);
    input.addConstraints(&constraints);
    input.addConstraints(nullptr);
    EXPECT_EQ(RVClusteringInputData(input).getConstraintList()->length(), 2);
}

TEST(ClusteringData, NumbersItsClusters) {
    const TestGraph g("a b c d");
    RVClusteringOutputData output;
    output.addCluster(new RVDList(g.nodes("c a")));
    RVDList more;
    more.appendObject(new RVDList(g.nodes("b")));
    more.appendObject(nullptr);
    output.addClusters(&more);
    output.addCluster(nullptr);
    output.generateClusterNumbers();
    EXPECT_EQ(clusterText(output), "[c a][b]");
    std::string numbers;
    for (RVNode* node : *g->pNodeList()) numbers += std::to_string(output.getClusterNumber(node));
    EXPECT_EQ(numbers, "1210");
    EXPECT_EQ(output.getClusterNumber(nullptr), 0);

    RVInt kept(5);
    RVDList copies;
    copies.appendObject(&kept);
    output.buildClusterList(copies);
    EXPECT_EQ(copies.length(), 2);
    EXPECT_EQ(static_cast<RVDList*>(copies.pFirstObject())->pFirstObject(), g.node("c"));
    EXPECT_EQ(kept.value(), 5);
    output.reset();
    EXPECT_EQ(clusterText(output) + std::to_string(output.getClusterNumber(g.node("a"))), "0");
    copies.deleteAllCellsAndObjects();
}

TEST(ClusteringData, OrdersGraphObjectsByTheirValues) {
    const TestGraph g("a:4,1 b:2,9 c:4,0 d:2,8 e:1,7 f");
    std::list<RVDouble> weights;
    std::list<RVInt> numbers;
    RVClusteringBinTree tree;
    RVNodeDList sorted;
    for (RVNode* node : *g->pNodeList()) {
        if (node != g.node("f")) {
            node->pIUserField(&weights.emplace_back(number(node) / 4.0));
            node->pUserField(&numbers.emplace_back(number(node, 1)));
        }
        tree.addObject(node);
        sorted.appendNode(node);
    }
    RVClusterSizeSort().quickSort(&sorted, 0);
    EXPECT_EQ(text(sorted), "f e b d a c");
    sorted.deleteAllCells();
    for (int i = 1; i <= 6; ++i) sorted.appendNode(static_cast<RVNode*>(tree.pObjectInPosition(i)));
    EXPECT_EQ(text(sorted), "f e d b c a");
}

TEST(ClusteringConstraint, IsValidForNodesOfTheGraph) {
    const TestGraph g("a b c");
    const TestGraph other("x");
    const struct {
        const char* what;
        std::vector<RVNode*> nodes;
        int valid[3];  // by type
    } cases[] = {
        {"no nodes", {}, {1, 1, 1}},
        {"nodes", {g.node("a"), g.node("b")}, {1, 1, 1}},
        {"a node twice", {g.node("a"), g.node("b"), g.node("a")}, {1, 0, 0}},
        {"none", {nullptr}, {0, 0, 0}},
        {"a foreign node", {g.node("a"), other.node("x")}, {0, 0, 0}},
        {"a detached node", {g->removeNode(g.node("c"))}, {0, 0, 0}},
    };
    for (const auto& c : cases) {
        RVClusteringConstraint constraint(0, nullptr);
        for (RVNode* node : c.nodes) constraint.addNode(node);
        for (const int type : {0, 1, 2}) {
            constraint.type(static_cast<RVClusteringConstraintTypeEnum>(type));
            EXPECT_EQ(constraint.valid(g), c.valid[type]) << c.what << ", type " << type;
        }
        EXPECT_EQ(constraint.valid(nullptr), c.nodes.empty() ? 1 : 0);
        EXPECT_EQ(RVClusteringConstraint(constraint).pNodeList()->length(), constraint.pNodeList()->length());
    }
}

int run(RatioCut& test, RVGraph* graph) {
    takeWeights(test.input, graph);
    return test(graph);
}

// What the weights count as.
std::map<RVNode*, double> weights(const RVGraph* graph) {
    std::map<RVNode*, double> all;
    int positive = 0;
    for (RVNode* node : *graph->pNodeList()) positive += (all[node] = number(node)) > 0 ? 1 : 0;
    if (positive < 2) {
        for (auto& [node, weight] : all) weight = 1;
    }
    return all;
}

// The ratio of a split; none where one side has no weight.
double ratio(const RVGraph* graph, const std::map<RVNode*, double>& weights, const std::set<RVNode*>& first) {
    double inFirst = 0;
    double inSecond = 0;
    double cost = 0;
    for (const auto& [node, weight] : weights) (first.count(node) != 0 ? inFirst : inSecond) += weight;
    for (const RVEdge* edge : *graph->pEdgeList()) {
        if (first.count(edge->pSourceNode()) != first.count(edge->pTargetNode())) cost += number(edge);
    }
    return inFirst * inSecond > 0 ? cost / (inFirst * inSecond) : std::numeric_limits<double>::infinity();
}

TEST(RatioCut, Splits) {
    const struct {
        const char* what;
        const char* graph;
        const char* clusters;
        double cost;
    } cases[] = {
        {"nothing", "", "[][]", 0.0},
        {"one node", "a a->a", "[a][]", 0.0},
        {"one weight", "a:5 b:0 a->b:12", "", 12.0},
        {"parallel and opposite edges, a loop", "a b a->b:1 b->a:2 a->b:3 a->a:9", "", 6.0},
        {"no edges", "a b c", "", 0.0},
        {"a bridge", "a->b b->c c->a d->e e->f f->d c->d", "", 1.0 / 9},
        {"large values", "a:2147483647 b:2147483647 a->b:2147483647 b->a:2147483647", "", 2.0 / 2147483647},
    };
    RatioCut test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        EXPECT_EQ(run(test, g), RV_NO_ERROR);
        EXPECT_DOUBLE_EQ(test.output.totalCost(), c.cost);
        EXPECT_EQ(test.output.pClusters()->length(), 2);
        EXPECT_TRUE(*c.clusters == '\0' || clusterText(test.output) == c.clusters);
    }
}

// Every split of small graphs is tried. The cost of the result is that of its split, except for edges between
// nodes at one position.
TEST(RatioCut, IsNeverBetterThanTheBestAndSeldomWorse) {
    RatioCut test;
    int splits = 0;
    int best = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const std::string tokens =
            randomText(seed, {.nodes = 9, .edges = 24, .least = 0, .most = 6, .nodeNumbers = seed % 2 == 0});
        const TestGraph g(tokens);
        if (g->numberOfNodes() < 2) continue;
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        test.input.setQuality(static_cast<int>(seed % 3));
        ASSERT_EQ(run(test, g), RV_NO_ERROR);
        const auto weight = weights(g);
        double optimum = std::numeric_limits<double>::infinity();
        for (unsigned subset = 1; subset < (1U << g->numberOfNodes()) - 1; subset += 2) {
            std::set<RVNode*> first;
            for (RVNode* node : *g->pNodeList())
                if ((subset >> node->denseIndex() & 1U) != 0) first.insert(node);
            optimum = std::min(optimum, ratio(g, weight, first));
        }
        std::set<RVNode*> first;
        for (RVDListIter iter(RVDList::castDown(test.output.pClusters()->pFirstObject())); iter; iter++)
            first.insert(static_cast<RVNode*>(iter.pObject()));
        bool hasTies = false;
        for (const RVEdge* edge : *g->pEdgeList()) {
            hasTies =
                hasTies || test.output.getX(edge->pSourceNode()) == test.output.getX(edge->pTargetNode());
        }
        const double found = ratio(g, weight, first);
        EXPECT_GE(found, optimum * (1 - 1e-9));
        EXPECT_LE(test.output.totalCost(), found * (1 + 1e-9));
        EXPECT_GE(test.output.totalCost(), hasTies ? 0 : found * (1 - 1e-9));
        ++splits;
        if (found <= optimum * (1 + 1e-9)) ++best;
    }
    EXPECT_GE(best, splits * 3 / 4);
}

TEST(RatioCut, StartsWhereItIsTold) {
    const TestGraph g("a->b b->c c->d d->a a->c e->f f->g g->h h->e d->e");
    const double inf = std::numeric_limits<double>::infinity();
    for (const double scale : {1.0, -3.0, 0.0, 1e-300, 1e100, 1e300, inf, std::nan("")}) {
        for (const int quality : {0, 1, 2}) {
            RatioCut test;
            test.input.hasInitialValue(1);
            test.input.setQuality(quality);
            double x = 0;
            for (RVNode* node : *g->pNodeList()) test.input.setX(node, scale * x++);
            ASSERT_EQ(run(test, g), RV_NO_ERROR);
            const auto* clusters = test.output.pClusters();
            for (RVDListIter iter(clusters); iter; iter++)
                EXPECT_GT(RVDList::castDown(iter.pObject())->length(), 0) << scale;
            if (scale != 1.0) continue;
            EXPECT_EQ(clusterText(test.output), "[a b c d][e f g h]");
            EXPECT_DOUBLE_EQ(test.output.totalCost(), 1.0 / 16);
        }
    }
}

// A list of variables is sorted by the same order as the positions: stably, whatever they are.
TEST(RatioCut, SortsVariables) {
    const double positions[] = {0.5, -0.0, 3, 0.5, 0.0, -7};
    std::vector<RVRatioCutVariable> variables(6);
    RVDList list;
    for (std::size_t i = 0; i < 6; ++i) {
        variables[i].x(positions[i]);
        list.appendObject(&variables[i]);
    }
    RVRatioCutVariableSort().quickSort(&list, 0);
    std::string order;
    for (RVDListIter iter(&list); iter; iter++) {
        order += std::to_string(static_cast<RVRatioCutVariable*>(iter.pObject()) - variables.data());
    }
    EXPECT_EQ(order, "514032");
}

// A planted partition that no greedy choice of single nodes finds.
TEST(RatioCut, FindsAPlantedPartition) {
    std::mt19937 random(5);
    std::string tokens;
    const auto below = [&](unsigned limit) { return std::to_string(random() % limit); };
    for (int i = 0; i < 2400; ++i) {
        tokens += "a" + below(300) + "->a" + below(300) + " b" + below(300) + "->b" + below(300) + " ";
        if (i % 40 == 0) tokens += "a" + below(300) + "->b" + below(300) + " ";
    }
    const TestGraph g(tokens);
    RatioCut test;
    EXPECT_EQ(run(test, g), RV_NO_ERROR);
    EXPECT_NEAR(test.output.totalCost(), 60.0 / (300.0 * 300.0), 1e-9);
}

}  // namespace
