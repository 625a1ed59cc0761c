#include "rv/traversal/path_exists_test.h"

#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVPathExistsTestInternalData)
RV_OBJECT_IMPL(RVPathExistsTestInputData)
RV_OBJECT_IMPL(RVPathExistsTestOutputData)
RV_OBJECT_IMPL(RVPathExistsTestAlgorithm)

std::span<const RVInputField> RVPathExistsTestInputData::inputFields() const {
    using namespace rv::field;
    using B = RVTraversalInputData;
    using D = RVPathExistsTestInputData;
    static constexpr RVInputField fields[] = {
        graphObject<B, RVNode, &B::pStartNode, &B::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVPathExistsTestOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVPathExistsTestOutputData::reset() {
    m_edges->deleteAllCells();
    m_visitedNodes->deleteAllCells();
    m_pathExists = 0;
}

RVServiceErrorCodeEnum RVPathExistsTestAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVPathExistsTestInputData::castDown(pInputData()));
}

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
