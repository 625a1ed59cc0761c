// Cheapest paths from one node where no cost is negative: the one loop of all searches for them. Internal to
// the library, not installed.
//
// Nodes are settled in the order of their distance, those of equal distance in the order in which they came
// to it. A node that is settled offers the ways through it to its neighbours, one after the other, and a
// neighbour takes what is shorter than all that it was offered before. Where all ways cost 1 this is
// breadth-first search.
//
// The labels say what a distance is: int, whose sums stay at 2147483647, or std::int64_t, whose sums are
// exact. Its greatest value is the distance of a node that is not reached.
//
// Dijkstra 1959, with a radix queue: O(n + m log C) time for costs up to C, close to O(n + m) for small ones;
// no bytes but those of the labels and 12 to 16 for every node that waits.
//
//   NearestLabels<int> labels(arcs.nodeLimit());
//   const NearestWays ways(NoCost(), ArcWays(arcs, [&](Index, Index edge) { return costs[edge]; }));
//   findNearest(ways, start, NearestBounds<int>(), labels, settled, pulse);
#pragma once

#include <concepts>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/nearest_queue.h"
#include "rv/kernels/pulse.h"

namespace rv {

struct EveryEdge {
    constexpr bool operator()(Index) const { return true; }
};

// The ways over some arcs, of edges that are followed that way.
template <class Cost, class IsFollowed = EveryEdge>
class ArcWays {
public:
    // cost(arc, edge) is that of a way, isFollowed(edge) whether there is one.
    explicit ArcWays(const Arcs& arcs, Cost cost, IsFollowed isFollowed = {})
        : m_arcs(arcs), m_cost(cost), m_isFollowed(isFollowed) {}

    // Calls f(target, edge, cost).
    template <class F>
    void forEach(Index node, F f) const {
        for (Index arc = m_arcs.first[node]; arc < m_arcs.last[node]; ++arc) {
            const Index edge = m_arcs.edges[arc];
            if (m_isFollowed(edge)) f(m_arcs.targets[arc], edge, m_cost(arc, edge));
        }
    }

private:
    Arcs m_arcs;
    Cost m_cost;
    IsFollowed m_isFollowed;
};

struct NoCost {
    constexpr int operator()(Index) const { return 0; }
};

// All ways out of a node: the sets one after the other. To leave a node other than the start costs
// leaving(node).
template <class Leaving, class... Sets>
class NearestWays {
public:
    explicit NearestWays(Leaving leaving, Sets... sets) : m_leaving(leaving), m_sets(sets...) {}

    auto leaving(Index node) const { return m_leaving(node); }
    template <class F>
    void forEach(Index node, F f) const {
        std::apply([&](const Sets&... sets) { (sets.forEach(node, f), ...); }, m_sets);
    }

private:
    Leaving m_leaving;
    std::tuple<Sets...> m_sets;
};

// By arc the cost of its edge. What reaches most of a graph costs less when it reads costs in this order.
template <class CostOf>
Buffer<int> costsByArc(const Arcs& arcs, CostOf costOf, Pulse& pulse) {
    Buffer<int> costs(arcs.edges.size());
    for (Index node = 0; node < arcs.nodeLimit(); ++node) {
        pulse.beat(1 + std::int64_t{arcs.degree(node)});
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) costs[arc] = costOf(arcs.edges[arc]);
    }
    return costs;
}

// What a search finds, by node: its distance, and the edge over which it is reached, kNoIndex at the start.
template <class D>
struct NearestLabels {
    using Distance = D;
    static constexpr D kUnreached = std::numeric_limits<D>::max();

    explicit NearestLabels(Index nodeLimit)
        : distances(nodeLimit, D{kUnreached}), edges(nodeLimit, Index{kNoIndex}) {}

    D distance(Index node) const { return distances[node]; }
    Index edge(Index node) const { return edges[node]; }
    void improve(Index node, D distance, Index edge) {
        distances[node] = distance;
        edges[node] = edge;
    }

    Buffer<D> distances;
    Buffer<Index> edges;
};

// The distances alone, for one search after another, each of which costs what it reaches.
template <class D>
class ReusedNearestLabels {
public:
    using Distance = D;

    // Before each search. What the last one found is gone, also if it was broken off.
    void begin(Index nodeLimit) {
        for (const Index node : m_reached) m_distances[node] = NearestLabels<D>::kUnreached;
        m_reached.clear();
        if (nodeLimit > m_distances.size()) m_distances.resize(nodeLimit, NearestLabels<D>::kUnreached);
    }

    D distance(Index node) const { return m_distances[node]; }
    void improve(Index node, D distance, Index) {
        if (m_distances[node] == NearestLabels<D>::kUnreached) m_reached.push_back(node);
        m_distances[node] = distance;
    }

private:
    Buffer<D> m_distances;
    Buffer<Index> m_reached;
};

template <class D>
struct NearestBounds {
    D greatest = std::numeric_limits<D>::max();  // nodes further away are not reached
    Index stop = kNoIndex;                       // the search ends when this node is settled
};

// REQUIRES: sums of std::int64_t stay in its range.
template <class D>
D sumOfDistances(D distance, std::int64_t cost) {
    if constexpr (std::same_as<D, int>) {
        return saturate(std::int64_t{distance} + cost);
    } else {
        return distance + cost;
    }
}

// Appends the nodes that it settles. REQUIRES: the labels are those of no node yet.
template <class Ways, class Labels, class D = typename Labels::Distance>
void findNearest(const Ways& ways, Index start, const NearestBounds<D>& bounds, Labels& labels,
                 Buffer<Index>& settled, Pulse& pulse) {
    NearestQueue<D> queue;
    labels.improve(start, 0, kNoIndex);
    queue.push(0, start);
    while (!queue.isEmpty()) {
        const auto [distance, node] = queue.pop();
        if (labels.distance(node) != distance) continue;  // it came to a smaller one
        settled.push_back(node);
        if (node == bounds.stop) return;
        const D left = node == start ? D{0} : sumOfDistances(distance, ways.leaving(node));
        std::int64_t steps = 1;
        ways.forEach(node, [&](Index target, Index edge, auto cost) {
            ++steps;
            const D offered = sumOfDistances(left, cost);
            if (offered > bounds.greatest || offered >= labels.distance(target)) return;
            labels.improve(target, offered, edge);
            queue.push(offered, target);
        });
        pulse.beat(steps);
    }
}

}  // namespace rv
