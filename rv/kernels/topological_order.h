// Topological order: the nodes of a directed graph so that every edge goes from an earlier to a later one.
// Internal to the library, not installed.
//
// Nodes without in-edges come in node order, all others in the order in which the last of their in-edges is
// consumed, where nodes consume their arcs in the order of the arcs. Parallel edges count one by one, and a
// loop is a cycle.
//
// Kahn 1962. O(n + m) time; 8 bytes for every number that a node may have, 4 of them for the time of the run.
#pragma once

#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct TopologicalOrder {
    Buffer<Index> nodes;      // without those on cycles and those that can be reached from there
    bool isComplete = false;  // all nodes, since there is no cycle
};

// By node the in-degrees of all arcs, or nothing: then they are counted.
TopologicalOrder topologicalOrder(const Arcs& arcs, const GraphOrder& order, std::span<const Index> inDegrees,
                                  Pulse& pulse);

// What one node reaches, by a depth-first search (Tarjan 1976) that ends at the first arc which closes a
// cycle: then nothing.
Buffer<Index> topologicalOrderFrom(const Arcs& arcs, Index start, Pulse& pulse);

}  // namespace rv
