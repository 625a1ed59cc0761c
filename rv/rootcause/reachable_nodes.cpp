// Dijkstra's method with a sorted tree: settles the nearest candidate, then offers its neighbours the way
// through it. A candidate whose distance falls keeps its cell.

#include "rv/rootcause/reachable_nodes.h"

#include <type_traits>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVReachableNodesInputData)
RV_OBJECT_IMPL(RVReachableNodesOutputData)
RV_OBJECT_IMPL(RVReachableNodesBinTree)
RVReachableNodesAlgorithm::~RVReachableNodesAlgorithm() = default;
RV_OBJECT_NO_COPY_IMPL(RVReachableNodesAlgorithm)

std::span<const RVInputField> RVReachableNodesInputData::inputFields() const {
    using namespace rv::field;
    using B = RVPathCostInputData;
    using D = RVReachableNodesInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        graphInt<D, &D::range, &D::range>("range"),
        nodeInt<B, &B::cost, &B::cost>("cost"),
        edgeInt<B, &B::cost, &B::cost>("cost"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVReachableNodesOutputData::buildReachableNodeList(RVNodeDList& list) const { list = *m_nodes; }

void RVReachableNodesOutputData::reset() { m_nodes->deleteAllCells(); }

// The candidates

namespace {

using rv::placeOf;

}  // namespace

int RVReachableNodesBinTree::keyOf(RVObject* node) const {
    const std::size_t place = placeOf(static_cast<RVNode*>(node));
    const bool isKnown = m_pAlgorithm != nullptr && place < m_pAlgorithm->m_distances.size();
    return isKnown ? m_pAlgorithm->m_distances[place] : rv::kInfinite;
}

// The search

RVServiceErrorCodeEnum RVReachableNodesAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = RVBaseGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVReachableNodesInputData::castDown(pInputData());
    code = rv::checkNode(input->pStartNode(), *input, RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
    if (code != RV_NO_ERROR) return code;
    if (input->range() < -1) return RV_INVALID_RANGE;
    const RVGraph* graph = input->pAssociatedGraph();
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (input->cost(edge) < 0) return RV_NEGATIVE_COST;
    }
    for (RVNode* node : *graph->pNodeList()) {
        if (input->cost(node) < 0) return RV_NEGATIVE_COST;
    }
    return RV_NO_ERROR;
}

void RVReachableNodesAlgorithm::initialize() {
    RVBaseGraphAlgorithm::initialize();
    forget();  // an override of cleanup may have thrown
    m_hasCosts = false;
    cover();
}

// Nodes and edges that have come since the input was read have the defaults.
void RVReachableNodesAlgorithm::cover() {
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    const auto nodes = static_cast<std::size_t>(graph->nodeIndexLimit());
    const auto edges = static_cast<std::size_t>(graph->edgeIndexLimit());
    m_distances.resize(nodes, rv::kInfinite);
    m_cells.resize(nodes);
    m_undirectedEdges.resize(edges);
    if (!m_hasCosts) return;
    m_nodeCosts.resize(nodes);
    m_edgeCosts.resize(edges, 1);
}

void RVReachableNodesAlgorithm::parseInputData() {
    const auto* input = RVReachableNodesInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    m_pStartNode = input->pStartNode();
    m_reversed = input->reversed();
    m_directed = input->undirected() == 0 ? 1 : 0;
    m_followsBothWays = m_directed == 0;
    m_hasCosts = input->range() != -1;
    m_range = m_hasCosts ? input->range() : rv::kInfinite;
    cover();
    if (m_hasCosts) {
        for (RVNode* node : *graph->pNodeList()) m_nodeCosts[placeOf(node)] = input->cost(node);
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (input->undirected(edge) != 0) m_followsBothWays = m_undirectedEdges[placeOf(edge)] = true;
        if (m_hasCosts) m_edgeCosts[placeOf(edge)] = input->cost(edge);
    }
}

RVServiceErrorCodeEnum RVReachableNodesAlgorithm::algorithmBody() {
    cover();
    RVNodeDList* reached = RVReachableNodesOutputData::castDown(pOutputData())->pNodeList();
    m_distances[placeOf(m_pStartNode)] = 0;
    m_cells[placeOf(m_pStartNode)] = m_candidates.addObject(m_pStartNode);
    while (RVBinTreeCell* nearest = m_candidates.pFirstCell()) {
        auto* node = static_cast<RVNode*>(nearest->pObject());
        m_candidates.discardCell(nearest);
        m_cells[placeOf(node)] = nullptr;
        reached->appendNode(node);
        traverseIncidentEdges(node);
    }
    return RV_NO_ERROR;
}

void RVReachableNodesAlgorithm::traverseIncidentEdges(RVNode* node) {
    int base = m_distances[placeOf(node)];
    if (m_hasCosts && node != m_pStartNode) base = rv::saturatingSum(base, m_nodeCosts[placeOf(node)]);
    const auto offer = [&](const RVEdge* edge, RVNode* other) {
        updateDistance(other, rv::saturatingSum(base, m_hasCosts ? m_edgeCosts[placeOf(edge)] : 1));
    };
    const bool forward = m_reversed == 0;
    if (forward || m_followsBothWays) {
        for (const RVEdge* edge : *node->pOutEdgeList()) {
            if (forward || isUndirected(edge)) offer(edge, edge->pTargetNode());
        }
    }
    if (!forward || m_followsBothWays) {
        for (const RVEdge* edge : *node->pInEdgeList()) {
            if (!forward || isUndirected(edge)) offer(edge, edge->pSourceNode());
        }
    }
}

bool RVReachableNodesAlgorithm::isUndirected(const RVEdge* edge) const {
    return m_directed == 0 || m_undirectedEdges[placeOf(edge)];
}

void RVReachableNodesAlgorithm::updateDistance(RVNode* node, int distance) {
    const std::size_t place = placeOf(node);
    if (distance > m_range || distance >= m_distances[place]) return;
    RVBinTreeCell*& cell = m_cells[place];
    if (cell != nullptr) m_candidates.removeCell(cell);
    m_distances[place] = distance;
    cell = cell != nullptr ? m_candidates.insertCell(cell) : m_candidates.addObject(node);
}

void RVReachableNodesAlgorithm::cleanup() {
    RVBaseGraphAlgorithm::cleanup();
    forget();
}

void RVReachableNodesAlgorithm::forget() {
    m_candidates.deleteAllCells();
    const auto release = [](auto&... values) {
        (std::remove_reference_t<decltype(values)>().swap(values), ...);
    };
    release(m_nodeCosts, m_edgeCosts, m_distances, m_undirectedEdges, m_cells);
    m_pStartNode = nullptr;
}
