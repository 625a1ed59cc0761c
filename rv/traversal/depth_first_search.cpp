// The traversal engine with the candidate list as a stack: the out-edges of a newly reached node go in front.
// An edge stays in front while what it leads to is searched, and is taken off when it comes up again; the
// node whose last edge is taken off is complete.

#include "rv/traversal/depth_first_search.h"

#include "rv/framework/check_input.h"

RV_OBJECT_IMPL(RVNodeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVEdgeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVDepthFirstSearchInternalData)
RV_OBJECT_IMPL(RVDepthFirstSearchInputData)
RV_OBJECT_IMPL(RVDepthFirstSearchOutputData)
RV_OBJECT_IMPL(RVDepthFirstSearchAlgorithm)

// Data

RVNodeAlgorithmExtension* RVDepthFirstSearchInternalData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeExtensionDepthFirstSearch>(node);
}

int RVDepthFirstSearchInternalData::completionNumber(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionDepthFirstSearch>(node)) own->completionNumber(number);
    return number;
}

int RVDepthFirstSearchInternalData::firedNumber(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionDepthFirstSearch>(node)) own->firedNumber(number);
    return number;
}

void RVDepthFirstSearchOutputData::buildNodeOrderList(RVNodeDList& list) const { list = *m_nodes; }

int RVDepthFirstSearchOutputData::orderNumber(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionDepthFirstSearch>(node)) own->orderNumber(number);
    return number;
}

int RVDepthFirstSearchOutputData::completionNumber(RVNode* node, int number) {
    if (auto* own = record<RVNodeExtensionDepthFirstSearch>(node)) own->completionNumber(number);
    return number;
}

RVNode* RVDepthFirstSearchOutputData::pParentNode(RVNode* node, RVNode* parent) {
    if (auto* own = record<RVNodeExtensionDepthFirstSearch>(node)) own->pParentNode(parent);
    return parent;
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchOutputData::edgeType(RVEdge* edge, RVAnalysisEdgeTypeEnum type) {
    if (auto* own = record<RVEdgeExtensionDepthFirstSearch>(edge)) own->edgeType(type);
    return type;
}

void RVDepthFirstSearchOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

RVNodeAlgorithmExtension* RVDepthFirstSearchOutputData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeExtensionDepthFirstSearch>(node);
}

RVEdgeAlgorithmExtension* RVDepthFirstSearchOutputData::newEdgeAlgorithmExtension(RVEdge* edge) {
    return newRecord<RVEdgeExtensionDepthFirstSearch>(edge);
}

// Algorithm

RVServiceErrorCodeEnum RVDepthFirstSearchAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVTraversalAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_ERROR, RV_START_NODE_NOT_IN_GRAPH);
}

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
        writeType(edge, type);
        for (RVEdge* parallel : data->multiEdges(edge)) writeType(parallel, typeOfParallel(parallel, type));
    }
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOf(RVEdge* edge) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    RVNode* source = edge->pSourceNode();
    RVNode* target = edge->pTargetNode();
    if (data->pParentNode(target) == source) return RVTreeEdge;
    if (data->orderNumber(source) >= data->orderNumber(target)) {
        return data->completionNumber(source) < data->completionNumber(target) ? RVBackEdge : RVCrossEdge;
    }
    return directed() == 0 || data->directed(edge) == 0 ? RVBackEdge : RVForwardEdge;
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOfParallel(
    RVEdge* parallel, RVAnalysisEdgeTypeEnum representativeType) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    if (representativeType == RVCrossEdge) return RVCrossEdge;
    if (directed() == 0 || data->directed(parallel) == 0) return RVBackEdge;
    return data->orderNumber(parallel->pSourceNode()) < data->orderNumber(parallel->pTargetNode())
               ? RVForwardEdge
               : RVBackEdge;
}

// A reverse edge never spoils the tree edge for which it was made.
void RVDepthFirstSearchAlgorithm::writeType(RVEdge* edge, RVAnalysisEdgeTypeEnum type) {
    auto* output = RVDepthFirstSearchOutputData::castDown(pOutputData());
    RVEdge* original = pInternalData()->pOriginalEdge(edge);
    if (output->edgeType(original) != RVTreeEdge) output->edgeType(original, type);
}
