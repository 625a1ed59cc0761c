// The part of a graph that lies on ways from one node to another, as a graph of its own. Internal to the
// library, not installed.
//
// Its nodes and its ways are numbered from 0 in graph order, the ways back over edges that are followed both
// ways after all others. O(n + m) time and space.
#pragma once

#include <algorithm>
#include <vector>

#include "rv/foundation/buffer.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/pulse.h"

namespace rv {

class PartBetween {
public:
    // isBothWays(edge) tells which edges are; anyBothWays is false if there are none.
    template <class IsBothWays>
    PartBetween(const FlatGraph& graph, Index start, Index finish, bool anyBothWays, IsBothWays isBothWays,
                Pulse& pulse) {
        const auto reach = [&](const Arcs& along, const Arcs& against, Index from) {
            std::vector<bool> isReached(along.nodeLimit());
            Buffer<Index> queue(1, from);
            isReached[from] = true;
            const auto follow = [&](Index target) {
                if (isReached[target]) return;
                isReached[target] = true;
                queue.push_back(target);
            };
            for (std::size_t i = 0; i < queue.size(); ++i) {
                const Index node = queue[i];
                pulse.beat(1 + std::int64_t{along.degree(node)});
                std::ranges::for_each(along.targetsOf(node), follow);
                if (!anyBothWays) continue;
                for (Index arc = against.first[node]; arc < against.last[node]; ++arc) {
                    if (isBothWays(against.edges[arc])) follow(against.targets[arc]);
                }
            }
            return isReached;
        };
        const std::vector<bool> isReached = reach(graph.out(), graph.in(), start);
        if (!isReached[finish]) return;
        const std::vector<bool> isReaching = reach(graph.in(), graph.out(), finish);

        const GraphOrder order = graph.order();
        Buffer<Index> numbers(graph.out().nodeLimit(), Index{kNoIndex});
        order.forEachNode([&](Index node) {
            if (!isReached[node] || !isReaching[node]) return;
            numbers[node] = static_cast<Index>(m_nodes.size());
            m_nodes.push_back(node);
        });
        const auto add = [&](Index edge, Index source, Index target) {
            if (numbers[source] == kNoIndex || numbers[target] == kNoIndex) return;
            m_edges.push_back(edge);
            m_ends.push_back({numbers[source], numbers[target]});
        };
        order.forEachEdge([&](Index edge) { add(edge, order.ends[edge].source, order.ends[edge].target); });
        m_oneWayCount = static_cast<Index>(m_edges.size());
        if (anyBothWays) {
            order.forEachEdge([&](Index edge) {
                if (isBothWays(edge)) add(edge, order.ends[edge].target, order.ends[edge].source);
            });
        }
        m_start = numbers[start];
        m_finish = numbers[finish];
        FlatGraph::Parts& parts = m_flat.rebuild();
        parts.nodeLimit = parts.nodeCount = static_cast<Index>(m_nodes.size());
        parts.edgeCount = static_cast<Index>(m_edges.size());
        parts.ends = m_ends;
    }

    // Where nothing leads from the start to the finish, nothing else may be asked for.
    bool exists() const { return !m_nodes.empty(); }
    const FlatGraph& flat() const { return m_flat; }
    std::span<const Ends> ends() const { return m_ends; }
    Index start() const { return m_start; }
    Index finish() const { return m_finish; }
    bool hasWaysBack() const { return m_oneWayCount < m_edges.size(); }

    // The numbers in the graph, by those of the part.
    std::span<const Index> nodes() const { return m_nodes; }
    std::span<const Index> edges() const { return m_edges; }

private:
    Buffer<Index> m_nodes;
    Buffer<Index> m_edges;
    Buffer<Ends> m_ends;
    Index m_oneWayCount = 0;
    Index m_start = kNoIndex;
    Index m_finish = kNoIndex;
    FlatGraph m_flat;
};

}  // namespace rv
