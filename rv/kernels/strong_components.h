// Strong components: the largest groups of nodes that all reach one another. Internal to the library, not
// installed.
//
// They stand in the order in which a depth-first search (depth_first.h) of the space closes them, which is a
// reverse topological one: a component comes before every one from which it can be reached. The nodes of a
// component stand in the reverse of the order in which they are reached.
//
// Tarjan 1972, without recursion. O(n + m) time; 24 bytes for every number that a node may have and 4 for a
// component, of which 16 for the time of the search.
#pragma once

#include "rv/kernels/node_groups.h"
#include "rv/kernels/pulse.h"

namespace rv {

Components strongComponents(const SearchSpace& space, Pulse& pulse);

}  // namespace rv
