// Where a search of a whole graph starts. Internal to the library, not installed.
//
// At the first node of smallest in-degree that has not been reached, in node order; when that has no arcs, at
// the source of the first edge, in edge order and without loops, that has not been reached; and so on.
// Isolated nodes come last, in node order.
//
// Ends when all nodes are reached. O(n + m) time; besides, 4 bytes for every node that the nodes of smallest
// in-degree do not reach.
#pragma once

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

// Search has
//   bool isReached(Index node)
//   Index reached()              how many nodes are
//   void searchFrom(Index node)  reaches the node and what can be reached from there
template <class Search>
class SearchStarts {
public:
    SearchStarts(const SearchSpace& space, Search& search) : m_space(space), m_search(search) {}

    void searchAll() {
        const Index least = countAndFindLeastDegree();
        m_space.order.forEachNode([&](Index node) {
            if (m_space.inDegrees[node] == least && !isDone() && !m_space.isIsolated(node)) start(node);
        });
        if (!isDone()) searchByDegree();
        if (m_connected == m_space.order.nodeCount) return;
        m_space.order.forEachNode([&](Index node) {
            if (m_space.isIsolated(node)) m_search.searchFrom(node);
        });
    }

private:
    bool isDone() const { return m_search.reached() == m_connected; }

    Index countAndFindLeastDegree() {
        Index least = kNoIndex;
        m_space.order.forEachNode([&](Index node) {
            if (m_space.isIsolated(node)) return;
            ++m_connected;
            least = std::min(least, m_space.inDegrees[node]);
        });
        return least;
    }

    void start(Index node) {
        if (m_search.isReached(node)) return;
        m_search.searchFrom(node);
        if (m_space.arcs.degree(node) == 0) startAtEdge();
    }

    void startAtEdge() {
        const GraphOrder& order = m_space.order;
        const std::size_t limit = order.edges.empty() ? order.ends.size() : order.edges.size();
        for (; m_edge < limit; ++m_edge) {
            const Ends ends = order.ends[order.edges.empty() ? m_edge : order.edges[m_edge]];
            if (ends.source == ends.target || m_search.isReached(ends.source)) continue;  // or no edge
            m_search.searchFrom(ends.source);
            return;
        }
    }

    // A counting sort of the nodes that are left.
    void searchByDegree() {
        const auto forEachLeft = [&](auto f) {
            m_space.order.forEachNode([&](Index node) {
                if (!m_search.isReached(node) && !m_space.isIsolated(node)) f(node, m_space.inDegrees[node]);
            });
        };
        Index greatest = 0;
        forEachLeft([&](Index, Index degree) { greatest = std::max(greatest, degree); });
        Buffer<Index> begins(std::size_t{greatest} + 2, Index{0});
        forEachLeft([&](Index, Index degree) { ++begins[degree + 1]; });
        std::partial_sum(begins.begin(), begins.end(), begins.begin());
        Buffer<Index> nodes(begins.back());
        forEachLeft([&](Index node, Index degree) { nodes[begins[degree]++] = node; });
        for (std::size_t i = 0; i < nodes.size() && !isDone(); ++i) start(nodes[i]);
    }

    const SearchSpace& m_space;
    Search& m_search;
    Index m_connected = 0;   // nodes that are not isolated
    std::size_t m_edge = 0;  // in edge order; all sources before it are reached
};

}  // namespace rv
