// What a search over a working graph has left out. Internal to the library, not installed.
#pragma once

#include <vector>

#include "rv/foundation/graph_iterators.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/rootcause/reachable_nodes.h"

namespace rv {

// Calls f(node) for every node of a graph that is not listed, in graph order. f may take the node out of the
// graph.
template <class F>
void forEachOtherNode(RVGraph* graph, const RVNodeDList& listed, F f) {
    if (listed.length() == graph->numberOfNodes()) return;
    std::vector<bool> isListed(static_cast<std::size_t>(graph->nodeIndexLimit()));
    for (const RVNode* node : listed) isListed[placeOf(node)] = true;
    for (RVNodeIter it(graph); it;) {
        RVNode* node = it.pNode();
        it++;
        if (!isListed[placeOf(node)]) f(node);
    }
}

// Lists the nodes that a node reaches along the edges, or, reversed, that reach it. Gives the code.
inline RVServiceErrorCodeEnum findReachable(const RVAlgorithm& outer, RVGraph* graph, RVNode* start,
                                            int reversed, RVReachableNodesOutputData& output) {
    RVReachableNodesAlgorithm search;
    RVReachableNodesInputData input(graph);
    input.pStartNode(start);
    input.reversed(reversed);
    return runPart(outer, search, input, output);
}

}  // namespace rv
