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

inline bool isInGraph(const RVNode* node, const RVGraph* graph) {
    return node != nullptr && node->pOwnerGraph() == graph;
}

// A node that the input must have, in the input's graph.
inline RVServiceErrorCodeEnum checkNode(const RVNode* node, const RVAlgorithmInputData& input,
                                        RVServiceErrorCodeEnum missing, RVServiceErrorCodeEnum foreign) {
    if (node == nullptr) return missing;
    return node->pOwnerGraph() != input.pAssociatedGraph() ? foreign : RV_NO_ERROR;
}

// The start and the finish node of an input that must have both.
template <class Input>
RVServiceErrorCodeEnum checkEnds(const Input& input) {
    const RVServiceErrorCodeEnum code =
        checkNode(input.pStartNode(), input, RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
    if (code != RV_NO_ERROR) return code;
    return checkNode(input.pFinishNode(), input, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH);
}

// The source and the sink of a network.
template <class Input>
RVServiceErrorCodeEnum checkNetworkEnds(const Input& input) {
    const RVServiceErrorCodeEnum code =
        checkNode(input.pSourceNode(), input, RV_NO_SOURCE_NODE, RV_SOURCE_NODE_NOT_IN_GRAPH);
    if (code != RV_NO_ERROR) return code;
    return checkNode(input.pSinkNode(), input, RV_NO_SINK_NODE, RV_SINK_NODE_NOT_IN_GRAPH);
}

}  // namespace rv
