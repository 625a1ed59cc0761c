// The traversal engine with a first-in first-out candidate list: a node's out-edges join it when the node is
// first reached, so every reachable edge is traversed once, also into nodes already numbered.

#include "rv/traversal/breadth_first_search.h"

#include "rv/foundation/prefetch.h"
#include "rv/framework/check_input.h"

RV_OBJECT_IMPL(RVBreadthFirstSearchInputData)
RV_OBJECT_IMPL(RVBreadthFirstSearchOutputData)
RV_OBJECT_IMPL(RVBreadthFirstSearchAlgorithm)

void RVBreadthFirstSearchOutputData::buildNodeOrderList(RVNodeDList& list) const { list = *m_nodes; }

int RVBreadthFirstSearchOutputData::orderNumber(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionTraversal>(node)) own->orderNumber(number);
    return number;
}

void RVBreadthFirstSearchOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

RVNodeAlgorithmExtension* RVBreadthFirstSearchOutputData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeExtensionTraversal>(node);
}

RVServiceErrorCodeEnum RVBreadthFirstSearchAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVTraversalAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVBreadthFirstSearchInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_ERROR, RV_START_NODE_NOT_IN_GRAPH);
}

void RVBreadthFirstSearchAlgorithm::parseInputData() {
    parseTraversalInput(*RVBreadthFirstSearchInputData::castDown(pInputData()));
}

namespace {

// The candidates are the future of the search: asks the memory for the edge of the third one, and for the
// target of the first one, whose edge was asked for two steps ago.
void prefetchCandidates(const RVDListCell* first) {
    if (first == nullptr) return;
    rv::prefetch(static_cast<const RVEdge*>(first->pObject())->pTargetNode());
    const RVDListCell* second = first->pNextCell();
    if (second != nullptr && second->pNextCell() != nullptr) rv::prefetch(second->pNextCell()->pObject());
}

}  // namespace

RVEdge* RVBreadthFirstSearchAlgorithm::pNextEdge() {
    RVEdge* edge = RVTraversalAlgorithm::pNextEdge();
    if (edge != nullptr) {
        RVEdgeDList* candidates = pTraversalInternalData()->pCandidateEdgeList();
        candidates->discardCell(candidates->pFirstCell());
        prefetchCandidates(candidates->pFirstCell());
    }
    return edge;
}

void RVBreadthFirstSearchAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
    RVTraversalInternalData* data = pTraversalInternalData();
    const int visits = data->counter(node);
    if (visits == 0) {
        for (RVEdge* next : *node->pOutEdgeList()) {
            if (data->traversed(next) == 0) data->pCandidateEdgeList()->appendEdge(next);
        }
    }
    data->counter(node, visits + 1);
}

void RVBreadthFirstSearchAlgorithm::generateOutputData() {
    const RVTraversalInternalData* data = pTraversalInternalData();
    auto* output = RVBreadthFirstSearchOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVNode* node : *data->pVisitedNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->pNodeList()->appendNode(original);
        output->orderNumber(original, data->orderNumber(node));
    }
}
