// The snapshot of a graph with the costs and directions of a question about cheapest paths. Internal to the
// library, not installed.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "rv/framework/graph_snapshot.h"
#include "rv/kernels/nearest.h"
#include "rv/shortestpaths/shortest_paths_data.h"

namespace rv {

// Of an arc: by its edge, or once they have been gathered by itself.
struct PathCosts {
    int operator()(Index arc, Index edge) const {
        return byArc != nullptr ? byArc[arc] : edge < byEdge.size() ? byEdge[edge] : 0;
    }
    std::span<const int> byEdge;
    const int* byArc = nullptr;
};

class PathView {
public:
    explicit PathView(const RVPathCostInputData& input);
    PathView(const PathView&) = delete;
    PathView& operator=(const PathView&) = delete;

    const FlatGraph& flat() const { return *m_flat; }
    int cost(Index edge) const { return m_costs(0, edge); }
    int costOfNode(Index node) const { return node < m_nodeCosts.size() ? m_nodeCosts[node] : 0; }
    bool hasNodeCosts() const { return !m_nodeCosts.empty(); }
    // Whether the edge is followed both ways.
    bool isUndirected(Index edge) const {
        return m_isUndirected || (edge < m_directed.size() && m_directed[edge] == 0);
    }
    bool hasUndirectedEdges() const { return m_isUndirected || m_isMixed; }
    Index otherEnd(Index edge, Index node) const {
        const Ends ends = m_flat->order().ends[edge];
        return ends.target == node ? ends.source : ends.target;
    }

    // Calls f(ways) with the ways of the graph in its orders, where undirected edges are followed back after
    // all others, in graph order.
    template <class F>
    void withPlainWays(F f) const {
        const ArcWays out(m_flat->out(), m_costs);
        if (!hasUndirectedEdges()) return f(NearestWays(NoCost(), out));
        if (m_flat->areListsInGraphOrder()) {
            const auto isFollowed = [this](Index edge) { return isUndirected(edge); };
            return f(NearestWays(NoCost(), out, ArcWays(m_flat->in(), m_costs, isFollowed)));
        }
        const SortedArcs back = undirectedBack(true);
        f(NearestWays(NoCost(), out, ArcWays(back.arcs, m_costs, EveryEdge())));
    }

    // Calls f(ways) with the ways of the graph as traversals prepare it: of parallel arcs the cheapest
    // counts, and where all edges are undirected, arcs back come in reverse graph order. A search that starts
    // with costs of 0 and more finds the cheapest of parallel arcs itself if each of them is an edge.
    template <class F>
    void withTraversalWays(bool onlyNearest, bool gathersCosts, Pulse& pulse, F f) const {
        const bool isPlain = m_isUndirected ? m_flat->undirected().parallels.isEmpty()
                                            : !m_isMixed && (onlyNearest || !m_flat->directed().leavesOut());
        if (isPlain) {
            const Arcs& arcs = m_isUndirected ? m_flat->undirected().space.arcs : m_flat->out();
            PathCosts costs = m_costs;
            Buffer<int> byArc;
            if (gathersCosts) {
                byArc = costsByArc(
                    arcs, [this](Index edge) { return cost(edge); }, pulse);
                costs.byArc = byArc.data();
            }
            return f(NearestWays(NoCost(), ArcWays(arcs, costs)));
        }
        const SortedArcs back = undirectedBack(!m_isUndirected);
        const Kept kept = onlyNearest && !m_isUndirected ? Kept() : cheapestOfParallels(back.arcs);
        f(NearestWays(NoCost(), ArcWays(m_flat->out(), m_costs, IsIn{kept.out}),
                      ArcWays(back.arcs, m_costs, IsIn{kept.back})));
    }

private:
    // By edge whether it is followed, along its direction and back; empty where all are.
    struct Kept {
        std::vector<bool> out;
        std::vector<bool> back;
    };
    struct IsIn {
        const std::vector<bool>& edges;
        bool operator()(Index edge) const { return edges.empty() || edges[edge]; }
    };

    SortedArcs undirectedBack(bool inGraphOrder) const;
    Kept cheapestOfParallels(const Arcs& back) const;
    void keepCheapest(const Arcs& first, const Arcs& second, Kept& kept) const;

    std::shared_ptr<const FlatGraph> m_flat;
    bool m_isUndirected;
    bool m_isMixed = false;  // some edges are undirected
    Buffer<int> m_gathered[3];
    PathCosts m_costs;
    std::span<const int> m_nodeCosts;
    std::span<const int> m_directed;
};

// Appends the edges of a path backward, if there is one. The labels of a search that found no cheapest paths
// may lead in a circle.
template <class Labels>
bool listPathBackward(const PathView& view, const Labels& labels, Index start, Index finish,
                      Buffer<Index>& path) {
    const std::size_t longest = view.flat().order().nodeCount;
    for (Index node = finish; node != start;) {
        const Index edge = labels.edge(node);
        if (edge == kNoIndex || path.size() > longest) return false;
        path.push_back(edge);
        node = view.otherEnd(edge, node);
    }
    return true;
}

}  // namespace rv
