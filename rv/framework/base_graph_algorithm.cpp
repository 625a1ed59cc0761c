#include "rv/framework/base_graph_algorithm.h"

#include "rv/framework/check_input.h"

RV_OBJECT_IMPL(RVBaseGraphAlgorithm)

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::run() { return RVAlgorithm::run(); }

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::internalRun() { return RVAlgorithm::run(); }

RVServiceErrorCodeEnum RVBaseGraphAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVAlgorithm::checkData();
    return code != RV_NO_ERROR ? code : rv::checkInputGraph(*pInputData());
}

void RVBaseGraphAlgorithm::generateOutputData() {}
