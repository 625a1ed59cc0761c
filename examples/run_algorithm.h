// The run of an algorithm whose input says all that is asked.
#pragma once

#include "rv/framework/algorithm.h"

template <class Algorithm, class Input, class Output>
RVServiceErrorCodeEnum runAlgorithm(Algorithm&& algorithm, Input& input, Output& output) {
    algorithm.pInputData(&input);
    algorithm.pOutputData(&output);
    return algorithm.run();
}
