#include "rv/cycles/new_cycle_test.h"

#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/path_exists_test.h"

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

RVAlgorithmData* RVNewCycleTestAlgorithm::newInternalData() { return new RVNewCycleTestInternalData(); }

void RVNewCycleTestAlgorithm::preprocessGraph() {}

void RVNewCycleTestAlgorithm::postprocessGraph() {}

void RVNewCycleTestAlgorithm::parseInputData() {
    const auto* input = RVNewCycleTestInputData::castDown(pInputData());
    pData()->pSourceNode(pData()->pCopyNode(input->pSourceNode()));
    pData()->pTargetNode(pData()->pCopyNode(input->pTargetNode()));
}

RVServiceErrorCodeEnum RVNewCycleTestAlgorithm::algorithmBody() {
    RVPathExistsTestInputData input(pAssociatedGraph());
    RVPathExistsTestOutputData output;
    RVPathExistsTestAlgorithm test;
    test.useOriginalGraph(1);
    input.pStartNode(pData()->pTargetNode());
    input.pFinishNode(pData()->pSourceNode());
    rv::noteFailure(*pData(), rv::runPart(*this, test, input, output), debugMode(),
                    L"Error in path exists. Return code = %d\n");
    pData()->pathFound(output.pathExists());
    return pData()->returnCode();
}

void RVNewCycleTestAlgorithm::generateOutputData() {
    auto* output = RVNewCycleTestOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pData()->pInputGraph());
    output->willCreateCycle(pData()->pathFound());
}
