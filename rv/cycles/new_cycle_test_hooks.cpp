// What subclasses run on: the path exists test on the working graph.

#include "rv/cycles/new_cycle_test.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/path_exists_test.h"

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
