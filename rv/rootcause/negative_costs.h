// Whether a cost of an input is negative. Internal to the library, not installed.
#pragma once

#include "rv/framework/columns.h"

namespace rv {

// Of a node or an edge that is in the input's graph. O(1) where no cost is, unless the input keeps records.
template <class Input>
bool hasNegativeCost(const Input& input) {
    const auto hasNone = [](const auto& column) { return column.usable() && column.negatives() == 0; };
    const RVGraph* graph = input.pAssociatedGraph();
    if (!hasNone(input.edgeCosts())) {
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (input.cost(edge) < 0) return true;
        }
    }
    if (!hasNone(input.nodeCosts())) {
        for (RVNode* node : *graph->pNodeList()) {
            if (input.cost(node) < 0) return true;
        }
    }
    return false;
}

}  // namespace rv
