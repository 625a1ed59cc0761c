// What the clustering algorithms read and write: weights of nodes, costs of edges, constraints and limits,
// and the clusters that were found.
//
// The weight of a node is its share of a cluster's size, the cost of an edge what it costs to have its ends
// in two clusters. Both are 32-bit ints that must not be negative; sums are 64-bit or double and do not
// overflow.
//
//   RVClusteringInputData input(graph);
//   input.setWeight(node, 3);
//   input.setCost(edge, 7);
//   RVClusteringConstraint apart(0, nullptr);
//   apart.type(RVDifferentClusterConstraint);
//   apart.addNode(a);
//   apart.addNode(b);
//   input.addConstraint(&apart);
#pragma once

#include "rv/foundation/boxed_values.h"
#include "rv/foundation/constraint.h"
#include "rv/foundation/list_sort.h"
#include "rv/foundation/owned_lists.h"
#include "rv/foundation/sorted_tree.h"
#include "rv/framework/analysis_data.h"
#include "rv/framework/columns.h"

// Per node of the inputs and of the output of a bipartitioning.
class RV_EXPORT RVNodeExtensionRatioCut : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionRatioCut)

public:
    RVNodeExtensionRatioCut() = default;
    RVNodeExtensionRatioCut(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    int weight() const { return m_weight; }
    int weight(int value) { return m_weight = value; }
    double x() const { return m_x; }
    double x(double value) { return m_x = value; }

private:
    int m_weight = 1;
    double m_x = 0.0;
};

// Per edge of the inputs.
class RV_EXPORT RVEdgeExtensionRatioCutInput : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionRatioCutInput)

public:
    RVEdgeExtensionRatioCutInput() = default;
    RVEdgeExtensionRatioCutInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }

private:
    int m_cost = 1;
};

// Inputs. None of them has named fields.

class RV_EXPORT RVBasicClusteringInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVBasicClusteringInputData)
    RV_NODE_RECORDS(RVNodeExtensionRatioCut)
    RV_EDGE_RECORDS(RVEdgeExtensionRatioCutInput)

public:
    RVBasicClusteringInputData() = default;
    explicit RVBasicClusteringInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // How much effort is spent: 0 little, 1 the default, 2 much.
    int getQuality() const { return m_quality; }
    int setQuality(int quality) { return m_quality = quality; }
    // Default 1.
    int getWeight(RVNode* node) const { return m_weights.get(node); }
    int setWeight(RVNode* node, int weight) { return m_weights.store(node, weight); }
    // Default 1.
    int getCost(RVEdge* edge) const { return m_costs.get(edge); }
    int setCost(RVEdge* edge, int cost) { return m_costs.store(edge, cost); }
    // The same, for reading all at once.
    const rv::NodeCosts& weights() const { return m_weights; }
    const rv::EdgeCosts& costs() const { return m_costs; }
    // Takes the weights and costs of the nodes and edges of this input's graph from another input about it.
    void getWeights(RVBasicClusteringInputData* other);

private:
    int m_quality = 1;
    rv::NodeCosts m_weights{this, &NodeRecord::weight, &NodeRecord::weight, 1};
    rv::EdgeCosts m_costs{this, &EdgeRecord::cost, &EdgeRecord::cost, 1};
};

class RV_EXPORT RVClusteringInputData : public RVBasicClusteringInputData {
    RV_DATA_OBJECT(RVClusteringInputData)

public:
    static constexpr int kManyClusters = 0x1FFFFFFF;

    RVClusteringInputData() = default;
    explicit RVClusteringInputData(RVGraph* graph) : RVBasicClusteringInputData(graph) {}

    // Of RVClusteringConstraint. The list belongs to the input; the constraints are the caller's, must live
    // as long as they are in the list, and are never destroyed by it.
    RVDList* getConstraintList() const { return m_constraints.get(); }
    // None is not added.
    void addConstraint(RVClusteringConstraint* constraint);
    // All of a list, in its order. The list stays the caller's.
    void addConstraints(const RVDList* constraints);

    // Default 1. Any value is stored; how algorithms take a minimum above the maximum is said there.
    int minClusterCount() const { return m_minClusterCount; }
    int minClusterCount(int count) { return m_minClusterCount = count; }
    // Default 536870911. A value below 1 is stored as 1.
    int maxClusterCount() const { return m_maxClusterCount; }
    int maxClusterCount(int count) { return m_maxClusterCount = count < 1 ? 1 : count; }
    // The greater, the more alike the weights of the clusters. Default 1.
    double balanceFactor() const { return m_balanceFactor; }
    double balanceFactor(double factor) { return m_balanceFactor = factor; }
    // The greater, the larger and fewer the clusters: the square root of the number of nodes, divided by
    // this, is the number that is aimed at. Default 1.
    double clusterSizeFactor() const { return m_clusterSizeFactor; }
    double clusterSizeFactor(double factor) { return m_clusterSizeFactor = factor; }

private:
    rv::Owned<RVDList> m_constraints;
    int m_minClusterCount = 1;
    int m_maxClusterCount = kManyClusters;
    double m_balanceFactor = 1.0;
    double m_clusterSizeFactor = 1.0;
};

// Outputs.

class RV_EXPORT RVClusteringOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVClusteringOutputData)

public:
    RVClusteringOutputData() = default;

    // The clusters, each an RVDList of nodes. Both kinds of lists belong to the output.
    RVDList* pClusters() const { return m_clusters.get(); }
    // Appends a cluster, which then belongs to the output. None is not added.
    void addCluster(RVDList* cluster);
    // Appends every cluster of a list, in order. The clusters then belong to the output; the list stays the
    // caller's.
    void addClusters(RVDList* clusters);
    // Empties the list, without destroying what it held, then appends for each cluster a new RVDList with its
    // nodes. The new lists are the caller's.
    void buildClusterList(RVDList& list) const;

    // Numbers the clusters 1, 2, ... in list order: the number of a cluster is its position in pClusters().
    // Clusters that are added later have no number until this is called again.
    void generateClusterNumbers();
    // The number of a node's cluster; 0 for a node without one.
    int getClusterNumber(RVNode* node) const { return m_numbers.get(node); }

    void reset() override;

private:
    rv::OwnedLists<RVDList> m_clusters;
    rv::NodeColumn<int> m_numbers{this};
};

// Orderings of graph objects that carry boxed values in their slots. A value that is not there counts as 0.

// By the RVDouble in pIUserField(), then by the RVInt in pUserField(), smallest first.
class RV_EXPORT RVClusteringBinTree : public RVSortedBinTree {
    RV_OBJECT(RVClusteringBinTree)

public:
    RVClusteringBinTree() = default;
    int virtualObjectCompare(RVObject* a, RVObject* b) const override;
};

// By the RVDouble in pIUserField(), smallest first.
class RV_EXPORT RVClusterSizeSort : public RVDListSort {
    RV_OBJECT(RVClusterSizeSort)

public:
    RVClusterSizeSort() = default;
    int virtualCellCompare(RVDListCell* first, RVDListCell* second) const override;
};

// What the algorithms keep for the time of a run.

class RV_EXPORT RVNodeExtensionClusteringInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionClusteringInternal)

public:
    RVNodeExtensionClusteringInternal() = default;
    RVNodeExtensionClusteringInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    RVNode* pLocalOriginalNode() const { return m_pLocalOriginalNode; }
    RVNode* pLocalOriginalNode(RVNode* node) { return m_pLocalOriginalNode = node; }
    RVNode* pLocalNewNode() const { return m_pLocalNewNode; }
    RVNode* pLocalNewNode(RVNode* node) { return m_pLocalNewNode = node; }
    double x() const { return m_x; }
    double x(double value) { return m_x = value; }

private:
    RVNode* m_pLocalOriginalNode = nullptr;
    RVNode* m_pLocalNewNode = nullptr;
    double m_x = 0.0;
};

class RV_EXPORT RVEdgeExtensionClusteringInternal : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionClusteringInternal)

public:
    RVEdgeExtensionClusteringInternal() = default;
    RVEdgeExtensionClusteringInternal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    RVEdge* pLocalOriginalEdge() const { return m_pLocalOriginalEdge; }
    RVEdge* pLocalOriginalEdge(RVEdge* edge) { return m_pLocalOriginalEdge = edge; }

private:
    RVEdge* m_pLocalOriginalEdge = nullptr;
};

// Links the nodes and edges of the graphs that an algorithm builds to those that they stand for. Setters take
// the object first, then the value, which they give.
class RV_EXPORT RVClusteringInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVClusteringInternalData)
    RV_NODE_RECORDS(RVNodeExtensionClusteringInternal)
    RV_EDGE_RECORDS(RVEdgeExtensionClusteringInternal)

public:
    RVClusteringInternalData() = default;

    // The node from which a node was copied.
    RVNode* getLocalOriginalNode(RVNode* node) const { return load(node, &NodeRecord::pLocalOriginalNode); }
    RVNode* setLocalOriginalNode(RVNode* node, RVNode* original) {
        return store(node, &NodeRecord::pLocalOriginalNode, original);
    }
    // The present copy of a node.
    RVNode* getLocalNewNode(RVNode* node) const { return load(node, &NodeRecord::pLocalNewNode); }
    RVNode* setLocalNewNode(RVNode* node, RVNode* copy) {
        return store(node, &NodeRecord::pLocalNewNode, copy);
    }
    RVEdge* getLocalOriginalEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::pLocalOriginalEdge); }
    RVEdge* setLocalOriginalEdge(RVEdge* edge, RVEdge* original) {
        return store(edge, &EdgeRecord::pLocalOriginalEdge, original);
    }
    // The position of a node in the last bipartitioning.
    double getX(RVNode* node) const { return load(node, &NodeRecord::x); }
    double setX(RVNode* node, double x) { return store(node, &NodeRecord::x, x); }
};
