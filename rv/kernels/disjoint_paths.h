// Disjoint paths: as many paths as possible from one node to another that share no edge, or no node in
// between. Internal to the library, not installed.
//
// They are taken from a maximum flow in which every edge, or every node in between, carries at most 1: each
// path goes on by the first arc of a node that no path before it has used. So of parallel edges into a node
// in between, node-disjoint paths have the first one.
//
// Where start and finish are the same node, the paths are cycles through it.
//
// O(paths (n + m)) time; 8 bytes for every number that an edge may have and some 50 for one of a node; three
// times that for node-disjoint paths.
#pragma once

#include <span>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct EdgePaths {
    Index size() const { return static_cast<Index>(begins.size() - 1); }
    std::span<const Index> operator[](Index path) const {
        return std::span(edges).subspan(begins[path], begins[path + 1] - begins[path]);
    }

    Buffer<Index> edges;             // path after path
    Buffer<Index> begins{Index{0}};  // of the paths in edges, and the end of the last one
};

EdgePaths edgeDisjointPaths(const FlatGraph& graph, Index start, Index finish, Pulse& pulse);
EdgePaths nodeDisjointPaths(const FlatGraph& graph, Index start, Index finish, Pulse& pulse);

}  // namespace rv
