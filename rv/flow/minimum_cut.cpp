#include "rv/flow/minimum_cut.h"

#include <cstdint>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/blocking_flow.h"

RV_OBJECT_IMPL(RVEdgeExtensionMinimumCutInput)
RV_OBJECT_IMPL(RVMinimumCutInputData)
RV_OBJECT_IMPL(RVNodeExtensionMinimumCutInternal)
RV_OBJECT_IMPL(RVMinimumCutInternalData)
RV_OBJECT_IMPL(RVMinimumCutOutputData)
RV_OBJECT_IMPL(RVMinimumCutAlgorithm)

std::span<const RVInputField> RVMinimumCutInputData::inputFields() const {
    using namespace rv::field;
    using B = RVNetworkInputData;
    using D = RVMinimumCutInputData;
    static constexpr RVInputField fields[] = {
        graphObject<B, RVNode, &B::pSourceNode, &B::pSourceNode>("sourceNode"),
        graphObject<B, RVNode, &B::pSinkNode, &B::pSinkNode>("sinkNode"),
        edgeInt<D, &D::cost, &D::cost>("cost").announcedBy(RVInputField::graph | RVInputField::edge),
    };
    return fields;
}

void RVMinimumCutOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVMinimumCutOutputData::reset() {
    m_edges->deleteAllCells();
    m_totalCost = 0;
}

// RVMinimumCutAlgorithm

RVServiceErrorCodeEnum RVMinimumCutAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVMinimumCutInputData::castDown(pInputData());
    code = rv::checkNetworkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    return input->edgeCosts().hasNegatives(input->pAssociatedGraph()) ? RV_NEGATIVE_COST : RV_NO_ERROR;
}

namespace {

// Those that leave the source's side, and where cycles are cut, those that lead back to the source; then all
// without cost; then the loops of a source that is the sink. Each once.
rv::Buffer<rv::Index> findCut(const rv::FlowNetwork& network, const rv::GraphOrder& order, rv::Pulse& pulse) {
    const rv::Arcs& out = network.out;
    const rv::Index source = network.source;
    const bool isOfCycles = source == network.sink;
    const rv::Buffer<rv::Index> reached = rv::maximumFlow(network, pulse).reached;
    std::vector<bool> isReached(out.nodeLimit());
    std::vector<bool> isListed(network.edgeLimit);
    rv::Buffer<rv::Index> cut;
    const auto append = [&](rv::Index edge) {
        isListed[edge] = true;
        cut.push_back(edge);
    };
    for (const rv::Index node : reached) isReached[node] = true;
    for (const rv::Index node : reached) {
        for (rv::Index arc = out.first[node]; arc < out.last[node]; ++arc) {
            const bool leadsBack = isOfCycles && out.targets[arc] == source && node != source;
            if (leadsBack || !isReached[out.targets[arc]]) append(out.edges[arc]);
        }
    }
    order.forEachEdge([&](rv::Index edge) {
        if (network.edgeCapacity(edge) == 0 && !isListed[edge]) append(edge);
    });
    for (rv::Index arc = out.first[source]; isOfCycles && arc < out.last[source]; ++arc) {
        if (out.targets[arc] == source && !isListed[out.edges[arc]]) append(out.edges[arc]);
    }
    return cut;
}

}  // namespace

// The hooks would fail on graphs whose copies have no factory, so these take them.
std::optional<RVServiceErrorCodeEnum> RVMinimumCutAlgorithm::answer() {
    const auto* input = RVMinimumCutInputData::castDown(pInputData());
    auto* output = RVMinimumCutOutputData::castDown(pOutputData());
    const RVGraph* graph = input->pAssociatedGraph();
    if (!isExactly<RVMinimumCutAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    rv::RunPulse pulse(pRunControl(), "maximum flow");
    const auto flat = rv::snapshotOf(graph);
    rv::FlowNetwork network =
        rv::flowNetworkOf(*flat, rv::indexOf(input->pSourceNode()), rv::indexOf(input->pSinkNode()));
    rv::Buffer<int> costs;  // where the input keeps records
    network.edgeCapacities = input->edgeCosts().values(graph, costs);
    const rv::Buffer<rv::Index> cut = findCut(network, flat->order(), pulse);
    std::int64_t total = 0;
    for (const rv::Index edge : cut) total += network.edgeCapacity(edge);
    rv::Members(graph).append(cut, *output->pEdgeList());
    output->totalCost(rv::saturate(total));
    return RV_NO_ERROR;
}
