// What subclasses run on: the maximum flow of a plain copy of the graph, as a part.

#include <cstdint>
#include <vector>

#include "rv/flow/maximum_flow.h"
#include "rv/flow/minimum_cut.h"
#include "rv/foundation/arithmetic.h"
#include "rv/framework/sub_algorithm.h"

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
    rv::noteFailure(*pData(), rv::runPart(*this, maximumFlow, input, output), debugMode(),
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
