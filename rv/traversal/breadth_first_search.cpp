#include "rv/traversal/breadth_first_search.h"

#include <utility>

#include "rv/framework/check_input.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/breadth_first.h"
#include "rv/traversal/search_view.h"

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

std::optional<RVServiceErrorCodeEnum> RVBreadthFirstSearchAlgorithm::answer() {
    if (!isExactly<RVBreadthFirstSearchAlgorithm>()) return std::nullopt;
    const auto* input = RVBreadthFirstSearchInputData::castDown(pInputData());
    auto* output = RVBreadthFirstSearchOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    rv::RunPulse pulse(pRunControl(), "breadth-first search", graph->numberOfEdges());
    const rv::SearchView view(*input);
    const RVNode* start = input->pStartNode();
    rv::BreadthFirst search = start == nullptr
                                  ? rv::breadthFirst(view.space(), pulse)
                                  : rv::breadthFirst(view.space().arcs, rv::indexOf(start), pulse);
    rv::Members(graph).append(search.order, *output->pNodeList());
    output->orderNumbers().assign(graph, std::move(search.numbers));
    return RV_NO_ERROR;
}
