#include "rv/framework/base_graph_algorithm.h"

RV_OBJECT_IMPL(RVBaseGraphAlgorithm)

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::run() { return RVAlgorithm::run(); }

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::internalRun() { return RVAlgorithm::run(); }

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    if (graph == nullptr) return RV_NO_INPUT_GRAPH;
    if (graph->pFactory() == nullptr) return RV_NO_GRAPH_FACTORY;
    return RV_NO_ERROR;
}

void RVBaseGraphAlgorithm::generateOutputData() {}
