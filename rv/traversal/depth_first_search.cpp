#include "rv/traversal/depth_first_search.h"

#include <algorithm>
#include <utility>

#include "rv/framework/check_input.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/depth_first.h"
#include "rv/traversal/search_view.h"

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

using Kinds = rv::Buffer<RVAnalysisEdgeTypeEnum>;

// The kinds of what was left out of the search: the loops of nodes, and the parallels of edges, that it
// reached.
void addKindsOfLeftOut(const rv::SearchView& view, const rv::DepthFirst& search, Kinds& kinds) {
    const rv::SimpleGraph& graph = view.graph();
    for (const rv::Index node : search.order) {
        graph.forEachLoop(node, [&](rv::Index loop) { kinds[loop] = RVBackEdge; });
    }
    graph.space.order.forEachEdge([&](rv::Index edge) {
        if (kinds[edge] == RVNoEdgeType) return;
        const rv::Ends ends = graph.space.order.ends[edge];
        const auto add = [&](rv::Index parallel, bool pointsForward) {
            if (kinds[parallel] == RVTreeEdge) return;  // its own other arc
            kinds[parallel] = static_cast<RVAnalysisEdgeTypeEnum>(
                rv::kindOfParallel(kinds[edge], pointsForward, view.isUndirected(parallel)));
        };
        const bool pointsForward = search.numbers[ends.source] < search.numbers[ends.target];
        graph.forEachParallel(edge, [&](rv::Index parallel) { add(parallel, pointsForward); });
        graph.forEachReverseParallel(edge, [&](rv::Index parallel) { add(parallel, !pointsForward); });
    });
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVDepthFirstSearchAlgorithm::answer() {
    if (!isExactly<RVDepthFirstSearchAlgorithm>()) return std::nullopt;
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    auto* output = RVDepthFirstSearchOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    rv::RunPulse pulse(pRunControl(), "depth-first search", graph->numberOfEdges());
    const rv::SearchView view(*input);
    const RVNode* start = input->pStartNode();
    rv::DepthFirst search = start == nullptr ? rv::depthFirst(view.space(), pulse)
                                             : rv::depthFirst(view.space().arcs, rv::indexOf(start), pulse);
    Kinds kinds = rv::edgeKinds<RVAnalysisEdgeTypeEnum>(
        view.space(), search, [&](rv::Index edge) { return view.isUndirected(edge); }, pulse);
    if (view.graph().leavesOut()) addKindsOfLeftOut(view, search, kinds);

    const rv::Members members(graph);
    members.append(search.order, *output->pNodeList());
    rv::Buffer<RVNode*> parents(search.parents.size());
    std::transform(search.parents.begin(), search.parents.end(), parents.begin(),
                   [&](rv::Index parent) { return members.node(parent); });
    output->orderNumbers().assign(graph, std::move(search.numbers));
    output->completionNumbers().assign(graph, std::move(search.completions));
    // Where a caller's factory makes the records, these may begin with a parent.
    if (!output->parentNodes().usable()) {
        for (const rv::Index node : search.order) output->pParentNode(members.node(node), parents[node]);
    } else {
        output->parentNodes().take(graph, std::move(parents));
    }
    output->edgeTypes().assign(graph, std::move(kinds));
    return RV_NO_ERROR;
}
