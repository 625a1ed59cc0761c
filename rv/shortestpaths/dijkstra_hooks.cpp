// The hooks of the Dijkstra traversal and of acyclic shortest paths. Subclasses run on them.
//
// The traversal engine with two queues: a sorted tree of the nodes that have been reached, by their current
// cost, and the engine's candidate edges, which are the out-edges of the node settled last.

#include "rv/foundation/arithmetic.h"
#include "rv/shortestpaths/acyclic_shortest_paths.h"
#include "rv/shortestpaths/dijkstra.h"

// RVDijkstraAlgorithm

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

// RVShortestPathsAcyclicAlgorithm

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
