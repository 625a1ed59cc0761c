// Breadth-first search: numbers nodes in the order in which they are reached. Internal to the library, not
// installed.
//
// A node's arcs are followed in their order. A search of a whole space starts as search_starts.h says.
// O(n + m) time; 8 bytes for every number that a node may have.
#pragma once

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct BreadthFirst {
    Buffer<int> numbers;  // by node, from 1; 0 when it is not reached
    Buffer<Index> order;  // the nodes that are reached
};

BreadthFirst breadthFirst(const SearchSpace& space, Pulse& pulse);
// What can be reached from one node.
BreadthFirst breadthFirst(const Arcs& arcs, Index start, Pulse& pulse);

}  // namespace rv
