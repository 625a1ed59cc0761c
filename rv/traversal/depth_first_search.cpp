#include "rv/traversal/depth_first_search.h"

#include <vector>

#include "rv/framework/check_input.h"
#include "rv/traversal/depth_first_walk.h"
#include "rv/traversal/edge_types.h"

RV_OBJECT_IMPL(RVNodeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVEdgeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVDepthFirstSearchInternalData)
RV_OBJECT_IMPL(RVDepthFirstSearchInputData)
RV_OBJECT_IMPL(RVDepthFirstSearchOutputData)
RV_OBJECT_IMPL(RVDepthFirstSearchAlgorithm)

// Data

void RVDepthFirstSearchOutputData::buildNodeOrderList(RVNodeDList& list) const { list = *m_nodes; }

void RVDepthFirstSearchOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

// Algorithm

RVServiceErrorCodeEnum RVDepthFirstSearchAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVTraversalAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_ERROR, RV_START_NODE_NOT_IN_GRAPH);
}

namespace {

class KindSearch : public rv::DepthFirstWalk<KindSearch> {
public:
    explicit KindSearch(const rv::SearchGraph& graph) : DepthFirstWalk(graph), m_completions(graph.size()) {}

    void reach(Index node) { m_order.push_back(node); }
    void traverse(Index node, const rv::SearchGraph::OutEdge& edge) {
        m_traversed.push_back({node, edge.target, edge.edge});
    }
    void meet(Index, Index) {}
    void complete(Index node) { m_completions[node] = ++m_completed; }

    void describe(const RVDepthFirstSearchInputData& input, RVDepthFirstSearchOutputData& output) const;

private:
    struct Edge {
        Index source;
        Index target;
        Index edge;
    };

    rv::DepthFirstVisit visit(Index node) const {
        return {static_cast<int>(number(node)), m_completions[node]};
    }

    std::vector<Index> m_order;
    std::vector<Edge> m_traversed;
    std::vector<int> m_completions;
    int m_completed = 0;
};

void KindSearch::describe(const RVDepthFirstSearchInputData& input,
                          RVDepthFirstSearchOutputData& output) const {
    for (const Index index : m_order) {
        RVNode* node = graph().pNode(index);
        output.pNodeList()->appendNode(node);
        output.orderNumber(node, visit(index).order);
        output.completionNumber(node, visit(index).completion);
        output.pParentNode(node, parent(index) == kNone ? nullptr : graph().pNode(parent(index)));
        graph().forEachLoop(index, [&](RVEdge* loop) { output.edgeType(loop, RVBackEdge); });
    }
    const auto isUndirected = [&](RVEdge* edge) {
        return input.undirected() != 0 || input.undirected(edge) != 0;
    };
    for (const Edge& traversed : m_traversed) {
        RVEdge* edge = graph().pEdge(traversed.edge);
        const RVAnalysisEdgeTypeEnum type =
            rv::typeOf(parent(traversed.target) == traversed.source, visit(traversed.source),
                       visit(traversed.target), isUndirected(edge));
        rv::writeType(output, edge, type);
        const bool pointsForward = number(traversed.source) < number(traversed.target);
        graph().forEachParallel(traversed.edge, [&](RVEdge* parallel) {
            rv::writeType(output, parallel, rv::typeOfParallel(type, pointsForward, isUndirected(parallel)));
        });
    }
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVDepthFirstSearchAlgorithm::answer() {
    if (!isExactly<RVDepthFirstSearchAlgorithm>()) return std::nullopt;
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    const auto graph = rv::SearchGraph::of(*input);
    KindSearch search(graph);
    const RVNode* start = input->pStartNode();
    start != nullptr ? search.searchFrom(graph.indexOf(start)) : search.searchAll();
    search.describe(*input, *RVDepthFirstSearchOutputData::castDown(pOutputData()));
    return RV_NO_ERROR;
}
