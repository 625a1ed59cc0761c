// The traversal engine with a first-in first-out candidate list: a node's out-edges join it when the node is
// first reached, so every reachable edge is traversed once, also into nodes already numbered.
//
// Where no subclass looks on, the same search is made in arrays (BreadthFirstWalk). There the candidates are
// the out-edges of the nodes that were reached but not expanded.

#include "rv/traversal/breadth_first_search.h"

#include <cstddef>
#include <vector>

#include "rv/foundation/prefetch.h"
#include "rv/framework/check_input.h"
#include "rv/traversal/search_graph.h"

RV_OBJECT_IMPL(RVBreadthFirstSearchInputData)
RV_OBJECT_IMPL(RVBreadthFirstSearchOutputData)
RV_OBJECT_IMPL(RVBreadthFirstSearchAlgorithm)

void RVBreadthFirstSearchOutputData::buildNodeOrderList(RVNodeDList& list) const { list = *m_nodes; }

void RVBreadthFirstSearchOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVBreadthFirstSearchAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVTraversalAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVBreadthFirstSearchInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_ERROR, RV_START_NODE_NOT_IN_GRAPH);
}

void RVBreadthFirstSearchAlgorithm::parseInputData() {
    if (!worksInArrays()) parseTraversalInput(*RVBreadthFirstSearchInputData::castDown(pInputData()));
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

namespace {

class BreadthFirstWalk {
public:
    using Index = rv::SearchGraph::Index;

    explicit BreadthFirstWalk(const rv::SearchGraph& graph) : m_graph(graph), m_isReached(graph.size()) {
        m_reached.reserve(graph.size());
    }

    void searchAll() {
        m_graph.forEachStart([this](Index node) -> bool { return m_isReached[node]; },
                             [this](Index node) { searchFrom(node); });
    }
    void searchFrom(Index start) {
        reach(start);
        for (; m_expanded < m_reached.size(); ++m_expanded) {
            for (const rv::SearchGraph::OutEdge& edge : m_graph.outEdges(m_reached[m_expanded]))
                reach(edge.target);
        }
    }
    // In the order in which they were reached.
    const std::vector<Index>& nodes() const { return m_reached; }

private:
    void reach(Index node) {
        if (m_isReached[node]) return;
        m_isReached[node] = true;
        m_reached.push_back(node);
    }

    const rv::SearchGraph& m_graph;
    std::vector<bool> m_isReached;
    std::vector<Index> m_reached;
    std::size_t m_expanded = 0;
};

}  // namespace

bool RVBreadthFirstSearchAlgorithm::worksInArrays() const {
    return isExactly<RVBreadthFirstSearchAlgorithm>();
}

RVServiceErrorCodeEnum RVBreadthFirstSearchAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVTraversalAlgorithm::algorithmBody();
    const auto* input = RVBreadthFirstSearchInputData::castDown(pInputData());
    auto* output = RVBreadthFirstSearchOutputData::castDown(pOutputData());
    output->pAssociatedGraph(input->pAssociatedGraph());
    const auto graph = rv::SearchGraph::of(*input);
    BreadthFirstWalk walk(graph);
    const RVNode* start = input->pStartNode();
    start != nullptr ? walk.searchFrom(graph.indexOf(start)) : walk.searchAll();
    int number = 0;
    for (const rv::SearchGraph::Index index : walk.nodes()) {
        output->pNodeList()->appendNode(graph.pNode(index));
        output->orderNumber(graph.pNode(index), ++number);
    }
    return RV_NO_ERROR;
}

void RVBreadthFirstSearchAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // algorithmBody has written it
    const RVTraversalInternalData* data = pTraversalInternalData();
    auto* output = RVBreadthFirstSearchOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVNode* node : *data->pVisitedNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->pNodeList()->appendNode(original);
        output->orderNumber(original, data->orderNumber(node));
    }
}
