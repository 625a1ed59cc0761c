#include "rv/traversal/breadth_first_search.h"

#include <cstddef>
#include <vector>

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

std::optional<RVServiceErrorCodeEnum> RVBreadthFirstSearchAlgorithm::answer() {
    if (!isExactly<RVBreadthFirstSearchAlgorithm>()) return std::nullopt;
    const auto* input = RVBreadthFirstSearchInputData::castDown(pInputData());
    auto* output = RVBreadthFirstSearchOutputData::castDown(pOutputData());
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
