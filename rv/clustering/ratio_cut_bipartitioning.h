// Ratio-cut bipartitioning: splits the nodes of a graph into two clusters such that the ratio cut, the cost
// of the edges between the clusters divided by the product of the clusters' weights, is small.
//
// Works on the caller's graph, any graph; directions play no part, self-loops are ignored. The split is a
// good one, found by a heuristic; it need not be the best. If fewer than two nodes have a weight, all count
// as 1. Edges between nodes that end up at exactly the same position are not counted in totalCost. A graph of
// one node gives a cluster with that node and an empty one, an empty graph two empty ones; both have
// totalCost 0.
//
// Nodes get positions on a line. A gradient method lowers the sum of the edges' lengths, weighted by their
// costs, while the weighted spread of the positions stays the same; each time all splits between neighbours
// on the line are tried. The method ends when the ratio has not changed for some time, at most 150 iterations
// (450 at quality 2), and in any case after 40 times as many. The start is random with a fixed seed, or
// given. Clusters list their nodes in graph order.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_DATA, RV_NO_INPUT_GRAPH, then RV_INVALID_QUALITY,
// RV_NEGATIVE_WEIGHT, RV_NEGATIVE_COST, then RV_NO_OUTPUT_DATA and RV_NO_GRAPH_FACTORY.
// An iteration takes O(n + m) time, O(m + n log n) where many positions are almost the same. O(n + m) space.
//
//   RVRatioCutBipartitioningAlgorithm bipartitioning;
//   RVRatioCutBipartitioningInputData input(graph);
//   RVRatioCutBipartitioningOutputData output;
//   bipartitioning.pInputData(&input);
//   bipartitioning.pOutputData(&output);
//   if (bipartitioning.run() == RV_NO_ERROR) use(*output.pClusters(), output.totalCost());
#pragma once

#include <memory>
#include <vector>

#include "rv/clustering/clustering_data.h"
#include "rv/framework/algorithm.h"

class RV_EXPORT RVRatioCutBipartitioningInputData : public RVBasicClusteringInputData {
    RV_DATA_OBJECT(RVRatioCutBipartitioningInputData)

public:
    RVRatioCutBipartitioningInputData() = default;
    explicit RVRatioCutBipartitioningInputData(RVGraph* graph) : RVBasicClusteringInputData(graph) {}

    // Nonzero: the positions of the nodes are where to start. Default 0.
    int hasInitialValue() const { return m_hasInitialValue; }
    int hasInitialValue(int flag) { return m_hasInitialValue = flag; }
    // Default 0.0. What is no number, or not between -1e100 and 1e100, counts as 0.0.
    double getX(RVNode* node) const { return m_x.get(node); }
    double setX(RVNode* node, double x) { return m_x.store(node, x); }

private:
    int m_hasInitialValue = 0;
    rv::NodeColumn<double> m_x{this, &RVNodeExtensionRatioCut::x, &RVNodeExtensionRatioCut::x};
};

// Two clusters.
class RV_EXPORT RVRatioCutBipartitioningOutputData : public RVClusteringOutputData {
    RV_DATA_OBJECT(RVRatioCutBipartitioningOutputData)
    RV_NODE_RECORDS(RVNodeExtensionRatioCut)

public:
    RVRatioCutBipartitioningOutputData() = default;

    // The ratio of the split.
    double totalCost() const { return m_totalCost; }
    double totalCost(double cost) { return m_totalCost = cost; }
    // The final position of a node.
    double getX(RVNode* node) const { return m_x.get(node); }
    double setX(RVNode* node, double x) { return m_x.store(node, x); }

    void reset() override;

private:
    double m_totalCost = 0.0;
    rv::NodeColumn<double> m_x{this, &RVNodeExtensionRatioCut::x, &RVNodeExtensionRatioCut::x};
};

class RV_EXPORT RVRatioCutBipartitioningAlgorithm : public RVInternalAlgorithm {
    RV_OBJECT(RVRatioCutBipartitioningAlgorithm)
    RV_WORKS_WITH(RVRatioCutBipartitioningInputData, RVRatioCutBipartitioningOutputData)

public:
    RVRatioCutBipartitioningAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;
    // The same as run: the entry for algorithms that use this one as a part.
    virtual RVServiceErrorCodeEnum internalRun();

    // How many iterations the last run took.
    int iterations() const { return m_iterations; }

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    RVAlgorithmData* newInternalData() override;

private:
    struct Arrays;
    struct Parts;

    void makeVariables();
    void testWeights();
    void makeEdges();
    double cut();
    // The steps of `cut`, on the arrays.
    void initial();
    void schedule();
    void iteration();
    void gGrad();
    void grad();
    void stepProj();
    void stepGrad();
    void stepDir();
    void stepFes();
    double calcRatio();

    void moveAlong(const std::vector<double>& direction);

    // All of the present run.
    rv::RunState<Parts> m_parts{this};
    rv::RunState<Arrays> m_arrays{this};  // what the variables hold, while `cut` works
    double m_currentRatio = 0.0;          // of the last sweep
    double m_bestRatio = 0.0;
    double m_stepScale = 0.0;    // s
    double m_stepLength = 0.0;   // t
    double m_totalWeight = 0.0;  // W
    double m_momentum = 0.0;     // mu
    int m_iterations = 0;
};

// A node of the graph.
class RV_EXPORT RVRatioCutVariable : public RVObject {
    RV_OBJECT(RVRatioCutVariable)

public:
    RVRatioCutVariable() = default;

    double x() const { return m_x; }
    double x(double value) { return m_x = value; }
    double gradient() const { return m_gradient; }
    double gradient(double value) { return m_gradient = value; }
    double direction() const { return m_direction; }
    double direction(double value) { return m_direction = value; }
    // Of RVRatioCutEdge. The list belongs to the variable, the edges do not.
    RVDList* pEdgeList() const { return m_edges.get(); }
    double startX() const { return m_startX; }
    double startX(double value) { return m_startX = value; }
    double weight() const { return m_weight; }
    double weight(double value) { return m_weight = value; }
    // 0 for the first cluster, 1 for the second.
    int side() const { return m_side; }
    int side(int value) { return m_side = value; }
    double averagedX() const { return m_averagedX; }
    double averagedX(double value) { return m_averagedX = value; }

private:
    double m_x = 0.0;
    double m_gradient = 0.0;
    double m_direction = 0.0;
    rv::Owned<RVDList> m_edges;
    double m_startX = 0.0;
    double m_weight = 1.0;
    int m_side = 0;
    double m_averagedX = 0.0;
};

// An edge as one of its ends sees it.
class RV_EXPORT RVRatioCutEdge : public RVObject {
    RV_OBJECT(RVRatioCutEdge)

public:
    RVRatioCutEdge() = default;

    RVRatioCutVariable* pOther() const { return m_pOther; }
    RVRatioCutVariable* pOther(RVRatioCutVariable* other) { return m_pOther = other; }
    double cost() const { return m_cost; }
    double cost(double value) { return m_cost = value; }

private:
    RVRatioCutVariable* m_pOther = nullptr;
    double m_cost = 1.0;
};

// Variables by position, smallest first.
class RV_EXPORT RVRatioCutVariableSort : public RVDListSort {
    RV_OBJECT(RVRatioCutVariableSort)

public:
    RVRatioCutVariableSort() = default;
    int virtualCellCompare(RVDListCell* first, RVDListCell* second) const override;
};
