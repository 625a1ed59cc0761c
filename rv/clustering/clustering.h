// Clustering: divides the nodes of a graph into clusters of about the same weight, such that edges between
// the clusters cost little, under constraints and within limits of the number of clusters.
//
// Works on any graph; directions play no part. The nodes of a complete-cluster constraint are set aside and
// become a cluster of their own; one that several constraints list goes to the first of them. Nodes that
// same-cluster constraints tie together count as one node with the sum of their weights (2147483647 if that
// is less). What is then left is clustered by disconnected clustering (see there), with both limits lowered
// by the number of complete clusters, but not below 1.
//
// So these constraints are always fulfilled: same-cluster constraints on nodes that no complete-cluster
// constraint lists, complete-cluster constraints that share no node with another one, and different-cluster
// constraints without nodes that the other two kinds put together. A different-cluster constraint may raise
// the number of clusters above the maximum. After the run `fulfilled` of each constraint tells whether the
// clusters fulfil it; a constraint without nodes is fulfilled.
//
// Every node is in exactly one cluster, no cluster is empty. The clusters of the disconnected clustering come
// first, in its order, then those of the complete-cluster constraints, in the order of these; all are
// numbered (getClusterNumber). Within a cluster, nodes that were tied together stand side by side in graph
// order, those of a complete-cluster constraint in its order.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_DATA, RV_NO_INPUT_GRAPH, then RV_INVALID_CONSTRAINT when `valid` of
// a constraint is 0 for the graph, RV_INVALID_CLUSTER_COUNT for a minimum above the maximum,
// RV_INVALID_QUALITY, RV_NEGATIVE_WEIGHT, RV_NEGATIVE_COST, then RV_NO_OUTPUT_DATA and RV_NO_GRAPH_FACTORY;
// and the code of the disconnected clustering. When that fails there are no clusters, and no constraint is
// fulfilled.
// O(n + m + c) time and space beside the disconnected clustering, for constraints that list c nodes in all.
//
//   RVClusteringAlgorithm clustering;
//   RVClusteringInputData input(graph);
//   RVClusteringOutputData output;
//   input.addConstraint(&constraint);
//   clustering.pInputData(&input);
//   clustering.pOutputData(&output);
//   if (clustering.run() == RV_NO_ERROR) use(output.getClusterNumber(node), constraint.fulfilled());
#pragma once

#include "rv/clustering/clustering_data.h"
#include "rv/framework/internal_graph_algorithm.h"

class RV_EXPORT RVClusteringAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVClusteringAlgorithm)
    RV_WORKS_WITH(RVClusteringInputData, RVClusteringOutputData)

public:
    RVClusteringAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    // Both do nothing: the working graph is read as it is.
    void preprocess() override;
    void postprocess() override;
    RVAlgorithmData* newInternalData() override;

private:
    int m_completeClusters = 0;  // of the present run
};
