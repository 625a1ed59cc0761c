// All that can be seen of a graph, as text, to compare before and after.
#pragma once

#include <sstream>
#include <string>

#include "rv/framework/algorithm_data.h"
#include "tests/test_graph.h"

namespace rvtest {

// Its orders, and per object its address, index, name, user fields and the records of data, in order.
inline std::string snapshot(const RVGraph* graph) {
    std::ostringstream all;
    all << orders(graph);
    const auto add = [&](const RVGraphMember* member) {
        all << '\n' << member << '#' << member->denseIndex() << ' ' << token(member);
        all << ' ' << member->pUserField() << ' ' << member->pIUserField() << ':';
        const RVAlgorithmExtension* record = member->pAnalysisExtensions()->pFirstExtension();
        for (; record != nullptr; record = record->pNextExtension()) all << ' ' << record;
    };
    for (const RVNode* node : *graph->pNodeList()) add(node);
    for (const RVEdge* edge : *graph->pEdgeList()) add(edge);
    return all.str();
}

// Moves edges about, so that lists do not stand in the order of the edges any more.
inline void rearrange(RVGraph* graph, unsigned seed) {
    std::mt19937 random(seed);
    std::vector<RVEdge*> edges;
    for (RVEdge* edge : *graph->pEdgeList()) edges.push_back(edge);
    for (RVEdge* edge : edges) {
        if (random() % 4 == 0) edge->invertDirection();
        if (random() % 6 == 0) edge->changeTargetNode(graph->pFirstNode());
        if (random() % 6 == 0) graph->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
    }
}

// An algorithm with its data, for one graph after another.
template <class Algorithm, class Input, class Output>
struct Runner {
    Runner() { bind(); }
    explicit Runner(RVGraph* graph) : input(graph) { bind(); }
    RVServiceErrorCodeEnum run(RVGraph* graph) {
        input.pAssociatedGraph(graph);
        return algorithm.run();
    }
    RVServiceErrorCodeEnum run() { return algorithm.run(); }

    Input input;
    Output output;
    Algorithm algorithm;

private:
    void bind() {
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
    }
};

}  // namespace rvtest
