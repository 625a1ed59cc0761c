#include "rv/flow/maximum_flow.h"

#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/blocking_flow.h"

RV_OBJECT_IMPL(RVMaximumFlowInputData)
RV_OBJECT_IMPL(RVMaximumFlowOutputData)

// Input and output

std::span<const RVInputField> RVMaximumFlowInputData::inputFields() const {
    using namespace rv::field;
    using B = RVNetworkInputData;
    using D = RVMaximumFlowInputData;
    static constexpr RVInputField fields[] = {
        graphObject<B, RVNode, &B::pSourceNode, &B::pSourceNode>("sourceNode"),
        graphObject<B, RVNode, &B::pSinkNode, &B::pSinkNode>("sinkNode"),
        nodeInt<D, &D::capacity, &D::capacity>("capacity"),
        edgeInt<D, &D::capacity, &D::capacity>("capacity"),
    };
    return fields;
}

void RVMaximumFlowOutputData::reset() {
    m_visitedNodes->deleteAllCells();
    m_totalFlow = 0;
    deleteDataReferences(pAssociatedGraph());
}

// RVMaximumFlowAlgorithm

RVMaximumFlowAlgorithm::~RVMaximumFlowAlgorithm() = default;
RV_OBJECT_NO_COPY_IMPL(RVMaximumFlowAlgorithm)

RVServiceErrorCodeEnum RVMaximumFlowAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = RVBaseGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVMaximumFlowInputData::castDown(pInputData());
    code = rv::checkNetworkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    return rv::hasNegativeCapacity(*input) ? RV_NEGATIVE_CAPACITY : RV_NO_ERROR;
}

RVServiceErrorCodeEnum RVMaximumFlowAlgorithm::algorithmBody() {
    const auto* input = RVMaximumFlowInputData::castDown(pInputData());
    auto* output = RVMaximumFlowOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    rv::RunPulse pulse(pRunControl(), "maximum flow");
    const auto flat = rv::snapshotOf(graph);
    rv::FlowNetwork network =
        rv::flowNetworkOf(*flat, rv::indexOf(input->pSourceNode()), rv::indexOf(input->pSinkNode()));
    rv::Buffer<int> edgeCapacities;  // where the input keeps records
    rv::Buffer<int> nodeCapacities;
    network.edgeCapacities = input->edgeCapacities().values(graph, edgeCapacities);
    network.nodeCapacities = input->nodeCapacities().values(graph, nodeCapacities);
    rv::MaximumFlow found = rv::maximumFlow(network, pulse);
    rv::Members(graph).append(found.reached, *output->pVisitedNodeList());
    output->totalFlow(rv::saturate(found.total));
    rv::writeFlows(*output, std::move(found.flows));
    return RV_NO_ERROR;
}
