// Cheapest paths from one node to all, whatever the costs, and a tree of such paths. Internal to the library,
// not installed.
//
// The method is chosen by what the node reaches: where all edges are followed one way and there is no cycle,
// each node looks at the arcs into it, in topological order; where no cost is below 0, nodes are settled in
// the order of their distance (nearest.h), and those 2147483647 and further away are not reached; else it
// goes in passes (relaxing.h). Sums are exact.
#pragma once

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "rv/kernels/nearest.h"
#include "rv/kernels/relaxing.h"
#include "rv/kernels/topological_order.h"

namespace rv {

class CheapestTree {
public:
    static constexpr std::int64_t kUnreached = NearestLabels<std::int64_t>::kUnreached;

    // The out-arcs of a graph, and its in-arcs by in(), which is called if need be. The edges that isBothWays
    // tells are followed against their direction as well. anyBothWays and anyNegative are false where it is
    // known that no edge is such a one, or has a cost below 0.
    template <class In, class CostOf, class IsBothWays>
    CheapestTree(const Arcs& out, In in, Index start, bool anyBothWays, IsBothWays isBothWays,
                 bool anyNegative, CostOf costOf, Pulse& pulse)
        : m_pulse(pulse) {
        const auto cost = [&](Index, Index edge) { return std::int64_t{costOf(edge)}; };
        const NearestWays oneWay(NoCost(), ArcWays(out, cost));
        if (!anyBothWays) {
            find(oneWay, true, out, in, start, anyNegative, costOf);
        } else {
            const NearestWays ways(NoCost(), ArcWays(out, cost), ArcWays(in(), cost, isBothWays));
            const Part part = reach(ways, out.nodeLimit(), start);
            const bool staysOneWay = std::ranges::none_of(
                part.nodes, [&](Index node) { return std::ranges::any_of(in().edgesOf(node), isBothWays); });
            find(ways, staysOneWay, out, in, start, anyNegative, costOf);
        }
    }

    // Whether there is a negative cycle; then distances and edges are what was found until then.
    bool hasNegativeCycle() const { return m_hasNegativeCycle; }
    bool covers(Index node) const { return node < m_edges.size(); }
    // kUnreached for a node that is not reached.
    std::int64_t distance(Index node) const {
        if (!m_exact.empty()) return m_exact[node];
        return m_near[node] == NearestLabels<int>::kUnreached ? kUnreached : m_near[node];
    }
    // By node; what leaves the range of 32 bits stays at its end.
    Buffer<int> takeDistances() {
        if (m_exact.empty()) return std::move(m_near);
        Buffer<int> distances(m_exact.size());
        std::ranges::transform(m_exact, distances.begin(), saturate);
        return distances;
    }
    // By node the edge by which it is reached; kNoIndex where it is the start, or is not reached.
    Buffer<Index>& edges() { return m_edges; }
    Index edge(Index node) const { return m_edges[node]; }

private:
    // What a node reaches.
    struct Part {
        Buffer<Index> nodes;
        bool hasNegativeCost = false;
    };

    template <class Ways>
    Part reach(const Ways& ways, Index nodeLimit, Index start) {
        Part part;
        std::vector<bool> isReached(nodeLimit);
        isReached[start] = true;
        part.nodes.push_back(start);
        for (std::size_t i = 0; i < part.nodes.size(); ++i) {
            std::int64_t steps = 1;
            ways.forEach(part.nodes[i], [&](Index target, Index, std::int64_t cost) {
                ++steps;
                part.hasNegativeCost |= cost < 0;
                if (isReached[target]) return;
                isReached[target] = true;
                part.nodes.push_back(target);
            });
            m_pulse.beat(steps);
        }
        return part;
    }

    template <class Ways, class In, class CostOf>
    void find(const Ways& ways, bool isOneWay, const Arcs& out, In in, Index start, bool anyNegative,
              CostOf costOf) {
        const Index nodeLimit = out.nodeLimit();
        NearestLabels<std::int64_t> labels(0);
        if (const auto order = isOneWay ? topologicalOrderFrom(out, start, m_pulse) : Buffer<Index>();
            !order.empty()) {
            labels = NearestLabels<std::int64_t>(nodeLimit);
            relaxInto(order, in(), start, NoCost(), costOf, labels, m_pulse);
        } else {
            const Part part = anyNegative ? reach(ways, nodeLimit, start) : Part();
            if (!part.hasNegativeCost) return findNearest(ways, nodeLimit, start);
            labels = NearestLabels<std::int64_t>(nodeLimit);
            m_hasNegativeCycle =
                !relaxInPasses(ways, start, static_cast<Index>(part.nodes.size()), labels, m_pulse);
        }
        m_exact = std::move(labels.distances);
        m_edges = std::move(labels.edges);
    }

    template <class Ways>
    void findNearest(const Ways& ways, Index nodeLimit, Index start) {
        NearestLabels<int> labels(nodeLimit);
        Buffer<Index> settled;
        rv::findNearest(ways, start, NearestBounds<int>(), labels, settled, m_pulse);
        m_near = std::move(labels.distances);
        m_edges = std::move(labels.edges);
    }

    Pulse& m_pulse;
    bool m_hasNegativeCycle = false;
    Buffer<int> m_near;            // by node, if no cost is below 0 ...
    Buffer<std::int64_t> m_exact;  // ... else, or without cycle
    Buffer<Index> m_edges;
};

}  // namespace rv
