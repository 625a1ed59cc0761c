// The flow graph of a minimum cost flow without negative costs, as arrays, and the searches in it. Internal
// to the library, not installed.
//
// It stands for what the flow core would build of the caller's graph, for a run into which no subclass can
// look: the same nodes and edges, and the same order of the arcs with residual capacity at each node, so that
// it finds the paths that a Dijkstra traversal of the flow graph would find.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

#include "rv/flow/minimum_cost_flow.h"
#include "rv/foundation/buffer.h"

namespace rv {

// Nodes by their distances, equal ones in the order in which they came: a radix heap (Ahuja, Mehlhorn, Orlin
// and Tarjan 1990). A bucket holds the entries whose highest bit that differs from the last distance taken is
// the same, in the order in which they came, which they keep when they are spread over the buckets below.
class DistanceQueue {
public:
    // REQUIRES: the distance is not below that of the node taken last, and fits in 31 bits.
    void add(std::uint32_t distance, std::uint32_t node);
    // None at the end. A node that has come nearer has several entries, of which the one counts that is its
    // distance.
    template <class IsDistance>
    std::optional<std::uint32_t> takeNearest(IsDistance isDistance);

private:
    struct Entry {
        std::uint32_t distance;
        std::uint32_t node;
    };

    std::array<std::vector<Entry>, 32> m_buckets;
    std::uint32_t m_filled = 0;  // a bit for each bucket
    std::uint32_t m_last = 0;    // the distance of all entries of the first bucket
    std::size_t m_taken = 0;     // of these
};

class CostNetwork {
public:
    // REQUIRES: source and sink are nodes of the input's graph, and no cost is negative.
    explicit CostNetwork(const RVMinimumCostFlowInputData& input);

    // Whether there is a path from source to sink with residual capacity; finds a cheapest one.
    bool findPath();
    // Of the path found last, until flow is pushed along it: its least residual capacity, and its cost per
    // unit.
    int pathCapacity() const;
    std::int64_t pathCost() const;
    // Pushes an amount along it, at most its capacity.
    void push(int amount);

    // The flows of the caller's edges, by dense index.
    Buffer<int> flows(const RVGraph* graph) const;

private:
    class Builder;

    // A forward edge of the flow graph. The i-th one is arc 2 i, its backward edge is arc 2 i + 1.
    struct Edge {
        std::uint32_t source;
        std::uint32_t target;
        int capacity;
        int cost;
        RVEdge* original;  // the caller's edge, whose flow is this one's; or none
        int flow = 0;
    };
    // The arcs with residual capacity stand in the arrays from `begin` to `end`, behind which there is room
    // for all others.
    struct Node {
        std::int64_t potential = 0;
        std::int64_t label = 0;  // the potential and the distance from the start
        std::uint32_t begin = 0;
        std::uint32_t end = 0;
        std::uint32_t lastPlace = 0;  // of the arc that led to the label
    };
    struct Target {
        std::uint32_t node;
        int cost;
    };

    static bool isForward(std::uint32_t arc) { return (arc & 1U) == 0; }
    int residualCapacity(std::uint32_t arc) const {
        const Edge& edge = m_edges[arc / 2];
        return isForward(arc) ? edge.capacity - edge.flow : edge.flow;
    }
    void attach(std::uint32_t arc);
    void detach(std::uint32_t place);

    std::vector<Edge> m_edges;
    std::vector<Node> m_nodes;
    std::vector<Target> m_targets;      // by place
    std::vector<std::uint32_t> m_arcs;  // by place
    std::uint32_t m_start = 0;
    std::uint32_t m_sink = 0;
    DistanceQueue m_queue;
    std::int64_t m_greatest = 0;        // distance of the last search
    std::vector<std::uint32_t> m_path;  // the places of its arcs, the last one first
};

}  // namespace rv
