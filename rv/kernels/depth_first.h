// Depth-first search: numbers nodes in the order in which they are reached and in the order in which they are
// completed, and says of what kind the edges are. Internal to the library, not installed.
//
// A node's last arc is followed first. A search of a whole space starts as search_starts.h says. O(n + m)
// time; 20 bytes for every number that a node may have, 4 of them for the time of the search.
#pragma once

#include <cstddef>
#include <cstdint>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct DepthFirst {
    Buffer<int> numbers;      // by node, from 1; 0 when it is not reached
    Buffer<int> completions;  // likewise
    Buffer<Index> parents;    // kNoIndex for a node where the search started or that it did not reach
    Buffer<Index> order;      // the nodes that are reached
};

DepthFirst depthFirst(const SearchSpace& space, Pulse& pulse);
// What can be reached from one node.
DepthFirst depthFirst(const Arcs& arcs, Index start, Pulse& pulse);

// The numbers are those that callers of the library see.
enum EdgeKind : int { kNoKind = 0, kTreeEdge = 1, kForwardEdge = 2, kBackEdge = 3, kCrossEdge = 4 };

// Of an edge from a node to a parallel of which the search followed an arc.
inline int kindOfParallel(int kindOfFollowed, bool pointsForward, bool isUndirected) {
    if (kindOfFollowed == kCrossEdge) return kCrossEdge;
    return !isUndirected && pointsForward ? kForwardEdge : kBackEdge;
}

// By edge the kind of those that have arcs out of nodes that the search reached; of an edge with two arcs a
// tree edge if one of them is. isUndirected(edge) tells whether a forward edge counts as a back edge.
template <class Kind, class IsUndirected>
Buffer<Kind> edgeKinds(const SearchSpace& space, const DepthFirst& search, IsUndirected isUndirected,
                       Pulse& pulse) {
    Buffer<Kind> kinds(space.order.ends.size(), static_cast<Kind>(kNoKind));
    for (Index node = 0; node < space.nodeLimit(); ++node) {
        const int number = search.numbers[node];
        if (number == 0) continue;
        const int completion = search.completions[node];
        pulse.beat(1 + std::int64_t{space.arcs.degree(node)});
        for (Index arc = space.arcs.first[node]; arc < space.arcs.last[node]; ++arc) {
            const Index target = space.arcs.targets[arc];
            const Index edge = space.arcs.edges[arc];
            const int upward = completion < search.completions[target] ? kBackEdge : kCrossEdge;
            const int downward = isUndirected(edge) ? kBackEdge : kForwardEdge;
            const int kind = number < search.numbers[target] ? downward : upward;
            const bool isTree = search.parents[target] == node || int{kinds[edge]} == kTreeEdge;
            kinds[edge] = static_cast<Kind>(isTree ? int{kTreeEdge} : kind);
        }
    }
    return kinds;
}

}  // namespace rv
