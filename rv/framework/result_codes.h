// Result codes of `run`, `internalRun`, `checkData` and `algorithmBody`.
#pragma once

#include "rv/export.h"

enum RVServiceErrorCodeEnum {
    RV_NO_ERROR = 0,
    RV_START_NODE_NOT_IN_GRAPH = 5,
    RV_FINISH_NODE_NOT_IN_GRAPH = 6,
    RV_TARGET_NODE_NOT_IN_GRAPH = 7,
    RV_NO_START_NODE = 8,
    RV_NO_FINISH_NODE = 9,
    RV_NO_TARGET_NODE = 10,
    RV_INVALID_RANGE = 11,  // below 0 and not -1
    RV_NO_SOURCE_NODE = 12,
    RV_SOURCE_NODE_NOT_IN_GRAPH = 13,
    RV_NO_SINK_NODE = 14,
    RV_SINK_NODE_NOT_IN_GRAPH = 15,
    RV_NEGATIVE_CAPACITY = 16,
    RV_NEGATIVE_COST = 17,
    RV_NEGATIVE_CYCLE = 18,
    RV_NEGATIVE_DESIRED_FLOW = 19,
    RV_NO_GRAPH_FACTORY = 21,  // the input's graph was not made by a factory, or the factory is gone
    RV_NO_INPUT_GRAPH = 22,    // the input has no associated graph
    RV_NEGATIVE_WEIGHT = 25,
    RV_INVALID_QUALITY = 26,  // not 0, 1 or 2
    RV_INVALID_CONSTRAINT = 27,
    RV_INVALID_CLUSTER_COUNT = 28,
    RV_NO_EFFECT_NODES = 29,
    RV_EFFECT_NODE_NOT_IN_GRAPH = 30,
    RV_INVALID_THRESHOLD = 31,   // below 0 or above 1
    RV_ALGORITHM_FAILURE = 999,  // a part of the algorithm failed

    // Of the framework.
    RV_NO_INPUT_DATA = 1001,      // the algorithm has no input data object, or it has been destroyed
    RV_NO_OUTPUT_DATA = 1002,     // the same for the output
    RV_WRONG_INPUT_DATA = 1003,   // the input is of a class that the algorithm does not work with
    RV_WRONG_OUTPUT_DATA = 1004,  // the same for the output
    RV_ALREADY_RUNNING = 1005,    // a hook of a run has called run of the same algorithm
    RV_CANCELLED = 1006           // the run control ended the run
};

namespace rv {

// What a code means, in a line of English; the same for every code that there is none of.
RV_EXPORT const char* message(RVServiceErrorCodeEnum code);

}  // namespace rv
