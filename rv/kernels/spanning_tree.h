// Minimum spanning tree: edges of least total cost that connect all nodes, whatever their directions.
// Internal to the library, not installed.
//
// The tree grows from the first node. Of the nodes that can be joined at the least cost, the one that came to
// that cost first is joined, by the edge that was found first, where a node's in-edges come before its
// out-edges. Of parallel edges, whatever their directions, only the cheapest counts, of equally cheap ones
// the first in the in-list and then the out-list of the source of the first of them in graph order. Loops
// play no part.
//
// Prim 1957, with a queue of buckets. O(n + m) time where costs lie no further apart than some 2 m, else
// O(m log m). 16 bytes for every number that an edge may have, the result among them, 8 for one of a node, 8
// for each node that waits and for each cost from the least to the greatest.
#pragma once

#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct SpanningTree {
    bool spans(const GraphOrder& order) const { return edgeCount + std::uint64_t{1} == order.nodeCount; }

    Buffer<int> isTreeEdge;  // by edge, 1 or 0
    Index edgeCount = 0;
};

// The tree of all that hangs together with the first node. An edge of cost 2147483647 counts as none. Costs
// by edge; those beyond the end are 0.
SpanningTree spanningTree(const FlatGraph& graph, std::span<const int> costs, Pulse& pulse);

}  // namespace rv
