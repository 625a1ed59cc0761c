#include "rv/shortestpaths/acyclic_shortest_paths.h"

#include "rv/foundation/text_output.h"
#include "rv/framework/check_input.h"

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

void RVShortestPathsAcyclicAlgorithm::parseInputData() {
    RVDijkstraAlgorithm::parseInputData();
    const auto* input = RVShortestPathsAcyclicInputData::castDown(pInputData());
    for (RVNode* node : *input->pCandidateNodeList()) {
        pData()->pTopologicalSortedNodeList()->appendNode(pData()->pCopyNode(node));
    }
}

RVNode* RVShortestPathsAcyclicAlgorithm::findStartNode() {
    RVNodeDList* sorted = pData()->pTopologicalSortedNodeList();
    RVNode* node = nullptr;
    while (RVDListCell* first = sorted->pFirstCell()) {
        node = RVNode::castDown(first->pObject());
        sorted->discardCell(first);
        pData()->pCandidateEdgeList()->copyAppendList(node->pOutEdgeList());
        if (node->outDegree() > 0) break;
    }
    return node;
}
