// What subclasses run on: the topological sort of the working graph.

#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/acyclic_test.h"
#include "rv/traversal/topological_sort.h"

void RVAcyclicTestAlgorithm::parseInputData() {}

RVAlgorithmData* RVAcyclicTestAlgorithm::newInternalData() { return new RVAnalysisInternalData(); }

void RVAcyclicTestAlgorithm::preprocessReflexiveEdges() {}

RVServiceErrorCodeEnum RVAcyclicTestAlgorithm::algorithmBody() {
    RVTopologicalSortAlgorithm sort;
    RVTopologicalSortInputData input(pAssociatedGraph());
    RVTopologicalSortOutputData output;
    const RVServiceErrorCodeEnum code = rv::runPart(*this, sort, input, output);
    rv::noteFailure(*pAnalysisInternalData(), code, debugMode(), L"Error in Top Sort. Return code = %d\n");
    RVAcyclicTestOutputData::castDown(pOutputData())->acyclic(output.acyclic());
    return pAnalysisInternalData()->returnCode();
}

void RVAcyclicTestAlgorithm::generateOutputData() {
    pOutputData()->pAssociatedGraph(pInputData()->pAssociatedGraph());
}
