// The graph of all paths from one node to another, whose walks give them in the order of their cost. Internal
// to the library, not installed.
//
// Every edge that is not in the tree of cheapest paths to the finish node costs a detour, its delta. The
// detours out of a node form a heap, its out-heap. The out-heaps on a node's way through the tree are joined
// by a heap of their roots, its sidetrack heap, which shares all but one path with that of the next node on
// the way. Cross edges lead from a detour to the sidetrack heap of the node where it ends.
//
// Eppstein 1998. O(m + n log n) time and space, besides what heaps of detours that are added one by one take.
#pragma once

#include <cstdint>
#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/cheapest_tree.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct PathGraph {
    enum EdgeType : std::uint8_t { kRootEdge = 0, kHeapEdge = 1, kCrossEdge = 2 };
    struct Edge {
        Index from;
        Index to;
        EdgeType type;
        std::int64_t cost = 0;
    };

    Buffer<Index> detours;  // by node its edge; kNoIndex for the root, which is the last one
    Buffer<Edge> edges;
};

// What it is built from: a graph all of whose nodes are on ways to the finish node, and the tree of cheapest
// paths there, by whose edges nodes are left.
struct PathGraphQuestion {
    const Arcs& out;
    const Arcs& in;
    std::span<const Ends> ends;           // by edge
    std::span<const std::int64_t> costs;  // by edge
    const CheapestTree& tree;
    Index start;
    Index finish;
};

PathGraph makePathGraph(const PathGraphQuestion& question, Pulse& heapPulse, Pulse& treePulse);

}  // namespace rv
