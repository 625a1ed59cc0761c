// Blocks: the largest parts of an undirected graph that hang together whichever one node is taken away, and
// the articulation nodes that join them. Internal to the library, not installed.
//
// Blocks stand in the order in which a depth-first search (depth_first.h) of the space closes them. The nodes
// of a block stand in the reverse of the order in which they are reached, so that the joint, its first one,
// comes last. An isolated node is a block of its own. Articulation nodes stand in the order in which they are
// found to be ones: a node with a parent when its first block closes, the root of a tree when its second one
// does.
//
// Hopcroft and Tarjan 1973, without recursion. O(n + m) time; 24 bytes for every number that a node may have,
// for the time of the search, and for the result 4 for a node and 8 for a block.
#pragma once

#include "rv/kernels/node_groups.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct Blocks {
    NodeGroups groups;
    Buffer<Index> articulationNodes;
};

// REQUIRES: the space has every edge both ways.
Blocks blocks(const SearchSpace& space, Pulse& pulse);

}  // namespace rv
