// The data of the clustering algorithms, and ratio-cut bipartitioning.

#include <gtest/gtest.h>

#include <iostream>
#include <limits>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

TEST(ClusteringData, HasItsDefaultsAndLimits) {
    const TestGraph g("a->b");
    RVClusteringInputData input(g);
    EXPECT_EQ(input.getQuality(), 1);
    EXPECT_EQ(input.getWeight(g.node("a")), 1);
    EXPECT_EQ(input.getCost(g.edge("a->b")), 1);
    EXPECT_EQ(input.getConstraintList()->length(), 0);
    EXPECT_EQ(input.minClusterCount(), 1);
    EXPECT_EQ(input.maxClusterCount(), 536870911);
    EXPECT_EQ(input.balanceFactor(), 1.0);
    EXPECT_EQ(input.clusterSizeFactor(), 1.0);
    for (const int count : {0, -5}) EXPECT_EQ(input.maxClusterCount(count) + input.maxClusterCount(), 2);
    EXPECT_EQ(input.minClusterCount(-5), -5);
    EXPECT_FALSE(input.hasField("quality") || input.hasNodeField("weight") || input.hasEdgeField("cost"));

    input.setWeight(g.node("a"), 7);
    input.setCost(g.edge("a->b"), 8);
    RVBasicClusteringInputData other(g);
    other.getWeights(&input);
    other.getWeights(nullptr);
    EXPECT_EQ(other.getWeight(g.node("a")), 7);
    EXPECT_EQ(other.getCost(g.edge("a->b")), 8);

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
    for (RVNode* node : *g->pNodeList()) {
        EXPECT_EQ(output.getClusterNumber(node),
                  (std::map<std::string, int>{{"a", 1}, {"b", 2}, {"c", 1}})[text(node)]);
    }
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

TEST(ClusteringData, OrdersGraphsByTheirValues) {
    RVAFactory factory;
    const double weights[] = {2.0, 1.0, 2.0, 1.0, 0.5};
    const int numbers[] = {1, 9, 0, 8, 7};
    std::vector<std::unique_ptr<RVGraph>> graphs;
    std::vector<RVDouble> boxedWeights;
    std::vector<RVInt> boxedNumbers;
    for (int i = 0; i < 5; ++i) {
        boxedWeights.emplace_back(weights[i]);
        boxedNumbers.emplace_back(numbers[i]);
    }
    RVClusteringBinTree tree;
    RVDList list;
    for (std::size_t i = 0; i < 5; ++i) {
        graphs.emplace_back(factory.newGraph());
        graphs.back()->pIUserField(&boxedWeights[i]);
        graphs.back()->pUserField(&boxedNumbers[i]);
        tree.addObject(graphs.back().get());
        list.appendObject(graphs.back().get());
    }
    RVClusterSizeSort().quickSort(&list, 0);
    const std::size_t inTree[] = {4, 3, 1, 2, 0};
    const std::size_t inList[] = {4, 1, 3, 0, 2};
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(tree.pObjectInPosition(i + 1), graphs[inTree[i]].get());
        EXPECT_EQ(list.pObjectInPosition(i + 1), graphs[inList[i]].get());
    }
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
        for (RVNode* node : c.nodes) EXPECT_EQ(constraint.addNode(node), node);
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
        {"two nodes", "a:2 b:3 a->b:12", "", 2.0},
        {"no weights", "a:0 b:0 a->b:12", "", 12.0},
        {"one weight", "a:5 b:0 a->b:12", "", 12.0},
        {"parallel and opposite edges, a loop", "a b a->b:1 b->a:2 a->b:3 a->a:9", "", 6.0},
        {"no edges", "a b c", "", 0.0},
        {"no costs", "a->b:0 b->c:0", "", 0.0},
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
        if (*c.clusters != '\0') {
            EXPECT_EQ(clusterText(test.output), c.clusters);
        }
    }
}

TEST(RatioCut, ChecksItsDataInOrder) {
    const struct {
        const char* graph;
        int quality;
        int code;
    } cases[] = {{"a:-1 a->b:-1", 3, 26},
                 {"a:-1 a->b:-1", -1, 26},
                 {"a:-1 a->b:-1", 2, 25},
                 {"a a->b:-1", 0, 17},
                 {"a:0 a->b:0", 0, 0}};
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        RatioCut test;
        test.input.setQuality(c.quality);
        EXPECT_EQ(run(test, g), c.code) << c.graph;
        test.algorithm.pOutputData(nullptr);
        EXPECT_EQ(run(test, g), c.code == 0 ? RV_NO_OUTPUT_DATA : c.code) << c.graph;
    }
}

// Every split of small graphs is tried. The cost of the result is that of its split, except for edges between
// nodes at one position.
TEST(RatioCut, IsNeverBetterThanTheBestAndSeldomWorse) {
    RatioCut test;
    double worst = 1;
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
        const int all = 1 << g->numberOfNodes();
        for (int subset = 1; subset < all - 1; subset += 2) {
            std::set<RVNode*> first;
            int bit = 1;
            for (RVNode* node : *g->pNodeList()) {
                if ((subset & bit) != 0) first.insert(node);
                bit *= 2;
            }
            optimum = std::min(optimum, ratio(g, weight, first));
        }
        std::set<RVNode*> first;
        std::map<RVNode*, double> position;
        bool hasTies = false;
        for (RVDListIter iter(RVDList::castDown(test.output.pClusters()->pFirstObject())); iter; iter++)
            first.insert(static_cast<RVNode*>(iter.pObject()));
        for (RVNode* node : *g->pNodeList()) position[node] = test.output.getX(node);
        for (const RVEdge* edge : *g->pEdgeList()) {
            hasTies = hasTies || position[edge->pSourceNode()] == position[edge->pTargetNode()];
        }
        const double found = ratio(g, weight, first);
        EXPECT_GE(found, optimum * (1 - 1e-9));
        EXPECT_LE(test.output.totalCost(), found * (1 + 1e-9));
        if (!hasTies) {
            EXPECT_NEAR(test.output.totalCost(), found, found * 1e-9);
        }
        ++splits;
        if (found <= optimum * (1 + 1e-9)) ++best;
        if (optimum > 0) worst = std::max(worst, found / optimum);
    }
    std::cout << best << " of " << splits << " splits are the best ones, the worst is " << worst
              << " times as dear\n";
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
    RatioCut again;
    EXPECT_EQ(run(again, g), RV_NO_ERROR);
    EXPECT_EQ(clusterText(again.output), clusterText(test.output));
}

}  // namespace
