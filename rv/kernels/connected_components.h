// Connected components: the parts of a graph that hang together when directions are ignored. Internal to the
// library, not installed.
//
// They are numbered in the order in which their first edge stands in the graph; each node without edges to
// other nodes is a component of its own, numbered after all others in node order. The nodes of a component
// stand in node order.
//
// Disjoint sets (disjoint_sets.h): close to O(n + m) time, O(n + m log n) at worst; 12 bytes for every number
// that a node may have and 4 for a component, of which 4 for a node for the time of the search.
#pragma once

#include "rv/kernels/node_groups.h"
#include "rv/kernels/pulse.h"

namespace rv {

// All numbers of nodes are below the limit.
Components connectedComponents(const GraphOrder& order, Index nodeLimit, Pulse& pulse);

}  // namespace rv
