#include "rv/traversal/connected_components.h"

#include <utility>

#include "rv/framework/graph_snapshot.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/connected_components.h"
#include "rv/kernels/flat_graph.h"

RV_OBJECT_IMPL(RVConnectedComponentsInputData)
RV_OBJECT_IMPL(RVConnectedComponentsOutputData)
RV_OBJECT_IMPL(RVConnectedComponentsAlgorithm)

void RVConnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVConnectedComponentsOutputData::reset() {
    m_components.clear();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVConnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

std::optional<RVServiceErrorCodeEnum> RVConnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVConnectedComponentsAlgorithm>()) return std::nullopt;
    RVGraph* const graph = pInputData()->pAssociatedGraph();
    auto* output = RVConnectedComponentsOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "connected components", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    rv::Components components = rv::connectedComponents(flat->order(), rv::nodeLimitOf(graph), pulse);
    rv::Members(graph).append(components.groups, *output);
    output->componentNumbers().assign(graph, std::move(components.numbers));
    return RV_NO_ERROR;
}
