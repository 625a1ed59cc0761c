#include "rv/flow/minimum_spanning_tree.h"

#include <cstdint>
#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/spanning_tree.h"

RV_OBJECT_IMPL(RVEdgeExtensionMinimumSpanningTreeInput)
RV_OBJECT_IMPL(RVEdgeExtensionMinimumSpanningTreeOutput)
RV_OBJECT_IMPL(RVNodeExtensionMinimumSpanningTreeInternal)
RV_OBJECT_IMPL(RVEdgeExtensionMinimumSpanningTreeInternal)
RV_OBJECT_IMPL(RVMinimumSpanningTreeInputData)
RV_OBJECT_IMPL(RVMinimumSpanningTreeOutputData)
RV_OBJECT_IMPL(RVMinimumSpanningTreeBinTree)
RV_OBJECT_IMPL(RVMinimumSpanningTreeAlgorithm)

// Input and output

std::span<const RVInputField> RVMinimumSpanningTreeInputData::inputFields() const {
    using namespace rv::field;
    using D = RVMinimumSpanningTreeInputData;
    static constexpr RVInputField fields[] = {edgeInt<D, &D::cost, &D::cost>("cost")};
    return fields;
}

void RVMinimumSpanningTreeOutputData::buildTreeEdgeList(RVEdgeDList& list) const { list = *m_treeEdges; }

void RVMinimumSpanningTreeOutputData::reset() {
    m_treeEdges->deleteAllCells();
    m_totalCost = 0;
    deleteDataReferences(pAssociatedGraph());
}

std::optional<RVServiceErrorCodeEnum> RVMinimumSpanningTreeAlgorithm::answer() {
    if (!isExactly<RVMinimumSpanningTreeAlgorithm>()) return std::nullopt;
    const auto* input = RVMinimumSpanningTreeInputData::castDown(pInputData());
    auto* output = RVMinimumSpanningTreeOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    rv::RunPulse pulse(pRunControl(), "spanning tree", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    rv::Buffer<int> space;  // where the input keeps records
    const std::span<const int> costs = input->edgeCosts().values(graph, space);
    rv::SpanningTree tree = rv::spanningTree(*flat, costs, pulse);
    if (!tree.spans(flat->order())) return RV_NO_ERROR;
    rv::Buffer<rv::Index> edges(std::size_t{tree.edgeCount} + 1);
    std::size_t count = 0;
    flat->order().forEachEdge([&](rv::Index edge) {
        edges[count] = edge;  // stays there if it is one of the tree
        count += static_cast<std::size_t>(tree.isTreeEdge[edge]);
    });
    edges.pop_back();
    std::int64_t total = 0;
    for (const rv::Index edge : edges) total += edge < costs.size() ? costs[edge] : 0;
    rv::Members(graph).append(edges, *output->pTreeEdgeList());
    output->isTreeEdge().assign(graph, std::move(tree.isTreeEdge));
    output->totalCost(rv::saturate(total));
    return RV_NO_ERROR;
}
