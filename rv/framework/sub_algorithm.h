// How one algorithm runs another as a part of itself. Internal to the library, not installed.
//
// Part, input and output are locals of the caller, so every way out destroys them.
#pragma once

#include "rv/foundation/text_output.h"
#include "rv/framework/algorithm.h"
#include "rv/framework/analysis_data.h"
#include "rv/framework/run_pulse.h"

namespace rv {

// Runs the part on its input and output and gives its result code. The part obeys the run control of the
// outer algorithm, and a run that this ends is the end of the outer one too.
template <class Algorithm>
RVServiceErrorCodeEnum runPart(const RVAlgorithm& outer, Algorithm& part, RVAlgorithmInputData& input,
                               RVAlgorithmOutputData& output) {
    part.pInputData(&input);
    part.pOutputData(&output);
    part.pRunControl(outer.pRunControl());
    const RVServiceErrorCodeEnum code = part.internalRun();
    if (code == RV_CANCELLED) throw Cancelled();
    return code;
}

// Notes a failed part: the outer algorithm's outcome becomes RV_ALGORITHM_FAILURE, and the message, which
// prints one number, is printed with the part's code under debug mode.
inline void noteFailure(RVAnalysisInternalData& data, RVServiceErrorCodeEnum code, int debugMode,
                        const wchar_t* message) {
    if (code == RV_NO_ERROR) return;
    data.returnCode(RV_ALGORITHM_FAILURE);
    if (debugMode != 0) wprintf_s(message, static_cast<int>(code));
}

}  // namespace rv
