// What the clustering algorithms share in reading and checking their input. Internal to the library, not
// installed.
#pragma once

#include <memory>
#include <type_traits>

#include "rv/clustering/clustering_data.h"
#include "rv/framework/check_input.h"

namespace rv {

// Calls f(constraint) for the constraints of an input.
template <class F>
void forEachConstraint(const RVClusteringInputData& input, F f) {
    for (RVDListIter it(input.getConstraintList()); it; it++) {
        if (auto* constraint = RVClusteringConstraint::castDown(it.pObject())) f(*constraint);
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

// Hands a cluster over to an output.
inline void addCluster(std::unique_ptr<RVDList> cluster, RVClusteringOutputData& output) {
    output.addCluster(cluster.get());
    static_cast<void>(cluster.release());
}

// What one algorithm passes on to another, but for limits, weights and constraints.
inline void copySettings(const RVClusteringInputData& from, RVClusteringInputData& to) {
    to.setQuality(from.getQuality());
    to.balanceFactor(from.balanceFactor());
    to.clusterSizeFactor(from.clusterSizeFactor());
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

// What the framework found, and if that is nothing, what is wrong with the graph itself.
inline RVServiceErrorCodeEnum checkGraphAfter(RVServiceErrorCodeEnum framework,
                                              const RVAlgorithmInputData* input) {
    return framework != RV_NO_ERROR || input == nullptr ? framework : checkInputGraph(*input);
}

// All checks of one of the algorithms. Whatever the framework found comes last, unless there is no graph
// whose values could be checked. More checks may stand between those of the constraints and those of the
// values.
template <class Input, class More>
RVServiceErrorCodeEnum checkClusteringInput(RVServiceErrorCodeEnum framework, RVAlgorithmInputData* data,
                                            More more) {
    const RVServiceErrorCodeEnum last = checkGraphAfter(framework, data);
    if (data == nullptr || data->pAssociatedGraph() == nullptr) return last;
    const auto* known =
        dynamic_cast<const Input*>(data);  // values are checked even where the output is missing
    if (known == nullptr) return RV_WRONG_INPUT_DATA;
    const Input& input = *known;
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    if constexpr (std::is_base_of_v<RVClusteringInputData, Input>) code = checkConstraints(input);
    if (code == RV_NO_ERROR) code = more(input);
    if (code == RV_NO_ERROR) code = checkClusteringValues(input);
    return code == RV_NO_ERROR ? last : code;
}
template <class Input>
RVServiceErrorCodeEnum checkClusteringInput(RVServiceErrorCodeEnum framework, RVAlgorithmInputData* data) {
    return checkClusteringInput<Input>(framework, data, [](const Input&) { return RV_NO_ERROR; });
}

}  // namespace rv
