#include "rv/traversal/acyclic_test.h"

#include "rv/foundation/graph_access.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/topological_order.h"

RV_OBJECT_IMPL(RVAcyclicTestInputData)
RV_OBJECT_IMPL(RVAcyclicTestOutputData)
RV_OBJECT_IMPL(RVAcyclicTestAlgorithm)

void RVAcyclicTestOutputData::reset() { m_acyclic = 1; }

// Parallel edges make no cycle, and loops are ones: the graph need not be normalised.
std::optional<RVServiceErrorCodeEnum> RVAcyclicTestAlgorithm::answer() {
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    if (!isExactly<RVAcyclicTestAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    rv::RunPulse pulse(pRunControl(), "acyclic test", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    const bool isAcyclic = rv::topologicalOrder(flat->out(), flat->order(), {}, pulse).isComplete;
    RVAcyclicTestOutputData::castDown(pOutputData())->acyclic(isAcyclic ? 1 : 0);
    return RV_NO_ERROR;
}
