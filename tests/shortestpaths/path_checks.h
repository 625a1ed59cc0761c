// Paths by enumeration, to compare algorithms with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <set>
#include <vector>

#include "tests/algorithm_checks.h"

namespace rvtest {

// Walks along a graph as it is drawn.
class PathOracle {
public:
    PathOracle(const RVGraph* graph, Ways ways, bool withNodeCosts)
        : m_graph(graph), m_ways(ways), m_withNodeCosts(withNodeCosts), m_steps(graph, ways) {}

    // Edges and the nodes in between; start and finish may be the same.
    std::int64_t costOf(const std::vector<RVEdge*>& path, const RVNode* start) const {
        std::int64_t sum = 0;
        const RVNode* at = start;
        for (const RVEdge* edge : path) {
            if (at != start) sum += costOf(at);
            sum += number(edge, 0, 0);
            at = follow(edge, at, m_ways);
        }
        return sum;
    }
    std::int64_t costOf(const RVNode* node) const { return m_withNodeCosts ? number(node, 0, 0) : 0; }

    // All paths of at least one edge that repeat no node, except that a path may come back to its start.
    void forEachPath(RVNode* start, RVNode* finish,
                     const std::function<void(const std::vector<RVEdge*>&)>& f) {
        m_visited = {start};
        m_path.clear();
        extend(start, finish, f);
    }
    // Of such paths, and of none where start and finish are the same.
    std::optional<std::int64_t> cheapest(RVNode* start, RVNode* finish) {
        std::optional<std::int64_t> best;
        if (start == finish) best = 0;
        forEachPath(start, finish, [&](const std::vector<RVEdge*>& path) {
            const std::int64_t cost = costOf(path, start);
            if (!best || cost < *best) best = cost;
        });
        return best;
    }
    // The costs of all paths that repeat no node at all.
    std::multiset<std::int64_t> simplePathCosts(RVNode* start, RVNode* finish) {
        std::multiset<std::int64_t> costs;
        if (start == finish) return {0};
        forEachPath(start, finish, [&](const auto& path) { costs.insert(costOf(path, start)); });
        return costs;
    }
    // Whether some cycle on the way, or behind the start where no finish is given, costs less than 0 with the
    // costs of all its nodes.
    bool hasNegativeCycle(RVNode* start, RVNode* finish = nullptr) {
        bool found = false;
        for (RVNode* node : *m_graph->pNodeList()) {
            if (!m_steps.reaches(start, node) || (finish != nullptr && !m_steps.reaches(node, finish)))
                continue;
            forEachPath(node, node, [&](const std::vector<RVEdge*>& path) {
                if (costOf(path, node) + costOf(node) < 0) found = true;
            });
        }
        return found;
    }

    // That a list of edges leads from start to finish, at that cost.
    void expectPath(const RVEdgeDList& list, RVNode* start, RVNode* finish, std::int64_t cost) const {
        std::vector<RVEdge*> path;
        const RVNode* at = start;
        for (RVEdge* edge : list) {
            ASSERT_EQ(edge->pOwnerGraph(), m_graph);
            path.push_back(edge);
            at = follow(edge, at, m_ways);
            ASSERT_NE(at, nullptr) << text(list);
        }
        EXPECT_EQ(at, finish) << text(list);
        EXPECT_EQ(costOf(path, start), cost) << text(list);
    }

private:
    void extend(RVNode* at, RVNode* finish, const std::function<void(const std::vector<RVEdge*>&)>& f) {
        for (RVEdge* edge : *m_graph->pEdgeList()) {
            RVNode* const next = follow(edge, at, m_ways);
            if (next == nullptr) continue;
            m_path.push_back(edge);
            if (next == finish) {
                f(m_path);
            } else if (std::find(m_visited.begin(), m_visited.end(), next) == m_visited.end()) {
                m_visited.push_back(next);
                extend(next, finish, f);
                m_visited.pop_back();
            }
            m_path.pop_back();
        }
    }

    const RVGraph* m_graph;
    Ways m_ways;
    bool m_withNodeCosts;
    Distances m_steps;
    std::vector<RVNode*> m_visited;
    std::vector<RVEdge*> m_path;
};

}  // namespace rvtest
