#include "rv/traversal/topological_sort.h"

#include <utility>

#include "rv/framework/graph_snapshot.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/topological_order.h"

RV_OBJECT_IMPL(RVTopologicalSortInputData)
RV_OBJECT_IMPL(RVTopologicalSortOutputData)
RV_OBJECT_IMPL(RVNodeExtensionTopologicalSort)
RV_OBJECT_IMPL(RVTopologicalSortAlgorithm)

void RVTopologicalSortOutputData::buildNodeOrderList(RVNodeDList& list) const {
    if (&list == m_nodes.get()) return;
    list.deleteAllCells();
    list.copyAppendList(m_nodes.get());
}

void RVTopologicalSortOutputData::reset() {
    m_nodes->deleteAllCells();
    m_acyclic = 1;
    m_orderNumbers.clear();
}

RVServiceErrorCodeEnum RVTopologicalSortAlgorithm::algorithmBody() {
    RVGraph* const graph = pInputData()->pAssociatedGraph();
    auto* output = RVTopologicalSortOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "topological sort", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    const rv::TopologicalOrder sorted = rv::topologicalOrder(flat->out(), flat->order(), {}, pulse);
    output->acyclic(sorted.isComplete ? 1 : 0);
    if (!sorted.isComplete) return RV_NO_ERROR;
    rv::Members(graph).append(sorted.nodes, *output->pNodeList());
    rv::Buffer<int> numbers(rv::nodeLimitOf(graph), 0);
    int number = 0;
    for (const rv::Index node : sorted.nodes) numbers[node] = ++number;
    output->orderNumbers().assign(graph, std::move(numbers));
    return RV_NO_ERROR;
}
