// The kind of an edge, from the numbers of its ends. Internal to the library, not installed.
#pragma once

#include "rv/traversal/depth_first_search.h"

namespace rv {

struct DepthFirstVisit {
    int order;
    int completion;
};

inline RVAnalysisEdgeTypeEnum typeOf(bool isParent, DepthFirstVisit source, DepthFirstVisit target,
                                     bool isUndirected) {
    if (isParent) return RVTreeEdge;
    if (source.order >= target.order) return source.completion < target.completion ? RVBackEdge : RVCrossEdge;
    return isUndirected ? RVBackEdge : RVForwardEdge;
}

inline RVAnalysisEdgeTypeEnum typeOfParallel(RVAnalysisEdgeTypeEnum representativeType, bool pointsForward,
                                             bool isUndirected) {
    if (representativeType == RVCrossEdge) return RVCrossEdge;
    return !isUndirected && pointsForward ? RVForwardEdge : RVBackEdge;
}

// A reverse edge never spoils the tree edge for which it was made.
inline void writeType(RVDepthFirstSearchOutputData& output, RVEdge* original, RVAnalysisEdgeTypeEnum type) {
    if (output.edgeType(original) != RVTreeEdge) output.edgeType(original, type);
}

}  // namespace rv
