// Nodes in groups: components and blocks. Internal to the library, not installed.
#pragma once

#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

struct NodeGroups {
    Buffer<Index> nodes;             // group by group
    Buffer<Index> begins{Index{0}};  // of the groups in nodes, and the end of the last one

    Index size() const { return static_cast<Index>(begins.size() - 1); }
    std::span<const Index> operator[](Index group) const {
        return std::span(nodes).subspan(begins[group], begins[group + 1] - begins[group]);
    }
};

// Groups without a node in common.
struct Components {
    Buffer<int> numbers;  // by node, from 1; 0 for a number that no node has
    NodeGroups groups;    // that of number k is groups[k - 1]
};

}  // namespace rv
