#include "rv/traversal/strongly_connected_components.h"

#include <utility>

#include "rv/framework/graph_snapshot.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/strong_components.h"

RV_OBJECT_IMPL(RVNodeExtensionStronglyConnectedComponents)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInternalData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsOutputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsAlgorithm)

void RVStronglyConnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::buildEdgeComponentList(RVDList& list) const {
    m_edgeComponents.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::reset() {
    m_components.clear();
    m_edgeComponents.clear();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVStronglyConnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

namespace {

// The edges inside a component, node after node: each node's kept edges, every one followed by its parallels,
// and then its loops.
void listEdges(const rv::SimpleGraph& graph, const rv::Components& components, rv::Index group,
               rv::Buffer<rv::Index>& edges) {
    const rv::Arcs& arcs = graph.space.arcs;
    const auto add = [&](rv::Index edge) { edges.push_back(edge); };
    edges.clear();
    const int number = static_cast<int>(group) + 1;
    for (const rv::Index node : components.groups[group]) {
        for (rv::Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            if (components.numbers[arcs.targets[arc]] != number) continue;
            add(arcs.edges[arc]);
            graph.forEachParallel(arcs.edges[arc], add);
        }
        graph.forEachLoop(node, add);
    }
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVStronglyConnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVStronglyConnectedComponentsAlgorithm>()) return std::nullopt;
    RVGraph* const graph = pInputData()->pAssociatedGraph();
    auto* output = RVStronglyConnectedComponentsOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "strong components", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    const rv::SimpleGraph& simple = flat->directed();
    rv::Components components = rv::strongComponents(simple.space, pulse);
    const rv::Members members(graph);
    members.append(components.groups, *output);
    rv::Buffer<rv::Index> edges;
    for (rv::Index group = 0; group < components.groups.size(); ++group) {
        listEdges(simple, components, group, edges);
        output->addEdgeComponent(edges.size(), members.edgesAt(edges));
    }
    output->componentNumbers().assign(graph, std::move(components.numbers));
    return RV_NO_ERROR;
}
