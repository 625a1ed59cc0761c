// What subclasses run on: the traversal engine with a first-in first-out candidate list. A node's out-edges
// join it when the node is first reached, so every reachable edge is traversed once, also into nodes already
// numbered.

#include "rv/foundation/prefetch.h"
#include "rv/traversal/breadth_first_search.h"

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
