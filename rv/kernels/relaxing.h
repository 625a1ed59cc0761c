// Cheapest paths where costs may be below 0: the distances and last edges of nodes, made better way by way.
// Internal to the library, not installed.
//
// Ways, labels and distances are those of nearest.h. A node keeps the first of equally cheap ways that it is
// offered.
#pragma once

#include <cstdint>
#include <span>
#include <utility>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/nearest.h"
#include "rv/kernels/pulse.h"

namespace rv {

// The nodes in an order, each of which offers its ways, as often as it is listed. Loops are not followed.
// O(n + m) time for every node once.
template <class Ways, class Labels>
void relaxInOrder(const Ways& ways, std::span<const Index> order, Labels& labels, Pulse& pulse) {
    for (const Index node : order) {
        std::int64_t steps = 1;
        const auto distance = labels.distance(node);
        if (distance != Labels::kUnreached) {
            ways.forEach(node, [&](Index target, Index edge, auto cost) {
                ++steps;
                const auto offered = sumOfDistances(distance, cost);
                if (target != node && offered < labels.distance(target))
                    labels.improve(target, offered, edge);
            });
        }
        pulse.beat(steps);
    }
}

// The nodes in a topological order, each of which looks at the arcs into it. To leave a node other than the
// start costs leaving(node). O(n + m) time.
template <class Leaving, class CostOf, class Labels>
void relaxInto(std::span<const Index> order, const Arcs& in, Index start, Leaving leaving, CostOf costOf,
               Labels& labels, Pulse& pulse) {
    labels.improve(start, 0, kNoIndex);
    for (const Index node : order) {
        pulse.beat(1 + std::int64_t{in.degree(node)});
        for (Index arc = in.first[node]; arc < in.last[node]; ++arc) {
            const Index source = in.targets[arc];
            auto before = labels.distance(source);
            if (before != Labels::kUnreached && source != start)
                before = sumOfDistances(before, leaving(source));
            if (before == Labels::kUnreached) continue;
            const auto offered = sumOfDistances(before, costOf(in.edges[arc]));
            if (offered < labels.distance(node)) labels.improve(node, offered, in.edges[arc]);
        }
    }
}

// In passes, in each of which those nodes offer their ways whose distance has fallen in the one before, in
// the order in which it fell first. False: there is a negative cycle, and the labels are what they had come
// to. It is found after as many passes as there are nodes to be reached, or once a distance is below what any
// path that repeats no node can cost.
//
// Bellman 1958, Ford 1956. O(n m) time.
// REQUIRES: no cost is below -2^32, that of an edge with a node.
template <class Ways>
bool relaxInPasses(const Ways& ways, Index start, Index nodeCount, NearestLabels<std::int64_t>& labels,
                   Pulse& pulse) {
    Buffer<Index> current(1, start);
    Buffer<Index> next;
    Buffer<Index> listedIn(labels.edges.size(), Index{0});  // by node, the last pass that lists it as next
    const std::int64_t least = -(std::int64_t{1} << 32) * nodeCount;
    labels.improve(start, 0, kNoIndex);
    for (Index pass = 1; !current.empty() && pass <= nodeCount; ++pass) {
        next.clear();
        for (const Index node : current) {
            const std::int64_t distance = labels.distance(node);
            if (distance < least) return false;
            std::int64_t steps = 1;
            ways.forEach(node, [&](Index target, Index edge, std::int64_t cost) {
                ++steps;
                if (distance + cost >= labels.distance(target)) return;
                labels.improve(target, distance + cost, edge);
                if (std::exchange(listedIn[target], pass) != pass) next.push_back(target);
            });
            pulse.beat(steps);
        }
        std::swap(current, next);
    }
    return current.empty();
}

}  // namespace rv
