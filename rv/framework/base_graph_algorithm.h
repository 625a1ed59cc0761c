// Base of the algorithms that read the caller's graph itself, without a working copy.
#pragma once

#include "rv/framework/algorithm.h"
#include "rv/framework/analysis_data.h"

class RV_EXPORT RVBaseGraphAlgorithm : public RVAlgorithm {
    RV_OBJECT(RVBaseGraphAlgorithm)

public:
    RVBaseGraphAlgorithm() = default;

    // Runs the pipeline and gives its result code: the entry for callers.
    RVServiceErrorCodeEnum run() override;
    // The framework's codes; then RV_NO_INPUT_GRAPH when the input has no associated graph, and
    // RV_NO_GRAPH_FACTORY when that graph has no factory. Subclasses call this first.
    RVServiceErrorCodeEnum checkData() override;
    // The same as run: the entry for algorithms that use this one as a part.
    virtual RVServiceErrorCodeEnum internalRun();

protected:
    // Does nothing: these algorithms write their results in the body.
    void generateOutputData() override;
};
