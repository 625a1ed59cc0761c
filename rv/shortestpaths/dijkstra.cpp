// The traversal engine with two queues: a sorted tree of the nodes that have been reached, by their current
// cost, and the engine's candidate edges, which are the out-edges of the node settled last.

#include "rv/shortestpaths/dijkstra.h"

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/check_input.h"

RV_OBJECT_IMPL(RVNodeExtensionShortestPaths)
RV_OBJECT_IMPL(RVEdgeExtensionShortestPaths)
RV_OBJECT_IMPL(RVNodeExtensionDijkstra)
RV_OBJECT_IMPL(RVShortestPathsBinTree)
RV_OBJECT_IMPL(RVDijkstraOutputData)

// RVShortestPathsBinTree

int RVShortestPathsBinTree::keyOf(RVObject* node) const {
    return m_pData == nullptr ? 0 : m_pData->currentCost(RVNode::castDown(node));
}

RVDijkstraInternalData* RVShortestPathsBinTree::pData(RVDijkstraInternalData* data) {
    const bool hadNone = m_pData == nullptr;
    m_pData = data;
    if (hadNone) readKeys();
    return data;
}

// RVDijkstraInternalData

RVDijkstraInternalData::RVDijkstraInternalData(const RVDijkstraInternalData& other, RVDeepFlagEnum)
    : RVDijkstraInternalData() {
    RVDijkstraInternalData::copyObject(&other);
}

RVDijkstraInternalData::~RVDijkstraInternalData() = default;

// The candidates of a copy are compared by the copy's costs.
RVDijkstraInternalData& RVDijkstraInternalData::operator=(const RVDijkstraInternalData& other) {
    if (this == &other) return *this;
    RVTraversalInternalData::operator=(other);
    m_pFinishNode = other.m_pFinishNode;
    m_candidateNodes = other.m_candidateNodes;
    m_candidateNodes.pData(this);
    return *this;
}

RV_OBJECT_COPY_IMPL(RVDijkstraInternalData)

// RVDijkstraOutputData

void RVDijkstraOutputData::reset() {
    RVShortestPathsOutputData::reset();
    deleteDataReferences(pAssociatedGraph());
}

// RVDijkstraAlgorithm

RVDijkstraAlgorithm::RVDijkstraAlgorithm() { announce(); }

RVDijkstraAlgorithm::RVDijkstraAlgorithm(const RVDijkstraAlgorithm& other, RVDeepFlagEnum flag)
    : RVTraversalAlgorithm(other, flag), m_storeDistances(other.m_storeDistances) {
    announce();
}

RVDijkstraAlgorithm::~RVDijkstraAlgorithm() = default;
RVDijkstraAlgorithm& RVDijkstraAlgorithm::operator=(const RVDijkstraAlgorithm&) = default;
RV_OBJECT_COPY_IMPL(RVDijkstraAlgorithm)

void RVDijkstraAlgorithm::announce() const {
    if (debugMode() != 0) wprintf_s(L"Dijkstra algorithm running\n");
}

RVAlgorithmData* RVDijkstraAlgorithm::newInternalData() { return new RVDijkstraInternalData(); }

RVServiceErrorCodeEnum RVDijkstraAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    code = rv::checkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    for (RVEdge* edge : *input->pAssociatedGraph()->pEdgeList()) {
        if (input->cost(edge) < 0) return RV_ALGORITHM_FAILURE;
    }
    return RV_NO_ERROR;
}

void RVDijkstraAlgorithm::initialize() {
    RVTraversalAlgorithm::initialize();
    RVDijkstraInternalData* data = pDijkstraInternalData();
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) data->currentCost(node, rv::kInfinite);
    RVNode* start = data->pCopyNode(RVShortestPathsInputData::castDown(pInputData())->pStartNode());
    data->currentCost(start, 0);
    data->pCandidateNodeList()->addObject(start);
}

void RVDijkstraAlgorithm::parseInputData() {
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    RVDijkstraInternalData* data = pDijkstraInternalData();
    data->pStartNode(data->pCopyNode(input->pStartNode()));
    data->pFinishNode(data->pCopyNode(input->pFinishNode()));
    data->directed(input->undirected() == 0 ? 1 : 0);
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVEdge* original = data->pOriginalEdge(edge);
        data->cost(edge, input->cost(original));
        if (input->undirected(original) != 0) data->directed(edge, 0);
    }
}

void RVDijkstraAlgorithm::actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) {
    RVTraversalAlgorithm::actOnAddReverseEdge(newEdge, edge);
    pDijkstraInternalData()->cost(newEdge, pDijkstraInternalData()->cost(edge));
}

void RVDijkstraAlgorithm::copyEdgeProperties(RVEdge* newEdge, RVEdge* edge) {
    RVTraversalAlgorithm::copyEdgeProperties(newEdge, edge);
    pDijkstraInternalData()->cost(newEdge, pDijkstraInternalData()->cost(edge));
}

RVEdge* RVDijkstraAlgorithm::selectRepresentativeEdge(RVEdge* edge) {
    const RVDijkstraInternalData* data = pDijkstraInternalData();
    RVEdge* best = edge;
    int bestCost = rv::kInfinite;
    for (RVEdge* parallel : parallelEdges(edge, data->directed())) {
        if (data->cost(parallel) >= bestCost) continue;
        best = parallel;
        bestCost = data->cost(parallel);
    }
    return best;
}

RVEdge* RVDijkstraAlgorithm::pNextEdge() {
    RVEdge* edge = RVTraversalAlgorithm::pNextEdge();
    if (edge != nullptr) {
        RVEdgeDList* candidates = pDijkstraInternalData()->pCandidateEdgeList();
        candidates->discardCell(candidates->pFirstCell());
    }
    return edge;
}

RVNode* RVDijkstraAlgorithm::findStartNode() {
    const RVDijkstraInternalData* data = pDijkstraInternalData();
    RVShortestPathsBinTree* nodes = data->pCandidateNodeList();
    while (RVBinTreeCell* nearest = nodes->pFirstCell()) {
        auto* node = RVNode::castDown(nearest->pObject());
        nodes->discardCell(nearest);
        data->pCandidateEdgeList()->copyAppendList(node->pOutEdgeList());
        if (node->outDegree() > 0 || nodes->length() == 0) return node;
    }
    return nullptr;
}

RVEdge* RVDijkstraAlgorithm::findStartEdge() { return nullptr; }

void RVDijkstraAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
    if (edge == nullptr) return;
    RVDijkstraInternalData* data = pDijkstraInternalData();
    const int before = data->currentCost(edge->pSourceNode());
    const int cost = rv::saturatingSum(before, data->cost(edge));
    if (before == rv::kInfinite || data->currentCost(node) <= cost) return;
    RVShortestPathsBinTree* candidates = data->pCandidateNodeList();
    RVBinTreeCell* cell = candidates->searchAndRemoveObject(node);
    data->currentCost(node, cost);
    data->pParentNode(node, edge->pSourceNode());
    cell != nullptr ? candidates->insertCell(cell) : candidates->addObject(node);
}

void RVDijkstraAlgorithm::generateOutputData() {
    const RVDijkstraInternalData* data = pDijkstraInternalData();
    auto* output = RVShortestPathsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    output->pathExists(0);
    if (data->pFinishNode() == nullptr) return;
    const int cost = data->currentCost(data->pFinishNode());
    const bool exists = cost != rv::kInfinite && buildPath(*output->pEdgeList());
    output->totalCost(exists ? cost : rv::kInfinite);
    output->pathExists(exists ? 1 : 0);
    if (m_storeDistances == 0) return;
    if (auto* withDistances = dynamic_cast<RVDijkstraOutputData*>(output)) storeDistances(*withDistances);
}

// Walks back through the parents, which under negative costs and in an order that is none may form a circle:
// then there is no path.
bool RVDijkstraAlgorithm::buildPath(RVEdgeDList& path) const {
    const RVDijkstraInternalData* data = pDijkstraInternalData();
    int steps = 0;
    for (RVNode* node = data->pFinishNode(); node != data->pStartNode();) {
        RVNode* parent = data->pParentNode(node);
        RVEdge* edge = findEdgeBetween(parent, node);
        if (edge == nullptr || ++steps > pAssociatedGraph()->numberOfNodes()) {
            path.deleteAllCells();
            return false;
        }
        path.prependEdge(data->pOriginalEdge(edge));
        node = parent;
    }
    return true;
}

void RVDijkstraAlgorithm::storeDistances(RVDijkstraOutputData& output) const {
    const RVDijkstraInternalData* data = pDijkstraInternalData();
    const auto store = [&](const RVNodeDList& nodes) {
        for (RVNode* node : nodes) output.dist(data->pOriginalNode(node), data->currentCost(node));
    };
    store(*pAssociatedGraph()->pNodeList());
    store(*data->pDisconnectedNodeList());
}
