// What subclasses run on: the traversal engine with the candidate list as a stack. The out-edges of a newly
// reached node go in front. An edge stays in front while what it leads to is searched, and is taken off when
// it comes up again; the node whose last edge is taken off is complete.

#include "rv/traversal/depth_first_search.h"
#include "rv/traversal/edge_types.h"

void RVDepthFirstSearchAlgorithm::parseInputData() {
    parseTraversalInput(*RVDepthFirstSearchInputData::castDown(pInputData()));
}

RVAlgorithmData* RVDepthFirstSearchAlgorithm::newInternalData() {
    return new RVDepthFirstSearchInternalData();
}

RVEdge* RVDepthFirstSearchAlgorithm::pNextEdge() {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    RVEdgeDList* candidates = data->pCandidateEdgeList();
    for (;;) {
        RVEdge* edge = RVTraversalAlgorithm::pNextEdge();
        if (edge == nullptr || data->traversed(edge) == 0) return edge;
        RVNode* source = edge->pSourceNode();
        if (data->firedNumber(source) == source->outDegree())
            completeNodeVisit(source, data->pParentNode(source));
        candidates->discardCell(candidates->pFirstCell());
    }
}

void RVDepthFirstSearchAlgorithm::visitNodeBeforeTraverse(RVNode* node, RVEdge*) {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    data->firedNumber(node, data->firedNumber(node) + 1);
}

void RVDepthFirstSearchAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    const int visits = data->counter(node);
    if (visits == 0) {
        bool anyEdge = false;
        for (RVEdge* next : *node->pOutEdgeList()) {
            if (data->traversed(next) != 0) continue;
            data->pCandidateEdgeList()->prependEdge(next);
            anyEdge = true;
        }
        if (!anyEdge) completeNodeVisit(node, edge == nullptr ? nullptr : edge->pSourceNode());
    }
    data->counter(node, visits + 1);
}

void RVDepthFirstSearchAlgorithm::completeNodeVisit(RVNode* node, RVNode*) {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    data->completionNumber(node, data->nextCompletionNumber());
    data->nextCompletionNumber(data->nextCompletionNumber() + 1);
}

void RVDepthFirstSearchAlgorithm::generateOutputData() {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    auto* output = RVDepthFirstSearchOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVNode* node : *data->pVisitedNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->pNodeList()->appendNode(original);
        output->orderNumber(original, data->orderNumber(node));
        output->completionNumber(original, data->completionNumber(node));
        output->pParentNode(original, data->pOriginalNode(data->pParentNode(node)));
        for (RVEdge* loop : data->reflexiveEdges(node))
            output->edgeType(data->pOriginalEdge(loop), RVBackEdge);
    }
    for (RVEdge* edge : *data->pTraversedEdgeList()) {
        const RVAnalysisEdgeTypeEnum type = typeOf(edge);
        rv::writeType(*output, data->pOriginalEdge(edge), type);
        for (RVEdge* parallel : data->multiEdges(edge)) {
            rv::writeType(*output, data->pOriginalEdge(parallel), typeOfParallel(parallel, type));
        }
    }
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOf(RVEdge* edge) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    const auto visit = [data](RVNode* node) {
        return rv::DepthFirstVisit{data->orderNumber(node), data->completionNumber(node)};
    };
    RVNode* source = edge->pSourceNode();
    RVNode* target = edge->pTargetNode();
    return rv::typeOf(data->pParentNode(target) == source, visit(source), visit(target),
                      directed() == 0 || data->directed(edge) == 0);
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOfParallel(
    RVEdge* parallel, RVAnalysisEdgeTypeEnum representativeType) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    return rv::typeOfParallel(
        representativeType,
        data->orderNumber(parallel->pSourceNode()) < data->orderNumber(parallel->pTargetNode()),
        directed() == 0 || data->directed(parallel) == 0);
}
