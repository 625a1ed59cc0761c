// Cluster splitting: divides a graph into clusters of about the same weight by cutting clusters in two, again
// and again, where that costs least.
//
// Works on the caller's graph, any graph; directions play no part. From all nodes in one cluster on, a
// cluster that is far off a target is cut by ratio cut if the clusters' weights come closer to it thereby.
// With T the weight of all n nodes and k = sqrt(n) / clusterSizeFactor, brought within the limits of the
// number of clusters, the target is L = 2 T / n + T / k. A cluster of weight w is off by ((L - w)^2)^p with
// p = 0.75 * balanceFactor, between 0.001 and 10, and far off by more than L. A clusterSizeFactor below 0.01
// counts as 0.01. No cluster is cut for its weight once there are maxClusterCount of them.
//
// Then clusters with two nodes of one different-cluster constraint are cut until there are none, whatever
// maxClusterCount says, and the clusters with the most nodes until there are minClusterCount of them, or all
// nodes are alone. Other constraints play no part here. A maximum below the minimum sets both to 1, in the
// input.
//
// Every node is in exactly one cluster, no cluster is empty. An empty graph has no clusters.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_DATA, RV_NO_INPUT_GRAPH, then RV_INVALID_CONSTRAINT,
// RV_INVALID_QUALITY, RV_NEGATIVE_WEIGHT, RV_NEGATIVE_COST, then RV_NO_OUTPUT_DATA and RV_NO_GRAPH_FACTORY.
// A cut takes the time of a ratio cut of the cluster alone; a sweep over the constraints is linear in the
// length of those that are not fulfilled yet. O(n + m) space.
//
//   RVClusterSplittingAlgorithm splitting;
//   RVClusterSplittingInputData input(graph);
//   RVClusteringOutputData output;
//   input.maxClusterCount(10);
//   splitting.pInputData(&input);
//   splitting.pOutputData(&output);
//   if (splitting.run() == RV_NO_ERROR) use(*output.pClusters());
#pragma once

#include "rv/clustering/clustering_data.h"
#include "rv/framework/algorithm.h"

class RV_EXPORT RVClusterSplittingInputData : public RVClusteringInputData {
    RV_DATA_OBJECT(RVClusterSplittingInputData)

public:
    RVClusterSplittingInputData() = default;
    explicit RVClusterSplittingInputData(RVGraph* graph) : RVClusteringInputData(graph) {}
};

class RV_EXPORT RVClusterSplittingAlgorithm : public RVInternalAlgorithm {
    RV_OBJECT(RVClusterSplittingAlgorithm)
    RV_WORKS_WITH(RVClusterSplittingInputData, RVClusteringOutputData)

public:
    RVClusterSplittingAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;
    // The same as run: the entry for algorithms that use this one as a part.
    virtual RVServiceErrorCodeEnum internalRun();

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    RVAlgorithmData* newInternalData() override;
};
