// Cheapest paths between all pairs of nodes. Internal to the library, not installed.
//
// Nodes have numbers from 0. Costs of nodes count for those in between. Sums stay at the ends of the range of
// 32 bits; whether a cycle is negative is told from its sum in 32 bits, which wraps. Ties follow the order of
// nodes and edges.
//
// Floyd and Warshall 1962. O(n^3) time, in an order that keeps the rows at hand in the caches; O(n^2) space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "rv/kernels/arcs.h"
#include "rv/kernels/pulse.h"

namespace rv {

class PathMatrix {
public:
    struct Edge {
        std::size_t source;
        std::size_t target;
        int cost;
        bool isBothWays;
    };

    PathMatrix(std::vector<int> nodeCosts, std::vector<Edge> edges, Pulse& pulse)
        : m_size(nodeCosts.size()),
          m_nodeCosts(std::move(nodeCosts)),
          m_edges(std::move(edges)),
          m_pulse(pulse) {}

    // Finds all paths; false when there is a negative cycle.
    bool compute();

    // Of the path from a to b: 2147483647 and kNoIndex without one.
    int cost(std::size_t a, std::size_t b) const { return m_costs[a * m_size + b]; }
    Index lastEdge(std::size_t a, std::size_t b) const {
        return static_cast<Index>(m_lastEdges[a * m_size + b]);
    }

private:
    // A row of the matrix, or a copy of one.
    struct Row {
        std::int32_t* costs;
        std::int32_t* lastEdges;
    };
    Row row(std::size_t i) { return {m_costs.data() + i * m_size, m_lastEdges.data() + i * m_size}; }

    bool initialize();
    bool isNegativeCycle(std::size_t i, std::size_t k, const Row& rowOfI, const Row& rowOfK) const;
    void findPaths();
    bool findPathsInBlocks();
    void improveRow(const Row& from, const Row& via, std::size_t k, std::size_t end) const;
    static void improveSlowly(const Row& from, const Row& via, std::int64_t base, std::size_t end);
    template <bool kNegative>
    static void improve(const Row& from, const Row& via, std::int32_t base, std::size_t end);

    const std::size_t m_size;
    const std::vector<int> m_nodeCosts;
    const std::vector<Edge> m_edges;
    Pulse& m_pulse;
    std::vector<std::int32_t> m_costs;
    std::vector<std::int32_t> m_lastEdges;  // -1 for none
};

}  // namespace rv
