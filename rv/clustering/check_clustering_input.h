// Checks of input data that the clustering algorithms share. Internal to the library, not installed.
#pragma once

#include "rv/clustering/clustering_data.h"
#include "rv/framework/check_input.h"

namespace rv {

// Calls f(constraint) for the constraints of an input.
template <class F>
void forEachConstraint(const RVClusteringInputData& input, F f) {
    for (RVDListIter iter(input.getConstraintList()); iter; iter++) {
        if (auto* constraint = RVClusteringConstraint::castDown(iter.pObject())) f(*constraint);
    }
}

// The same for those of one type that list nodes: f(constraint, list).
template <class F>
void forEachConstraint(const RVClusteringInputData& input, RVClusteringConstraintTypeEnum type, F f) {
    forEachConstraint(input, [&](RVClusteringConstraint& constraint) {
        const RVNodeDList* nodes = constraint.pNodeList();
        if (constraint.type() == type && nodes != nullptr && nodes->length() > 0) f(constraint, *nodes);
    });
}

inline RVServiceErrorCodeEnum checkConstraints(const RVClusteringInputData& input) {
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    forEachConstraint(input, [&](const RVClusteringConstraint& constraint) {
        if (code == RV_NO_ERROR && constraint.valid(input.pAssociatedGraph()) == 0) {
            code = RV_INVALID_CONSTRAINT;
        }
    });
    return code;
}

// Quality, weights, costs.
inline RVServiceErrorCodeEnum checkClusteringValues(const RVBasicClusteringInputData& input) {
    if (input.getQuality() < 0 || input.getQuality() > 2) return RV_INVALID_QUALITY;
    for (RVNode* node : *input.pAssociatedGraph()->pNodeList()) {
        if (input.getWeight(node) < 0) return RV_NEGATIVE_WEIGHT;
    }
    for (RVEdge* edge : *input.pAssociatedGraph()->pEdgeList()) {
        if (input.getCost(edge) < 0) return RV_NEGATIVE_COST;
    }
    return RV_NO_ERROR;
}

// Whether there is a graph whose values can be checked.
inline bool hasGraph(const RVAlgorithmInputData* input) {
    return input != nullptr && input->pAssociatedGraph() != nullptr;
}

// What the framework found, and if that is nothing, what is wrong with the graph itself.
inline RVServiceErrorCodeEnum checkGraphAfter(RVServiceErrorCodeEnum framework,
                                              const RVAlgorithmInputData* input) {
    return framework != RV_NO_ERROR || input == nullptr ? framework : checkInputGraph(*input);
}

}  // namespace rv
