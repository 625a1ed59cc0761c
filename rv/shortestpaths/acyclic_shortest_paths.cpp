#include "rv/shortestpaths/acyclic_shortest_paths.h"

#include <utility>

#include "rv/foundation/text_output.h"
#include "rv/framework/check_input.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/relaxing.h"
#include "rv/shortestpaths/path_answer.h"

RV_OBJECT_IMPL(RVShortestPathsAcyclicInputData)
RV_OBJECT_IMPL(RVShortestPathsAcyclicInternalData)

// RVShortestPathsAcyclicAlgorithm

RVShortestPathsAcyclicAlgorithm::RVShortestPathsAcyclicAlgorithm() { announce(); }

RVShortestPathsAcyclicAlgorithm::RVShortestPathsAcyclicAlgorithm(const RVShortestPathsAcyclicAlgorithm& other,
                                                                 RVDeepFlagEnum flag)
    : RVDijkstraAlgorithm(other, flag) {
    announce();
}

RVShortestPathsAcyclicAlgorithm::~RVShortestPathsAcyclicAlgorithm() = default;
RVShortestPathsAcyclicAlgorithm& RVShortestPathsAcyclicAlgorithm::operator=(
    const RVShortestPathsAcyclicAlgorithm&) = default;
RV_OBJECT_COPY_IMPL(RVShortestPathsAcyclicAlgorithm)

void RVShortestPathsAcyclicAlgorithm::announce() const {
    if (debugMode() != 0) wprintf_s(L"Acyclic shortest paths algorithm running\n");
}

RVAlgorithmData* RVShortestPathsAcyclicAlgorithm::newInternalData() {
    return new RVShortestPathsAcyclicInternalData();
}

RVServiceErrorCodeEnum RVShortestPathsAcyclicAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVShortestPathsAcyclicInputData::castDown(pInputData());
    code = rv::checkEnds(*input);
    for (RVNode* node : *input->pCandidateNodeList()) {
        if (code != RV_NO_ERROR) return code;
        code = rv::checkNode(node, *input, RV_ALGORITHM_FAILURE, RV_ALGORITHM_FAILURE);
    }
    return code;
}

std::optional<RVServiceErrorCodeEnum> RVShortestPathsAcyclicAlgorithm::answer() {
    if (!isExactly<RVShortestPathsAcyclicAlgorithm>()) return std::nullopt;
    const auto* input = RVShortestPathsAcyclicInputData::castDown(pInputData());
    auto* output = RVShortestPathsOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "cheapest paths", input->pAssociatedGraph()->numberOfEdges());
    const rv::PathView view(*input);
    rv::NearestLabels<int> labels(rv::nodeLimitOf(input->pAssociatedGraph()));
    labels.improve(rv::indexOf(input->pStartNode()), 0, rv::kNoIndex);
    rv::Buffer<rv::Index> order;
    for (const RVNode* node : *input->pCandidateNodeList()) order.push_back(rv::indexOf(node));
    view.withTraversalWays(false, false, pulse,
                           [&](const auto& ways) { rv::relaxInOrder(ways, order, labels, pulse); });
    rv::writePath(view, labels, *input, *output);
    auto* withDistances = storeDistances() == 0 ? nullptr : dynamic_cast<RVDijkstraOutputData*>(output);
    if (withDistances != nullptr) rv::writeDistances(view, std::move(labels.distances), *withDistances);
    return RV_NO_ERROR;
}
