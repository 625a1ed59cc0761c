// Maximum flow from one node of a directed network to another. Internal to the library, not installed.
//
// Shortest augmenting paths, each of them the first that a breadth-first search finds which follows arcs in
// their order; so the flow on every edge is fixed. Where source and sink are the same node, the flow goes
// around cycles through it.
//
// Blocking flows, Dinitz 1970, level by level from both ends. O(n^2 m) time, in practice few phases of
// O(n + m); 4 bytes for every number that an edge may have, which are the result, and some 50 for one of a
// node.
#pragma once

#include <cstdint>
#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/pulse.h"

namespace rv {

// Capacities are not negative. Those beyond the end of the spans are the defaults: an edge carries nothing,
// and a node is as unlimited as one of capacity 2147483647. Source and sink are unlimited in any case.
struct FlowNetwork {
    int edgeCapacity(Index edge) const { return edge < edgeCapacities.size() ? edgeCapacities[edge] : 0; }

    Arcs out;
    Arcs in;
    Index edgeLimit = 0;  // all numbers of edges are below
    Index source = 0;
    Index sink = 0;
    std::span<const int> edgeCapacities;
    std::span<const int> nodeCapacities;
};

// That of a whole graph, still without capacities.
inline FlowNetwork flowNetworkOf(const FlatGraph& graph, Index source, Index sink) {
    return {graph.out(), graph.in(), static_cast<Index>(graph.order().ends.size()), source, sink, {}, {}};
}

struct MaximumFlow {
    Buffer<int> flows;       // by edge
    std::int64_t total = 0;  // that comes to the sink
    // The nodes that the source still reaches, in the order in which a breadth-first search comes to them.
    Buffer<Index> reached;
};

MaximumFlow maximumFlow(const FlowNetwork& network, Pulse& pulse);

}  // namespace rv
