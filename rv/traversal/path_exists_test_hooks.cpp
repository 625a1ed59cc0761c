// What subclasses run on: a breadth-first search that stops at the finish node.

#include "rv/traversal/path_exists_test.h"

RVAlgorithmData* RVPathExistsTestAlgorithm::newInternalData() { return new RVPathExistsTestInternalData(); }

void RVPathExistsTestAlgorithm::parseInputData() {
    const auto* input = RVPathExistsTestInputData::castDown(pInputData());
    parseTraversalInput(*input);
    pData()->pFinishNode(pData()->pCopyNode(input->pFinishNode()));
}

RVNode* RVPathExistsTestAlgorithm::findStartNode() { return pData()->pStartNode(); }

RVEdge* RVPathExistsTestAlgorithm::findStartEdge() { return nullptr; }

RVEdge* RVPathExistsTestAlgorithm::pNextEdge() {
    return pData()->reached() != 0 ? nullptr : RVBreadthFirstSearchAlgorithm::pNextEdge();
}

void RVPathExistsTestAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVBreadthFirstSearchAlgorithm::visitNodeAfterTraverse(node, edge);
    if (node == pData()->pFinishNode()) pData()->reached(1);
}

void RVPathExistsTestAlgorithm::generateOutputData() {
    const RVPathExistsTestInternalData* data = pData();
    auto* output = RVPathExistsTestOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    output->pathExists(data->reached());
    if (data->reached() == 0) {
        for (RVNode* node : *data->pVisitedNodeList())
            output->pVisitedNodeList()->appendNode(data->pOriginalNode(node));
        return;
    }
    for (RVNode* node = data->pFinishNode(); node != data->pStartNode();) {
        RVNode* parent = data->pParentNode(node);
        output->pEdgeList()->prependEdge(data->pOriginalEdge(findEdgeBetween(parent, node)));
        node = parent;
    }
}
