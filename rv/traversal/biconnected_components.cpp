#include "rv/traversal/biconnected_components.h"

#include "rv/framework/graph_snapshot.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/blocks.h"
#include "rv/kernels/flat_graph.h"

RV_OBJECT_IMPL(RVNodeExtensionBiconnectedComponents)
RV_OBJECT_IMPL(RVBiconnectedComponentsInternalData)
RV_OBJECT_IMPL(RVBiconnectedComponentsInputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsOutputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsAlgorithm)

void RVBiconnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVBiconnectedComponentsOutputData::buildArticulationNodeList(RVNodeDList& list) const {
    list = *m_articulationNodes;
}

void RVBiconnectedComponentsOutputData::reset() {
    m_components.clear();
    m_articulationNodes->deleteAllCells();
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

std::optional<RVServiceErrorCodeEnum> RVBiconnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVBiconnectedComponentsAlgorithm>()) return std::nullopt;
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    auto* output = RVBiconnectedComponentsOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "blocks", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    const rv::Blocks blocks = rv::blocks(flat->undirected().space, pulse);
    const rv::Members members(graph);
    members.append(blocks.groups, *output);
    members.append(blocks.articulationNodes, *output->pArticulationNodeList());
    return RV_NO_ERROR;
}
