// Checks of input data that several algorithms share. Internal to the library, not installed.
#pragma once

#include "rv/framework/algorithm_data.h"
#include "rv/framework/result_codes.h"

namespace rv {

// The input has a graph, and the graph a factory.
inline RVServiceErrorCodeEnum checkInputGraph(const RVAlgorithmInputData& input) {
    const RVGraph* graph = input.pAssociatedGraph();
    if (graph == nullptr) return RV_NO_INPUT_GRAPH;
    return graph->pFactory() == nullptr ? RV_NO_GRAPH_FACTORY : RV_NO_ERROR;
}

// A node that the input must have, in the input's graph.
inline RVServiceErrorCodeEnum checkNode(const RVNode* node, const RVAlgorithmInputData& input,
                                        RVServiceErrorCodeEnum missing, RVServiceErrorCodeEnum foreign) {
    if (node == nullptr) return missing;
    return node->pOwnerGraph() != input.pAssociatedGraph() ? foreign : RV_NO_ERROR;
}

}  // namespace rv
