// A graph as arrays. Internal to the library, not installed.
//
// Nodes and edges are numbers below some limit, not all of which need be in use. An arc is one way to follow
// an edge, so a graph that is followed one way has one arc for each edge, and one that is followed both ways
// two.
#pragma once

#include <span>

#include "rv/foundation/ends.h"

namespace rv {

// The arcs of every node, in the order in which they are followed: those of node v are first[v] up to
// last[v].
struct Arcs {
    std::span<const Index> first;    // by node
    std::span<const Index> last;     // by node
    std::span<const Index> targets;  // by arc
    std::span<const Index> edges;    // by arc

    Index nodeLimit() const { return static_cast<Index>(first.size()); }
    Index degree(Index node) const { return last[node] - first[node]; }
    std::span<const Index> targetsOf(Index node) const { return targets.subspan(first[node], degree(node)); }
    std::span<const Index> edgesOf(Index node) const { return edges.subspan(first[node], degree(node)); }
};

// The nodes and edges of a graph in its orders.
struct GraphOrder {
    Index nodeCount = 0;
    Index edgeCount = 0;
    std::span<const Index> nodes;  // empty when they are 0 up to nodeCount, in that order
    std::span<const Index>
        edges;                   // empty when they stand in the order of their numbers, with gaps or without
    std::span<const Ends> ends;  // by edge

    template <class F>
    void forEachNode(F f) const {
        if (nodes.empty()) {
            for (Index node = 0; node < nodeCount; ++node) f(node);
        } else {
            for (const Index node : nodes) f(node);
        }
    }
    template <class F>
    void forEachEdge(F f) const {
        if (edges.empty()) {
            for (Index edge = 0; edge < ends.size(); ++edge) {
                if (ends[edge].source != kNoIndex) f(edge);
            }
        } else {
            for (const Index edge : edges) f(edge);
        }
    }
};

// What a search of a graph follows: no loops, and of parallel arcs one. All these arrays belong to somebody
// else.
struct SearchSpace {
    Arcs arcs;
    std::span<const Index> inDegrees;  // by node: the arcs that lead to it
    GraphOrder order;                  // of the graph as it is, with its loops and parallel edges

    Index nodeLimit() const { return arcs.nodeLimit(); }
    bool isIsolated(Index node) const { return inDegrees[node] == 0 && arcs.degree(node) == 0; }
};

}  // namespace rv
