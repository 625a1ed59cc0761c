// Disconnected clustering: clusters a graph whatever its number of connected components, within limits of the
// number of clusters.
//
// Works on the caller's graph, any graph; directions play no part. A connected graph is clustered by cluster
// splitting (see there) as a whole, and with the same result. Otherwise each component is, lightest first,
// with a share of what is still missing to the minimum, the maximum less one for each component to come, and
// the constraints on several of its nodes. If there are more than maxClusterCount clusters then, the lightest
// is merged with the lightest other one that no different-cluster constraint keeps apart from it, again and
// again. A cluster for which there is no other stays as it is, and the number of clusters may remain above
// the maximum. It may also be below the minimum: what small components cannot give of their share, those
// before have not made up for. Same-cluster and complete-cluster constraints play no part.
//
// The clusters of several components come in this order: those that could be merged with no other, as they
// were set aside; then the others, lightest first, and where weights are equal in the order in which they
// were made. Every node is in exactly one cluster, no cluster is empty. An empty graph has no clusters.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_DATA, RV_NO_INPUT_GRAPH, then RV_INVALID_CONSTRAINT,
// RV_INVALID_QUALITY, RV_NEGATIVE_WEIGHT, RV_NEGATIVE_COST, then RV_NO_OUTPUT_DATA and RV_NO_GRAPH_FACTORY;
// and the code of the last cluster splitting.
// Beside cluster splitting O(n + m + c) time for constraints that list c nodes in all, and for merging
// O(k log k) time for k clusters without different-cluster constraints; with them, all clusters that a
// cluster is kept apart from may have to be passed by, unless one constraint keeps it apart from all.
// O(n + m + c) space.
//
//   RVDisconnectedClusteringAlgorithm clustering;
//   RVClusteringInputData input(graph);
//   RVClusteringOutputData output;
//   clustering.pInputData(&input);
//   clustering.pOutputData(&output);
//   if (clustering.run() == RV_NO_ERROR) use(*output.pClusters());
#pragma once

#include "rv/clustering/clustering_data.h"
#include "rv/framework/algorithm.h"

class RV_EXPORT RVDisconnectedClusteringAlgorithm : public RVInternalAlgorithm {
    RV_OBJECT(RVDisconnectedClusteringAlgorithm)
    RV_WORKS_WITH(RVClusteringInputData, RVClusteringOutputData)

public:
    RVDisconnectedClusteringAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;
    // The same as run: the entry for algorithms that use this one as a part.
    virtual RVServiceErrorCodeEnum internalRun();

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    RVAlgorithmData* newInternalData() override;

private:
    RVServiceErrorCodeEnum clusterWhole();
    RVServiceErrorCodeEnum clusterComponents(RVDList* components);
};
