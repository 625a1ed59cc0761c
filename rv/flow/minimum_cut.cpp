#include "rv/flow/minimum_cut.h"

#include <cstdint>
#include <vector>

#include "rv/flow/maximum_flow.h"
#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/sub_algorithm.h"

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
    for (RVEdge* edge : *input->pAssociatedGraph()->pEdgeList()) {
        if (input->cost(edge) < 0) return RV_NEGATIVE_COST;
    }
    return RV_NO_ERROR;
}

RVAlgorithmData* RVMinimumCutAlgorithm::newInternalData() { return new RVMinimumCutInternalData(); }

void RVMinimumCutAlgorithm::parseInputData() {}

void RVMinimumCutAlgorithm::preprocessGraph() {}

void RVMinimumCutAlgorithm::postprocessGraph() {}

void RVMinimumCutAlgorithm::copyInputData(RVMaximumFlowInputData& input) const {
    const auto* question = RVMinimumCutInputData::castDown(pInputData());
    input.pSourceNode(pData()->pCopyNode(question->pSourceNode()));
    input.pSinkNode(pData()->pCopyNode(question->pSinkNode()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        input.capacity(edge, question->cost(pData()->pOriginalEdge(edge)));
    }
}

RVServiceErrorCodeEnum RVMinimumCutAlgorithm::algorithmBody() {
    RVMaximumFlowAlgorithm maximumFlow;
    RVMaximumFlowInputData input(pAssociatedGraph());
    RVMaximumFlowOutputData output;
    copyInputData(input);
    rv::noteFailure(*pData(), rv::runPart(maximumFlow, input, output), debugMode(),
                    L"Error in max flow. Return code = %d\n");
    const RVNode* source = input.pSourceNode();
    const bool isCycleCut = source == input.pSinkNode();
    for (RVNode* node : *output.pVisitedNodeList()) pData()->touched(node, 1);
    for (const RVNode* node : *output.pVisitedNodeList()) {
        for (RVEdge* edge : *node->pOutEdgeList()) {
            const bool leadsBack = isCycleCut && edge->pTargetNode() == source && node != source;
            if (leadsBack || pData()->touched(edge->pTargetNode()) == 0)
                pData()->pEdgeList()->appendEdge(edge);
        }
    }
    return pData()->returnCode();
}

void RVMinimumCutAlgorithm::generateOutputData() {
    const RVMinimumCutInternalData* data = pData();
    const auto* input = RVMinimumCutInputData::castDown(pInputData());
    auto* output = RVMinimumCutOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    std::int64_t total = 0;
    std::vector<bool> isListed(static_cast<std::size_t>(data->pInputGraph()->edgeIndexLimit()));
    const auto append = [&](RVEdge* edge) {
        isListed[rv::placeOf(edge)] = true;
        output->pEdgeList()->appendEdge(edge);
        total += input->cost(edge);
    };
    for (RVEdge* edge : *data->pEdgeList()) append(data->pOriginalEdge(edge));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVEdge* original = data->pOriginalEdge(edge);
        const bool isNew = !isListed[rv::placeOf(original)];
        if (isNew && input->cost(original) == 0) append(original);
    }
    const RVNode* source = input->pSourceNode();
    if (source == input->pSinkNode()) {
        for (RVEdge* edge : *source->pOutEdgeList()) {
            if (edge->pTargetNode() == source && input->cost(edge) >= 1) append(edge);
        }
    }
    output->totalCost(rv::saturate(total));
}
