#include "rv/framework/result_codes.h"

const char* rv::message(RVServiceErrorCodeEnum code) {
    switch (code) {
        case RV_NO_ERROR:
            return "no error";
        case RV_START_NODE_NOT_IN_GRAPH:
            return "the start node is not in the input's graph";
        case RV_FINISH_NODE_NOT_IN_GRAPH:
            return "the finish node is not in the input's graph";
        case RV_TARGET_NODE_NOT_IN_GRAPH:
            return "the target node is not in the input's graph";
        case RV_NO_START_NODE:
            return "the input has no start node";
        case RV_NO_FINISH_NODE:
            return "the input has no finish node";
        case RV_NO_TARGET_NODE:
            return "the input has no target node";
        case RV_INVALID_RANGE:
            return "the range is below 0 and not -1";
        case RV_NO_SOURCE_NODE:
            return "the input has no source node";
        case RV_SOURCE_NODE_NOT_IN_GRAPH:
            return "the source node is not in the input's graph";
        case RV_NO_SINK_NODE:
            return "the input has no sink node";
        case RV_SINK_NODE_NOT_IN_GRAPH:
            return "the sink node is not in the input's graph";
        case RV_NEGATIVE_CAPACITY:
            return "a capacity is below 0";
        case RV_NEGATIVE_COST:
            return "a cost is below 0";
        case RV_NEGATIVE_CYCLE:
            return "a cycle has a total cost below 0";
        case RV_NEGATIVE_DESIRED_FLOW:
            return "the desired flow is below 0";
        case RV_NO_GRAPH_FACTORY:
            return "the input's graph has no factory";
        case RV_NO_INPUT_GRAPH:
            return "the input has no graph";
        case RV_NEGATIVE_WEIGHT:
            return "a weight is below 0";
        case RV_INVALID_QUALITY:
            return "the quality is out of its range";
        case RV_INVALID_CONSTRAINT:
            return "a constraint is invalid";
        case RV_INVALID_CLUSTER_COUNT:
            return "the limits of the number of clusters contradict each other";
        case RV_NO_EFFECT_NODES:
            return "the input has no effect nodes";
        case RV_EFFECT_NODE_NOT_IN_GRAPH:
            return "an effect node is not in the input's graph";
        case RV_INVALID_THRESHOLD:
            return "the threshold is not between 0 and 1";
        case RV_ALGORITHM_FAILURE:
            return "a part of the algorithm failed";
        case RV_NO_INPUT_DATA:
            return "the algorithm has no input data";
        case RV_NO_OUTPUT_DATA:
            return "the algorithm has no output data";
        case RV_WRONG_INPUT_DATA:
            return "the input data are of a class that the algorithm does not work with";
        case RV_WRONG_OUTPUT_DATA:
            return "the output data are of a class that the algorithm does not work with";
        case RV_ALREADY_RUNNING:
            return "the algorithm is already running";
        case RV_CANCELLED:
            return "the run was cancelled";
    }
    return "unknown result code";
}
