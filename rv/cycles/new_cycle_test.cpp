#include "rv/cycles/new_cycle_test.h"

#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/live_neighbours.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/two_sided.h"

RV_OBJECT_IMPL(RVNewCycleTestInputData)
RV_OBJECT_IMPL(RVNewCycleTestOutputData)
RV_OBJECT_IMPL(RVNewCycleTestInternalData)
RV_OBJECT_IMPL(RVNewCycleTestAlgorithm)

std::span<const RVInputField> RVNewCycleTestInputData::inputFields() const {
    using namespace rv::field;
    using D = RVNewCycleTestInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pSourceNode, &D::pSourceNode>("sourceNode"),
        graphObject<D, RVNode, &D::pTargetNode, &D::pTargetNode>("targetNode"),
    };
    return fields;
}

void RVNewCycleTestOutputData::reset() { m_willCreateCycle = 0; }

RVServiceErrorCodeEnum RVNewCycleTestAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = RVInternalGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto& input = *RVNewCycleTestInputData::castDown(pInputData());
    code = rv::checkNode(input.pSourceNode(), input, RV_NO_SOURCE_NODE, RV_SOURCE_NODE_NOT_IN_GRAPH);
    if (code != RV_NO_ERROR) return code;
    return rv::checkNode(input.pTargetNode(), input, RV_NO_TARGET_NODE, RV_TARGET_NODE_NOT_IN_GRAPH);
}

std::optional<RVServiceErrorCodeEnum> RVNewCycleTestAlgorithm::answer() {
    const auto* input = RVNewCycleTestInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    if (!isExactly<RVNewCycleTestAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    const rv::Index from = rv::indexOf(input->pTargetNode());
    const rv::Index to = rv::indexOf(input->pSourceNode());
    rv::RunPulse pulse(pRunControl(), "new cycle test");
    const rv::ScratchLoan<rv::TwoSidedScratch> scratch(graph);
    bool isReached = false;
    if (const auto flat = rv::snapshotForPart(graph)) {
        isReached = rv::connects(rv::ArcNeighbours(flat->out(), flat->in()), from, to, *scratch, pulse);
    } else {
        isReached = rv::connects(rv::LiveNeighbours(graph), from, to, *scratch, pulse);
        rv::noteWalk(graph, static_cast<std::size_t>(scratch->steps));
    }
    RVNewCycleTestOutputData::castDown(pOutputData())->willCreateCycle(isReached ? 1 : 0);
    return RV_NO_ERROR;
}
