#include "rv/traversal/traversal.h"

#include <algorithm>

#include "rv/foundation/graph_iterators.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/run_pulse.h"

RV_OBJECT_IMPL(RVNodeExtensionTraversal)
RV_OBJECT_IMPL(RVEdgeExtensionTraversal)
RV_OBJECT_IMPL(RVEdgeExtensionTraversalInput)
RV_OBJECT_IMPL(RVTraversalInputData)
RV_OBJECT_IMPL(RVTraversalInternalData)
RV_OBJECT_IMPL(RVTraversalAlgorithm)

// RVTraversalInputData

std::span<const RVInputField> RVTraversalInputData::inputFields() const {
    using namespace rv::field;
    using D = RVTraversalInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphFlag<D, &D::undirected, &D::undirected>("undirected"),
        edgeFlag<D, &D::undirected, &D::undirected>("edgeUndirected"),
    };
    return fields;
}

// RVTraversalInternalData

void RVTraversalInternalData::clearLists() {
    m_candidateEdges->deleteAllCells();
    m_untraversedEdges.clear();
    m_traversedEdges->deleteAllCells();
    m_visitedNodes->deleteAllCells();
    m_unvisitedNodes.clear();
    m_startNodes.get() = {};
    m_traversalOrderNumber = 1;
}

void RVTraversalInternalData::listUnvisited(const RVGraph* graph) {
    m_untraversedEdges.fill(*graph->pEdgeList(), graph->edgeIndexLimit());
    m_unvisitedNodes.fill(*graph->pNodeList(), graph->nodeIndexLimit());
    m_startNodes.get() = {};
}

RVNode* RVTraversalInternalData::pFirstUnvisitedNode(int enough) {
    auto& unvisited = m_unvisitedNodes;
    RVNode* first = unvisited.first();
    if (first == nullptr || first->inDegree() <= enough) return first;
    StartNodes& start = m_startNodes.get();
    const bool sorted =
        start.enough == enough && start.modifications == pAssociatedGraph()->modificationCount();
    if (!sorted || !unvisited.isUntouched()) sortUnvisited(enough);
    while (start.next < start.nodes.size() && !unvisited.isPending(start.nodes[start.next])) ++start.next;
    return start.next < start.nodes.size() ? start.nodes[start.next] : first;
}

// A stable counting sort by in-degree; what is sorted is only walked from then on.
void RVTraversalInternalData::sortUnvisited(int enough) {
    StartNodes& start = m_startNodes.get();
    auto& unvisited = m_unvisitedNodes;
    unvisited.acceptChanges();
    const auto key = [enough](const RVNode* node) {
        return static_cast<std::size_t>(std::max(node->inDegree() - enough, 0));
    };
    std::vector<std::size_t> places(2);
    unvisited.forEach([&](const RVNode* node) {
        if (key(node) + 2 > places.size()) places.resize(key(node) + 2);
        ++places[key(node) + 1];
    });
    for (std::size_t i = 1; i < places.size(); ++i) places[i] += places[i - 1];
    start.nodes.resize(static_cast<std::size_t>(unvisited.length()));
    unvisited.forEach([&](RVNode* node) { start.nodes[places[key(node)]++] = node; });
    start.next = 0;
    start.modifications = pAssociatedGraph()->modificationCount();
    start.enough = enough;
}

// RVTraversalAlgorithm

struct RVTraversalAlgorithm::Run {
    std::vector<RVEdge*> reverseEdges;  // detached, of a run on the caller's graph, which they do not outlive
    bool hasReverseEdges = false;       // in the graph
};

void RVTraversalAlgorithm::parseTraversalInput(const RVTraversalInputData& input) {
    RVTraversalInternalData* data = pTraversalInternalData();
    data->pStartNode(data->pCopyNode(input.pStartNode()));
    data->directed(input.undirected() == 0 ? 1 : 0);
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        const int directed = input.undirected(data->pOriginalEdge(edge)) == 0 ? 1 : 0;
        if (data->directed(edge) != directed) data->directed(edge, directed);
    }
}

int RVTraversalAlgorithm::directed() const {
    return pInternalData() == nullptr ? 1 : pTraversalInternalData()->directed();
}

RVAlgorithmData* RVTraversalAlgorithm::newInternalData() { return new RVTraversalInternalData(); }

void RVTraversalAlgorithm::initialize() {
    m_run.make();  // so that restoring allocates nothing
    RVInternalGraphAlgorithm::initialize();
    pTraversalInternalData()->clearLists();
}

void RVTraversalAlgorithm::parseInputData() {}

void RVTraversalAlgorithm::generateOutputData() {}

void RVTraversalAlgorithm::privatePreprocessGraph() {
    RVInternalGraphAlgorithm::privatePreprocessGraph();
    if (directed() == 0) {
        addReverseEdges();
        pTraversalInternalData()->wasMadeDirected(1);
    }
    // NOLINTNEXTLINE(clang-analyzer-core.CallAndMessage): there is internal data throughout a run
    pTraversalInternalData()->listUnvisited(pAssociatedGraph());
}

// From the last edge to the first, so that the new edges, appended behind, are not walked.
void RVTraversalAlgorithm::addReverseEdges() {
    RVGraph* graph = pAssociatedGraph();
    noteOrders();
    prepareRemovals(graph->numberOfEdges());
    m_run->reverseEdges.reserve(static_cast<std::size_t>(graph->numberOfEdges()));
    m_run->hasReverseEdges = true;
    for (RVEdgeIter it(graph, RVBackward); it; it++) {
        RVEdge* edge = it.pEdge();
        RVEdge* reverse = graph->addEdge(edge->pTargetNode(), edge->pSourceNode(), 0);
        try {
            pTraversalInternalData()->dummyReversedEdge(reverse, 1);
        } catch (...) {
            graph->discardEdge(reverse);  // not known as a reverse edge
            throw;
        }
        copyEdgeProperties(reverse, edge);
    }
}

void RVTraversalAlgorithm::copyEdgeProperties(RVEdge* newEdge, RVEdge* edge) {
    RVTraversalInternalData* data = pTraversalInternalData();
    data->pOriginalEdge(newEdge, data->pOriginalEdge(edge));
    data->directed(newEdge, 0);
}

void RVTraversalAlgorithm::privatePostprocessGraph() {
    try {
        RVInternalGraphAlgorithm::privatePostprocessGraph();
    } catch (...) {
        removeReverseEdges();
        throw;
    }
    removeReverseEdges();
}

void RVTraversalAlgorithm::removeReverseEdges() {
    if (m_run.get() == nullptr || !m_run->hasReverseEdges) return;
    RVTraversalInternalData* data = pTraversalInternalData();
    data->wasMadeDirected(0);
    RVGraph* graph = pAssociatedGraph();
    for (RVEdgeIter it(graph); it;) {
        RVEdge* edge = it.pEdge();
        it++;
        const auto* record = static_cast<const RVEdgeExtensionTraversal*>(data->pExistingExtension(edge));
        if (record == nullptr || record->dummyReversedEdge() == 0) continue;
        graph->removeEdge(edge);
        m_run->reverseEdges.push_back(edge);
    }
    m_run->hasReverseEdges = false;
}

// Reverse edges that were added to the caller's graph would otherwise stay with it, detached, for ever.
void RVTraversalAlgorithm::clearInputGraph() {
    if (m_run.get() == nullptr) return;
    if (pInternalData() != nullptr && pAssociatedGraph() == pInternalData()->pInputGraph()) {
        removeReverseEdges();  // unless an override kept privatePostprocessGraph from being called
        for (RVEdge* edge : m_run->reverseEdges) edge->pHomeGraph()->discardEdge(edge);
    }
    m_run->reverseEdges.clear();
}

RVServiceErrorCodeEnum RVTraversalAlgorithm::algorithmBody() {
    rv::RunPulse pulse(pRunControl(), "search", pAssociatedGraph()->numberOfEdges());
    while (RVEdge* edge = pNextEdge()) {
        pulse.beat();
        visitNodeBeforeTraverse(edge->pSourceNode(), edge);
        privateTraverseEdge(edge);
        visitNodeAfterTraverse(edge->pTargetNode(), edge);
    }
    RVTraversalInternalData* data = pTraversalInternalData();
    if (data->pStartNode() == nullptr) {
        for (RVNode* node : *data->pDisconnectedNodeList()) {
            visitNodeBeforeTraverse(node, nullptr);
            visitNodeAfterTraverse(node, nullptr);
        }
    }
    return data->returnCode();
}

RVEdge* RVTraversalAlgorithm::pNextEdge() {
    const RVEdgeDList* candidates = pTraversalInternalData()->pCandidateEdgeList();
    if (candidates->length() == 0) {
        if (RVNode* node = findStartNode()) visitNodeAfterTraverse(node, nullptr);
    }
    if (candidates->length() == 0) {
        if (RVEdge* edge = findStartEdge()) visitNodeAfterTraverse(edge->pSourceNode(), nullptr);
    }
    return candidates->pFirstEdge();
}

RVNode* RVTraversalAlgorithm::findStartNode() {
    RVTraversalInternalData* data = pTraversalInternalData();
    if (RVNode* start = data->pStartNode()) return data->orderNumber(start) == 0 ? start : nullptr;
    // With reverse edges in the graph every node has an in-edge.
    return data->pFirstUnvisitedNode(data->wasMadeDirected() != 0 ? 1 : 0);
}

RVEdge* RVTraversalAlgorithm::findStartEdge() {
    RVTraversalInternalData* data = pTraversalInternalData();
    return data->pStartNode() != nullptr ? nullptr : data->pFirstUntraversedEdge();
}

void RVTraversalAlgorithm::privateTraverseEdge(RVEdge* edge) {
    RVTraversalInternalData* data = pTraversalInternalData();
    data->traversed(edge, 1);
    data->removeUntraversed(edge);
    data->pTraversedEdgeList()->appendEdge(edge);
}

void RVTraversalAlgorithm::visitNodeBeforeTraverse(RVNode*, RVEdge*) {}

void RVTraversalAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalInternalData* data = pTraversalInternalData();
    if (data->orderNumber(node) != 0) return;
    data->orderNumber(node, data->traversalOrderNumber());
    data->traversalOrderNumber(data->traversalOrderNumber() + 1);
    data->removeUnvisited(node);
    data->pVisitedNodeList()->appendNode(node);
    data->pParentNode(node, edge == nullptr ? nullptr : edge->pSourceNode());
}
