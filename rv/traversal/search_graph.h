// The normalised graph of a search, as arrays. Internal to the library, not installed.
//
// It stands for the working copy of a run into which no subclass can look: the same nodes and edges in the
// same orders, after reverse edges have come in and self-loops and parallel edges have gone. Nodes are
// numbered from 0 as they stand in the caller's graph, edges likewise, reverse ones behind them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "rv/traversal/traversal.h"

namespace rv {

class SearchGraph {
public:
    using Index = std::uint32_t;
    static constexpr Index kNone = 0xFFFFFFFF;

    struct OutEdge {
        Index target;
        Index edge;
    };

    // Undirected: every edge is followed both ways.
    static SearchGraph undirected(const RVGraph* graph) { return {graph, false, {}}; }
    static SearchGraph directed(const RVGraph* graph) { return {graph, true, {}}; }
    // As the input says: directed, but for single edges, or undirected.
    static SearchGraph of(const RVTraversalInputData& input);

    Index size() const { return static_cast<Index>(m_nodes.size()); }
    RVNode* pNode(Index node) const { return m_nodes[node]; }
    Index indexOf(const RVNode* node) const { return m_places[placeOf(node)]; }
    // The caller's edge; also that of a reverse edge.
    RVEdge* pEdge(Index edge) const { return m_edges[edge]; }

    // In out-edge order.
    std::span<const OutEdge> outEdges(Index node) const {
        return {m_outEdges.data() + m_begins[node], m_begins[node + 1] - m_begins[node]};
    }
    bool isIsolated(Index node) const { return m_inDegrees[node] == 0 && outEdges(node).empty(); }

    // Calls f with the caller's edges that were left out as parallel to an edge, in a directed search in the
    // order of its source's out-list; and with the self-loops of a node, in graph order.
    template <class F>
    void forEachParallel(Index edge, F f) const {
        m_parallels.forEach(edge, f);
    }
    template <class F>
    void forEachLoop(Index node, F f) const {
        m_loops.forEach(node, f);
    }

    // Calls f with the nodes from which a search of the whole graph starts, one after the other: with the
    // first node of smallest in-degree that has not been reached; when that has no out-edges, with the source
    // of the first edge that was not traversed; at last with the isolated nodes. REQUIRES: f reaches its node
    // and what can be reached from there.
    template <class IsReached, class F>
    void forEachStart(IsReached isReached, F f) const {
        auto edge = m_sources.begin();
        for (const Index node : nodesByInDegree()) {
            if (isReached(node)) continue;
            f(node);
            if (!outEdges(node).empty()) continue;
            while (edge != m_sources.end() && isReached(*edge)) ++edge;
            if (edge != m_sources.end()) f(*edge);
        }
        for (Index node = 0; node < size(); ++node) {
            if (isIsolated(node)) f(node);
        }
    }

private:
    struct Ends {
        Index source;
        Index target;
    };
    // Edges by what they belong to, in the order in which they came.
    class Chains {
    public:
        void add(Index owner, RVEdge* edge);
        template <class F>
        void forEach(Index owner, F f) const {
            if (owner >= m_ends.size()) return;
            for (Index i = m_ends[owner].first; i != kNone; i = m_links[i].next) f(m_links[i].edge);
        }

    private:
        struct ChainEnds {
            Index first = kNone;
            Index last = kNone;
        };
        struct Link {
            RVEdge* edge;
            Index next;
        };
        std::vector<ChainEnds> m_ends;  // by owner
        std::vector<Link> m_links;
    };

    SearchGraph(const RVGraph* graph, bool directed, const std::vector<RVEdge*>& twoWayEdges);
    Ends endsOf(const RVEdge* edge) const {
        return {indexOf(edge->pSourceNode()), indexOf(edge->pTargetNode())};
    }
    std::vector<Index> representatives(const std::vector<Ends>& ends, bool directed) const;
    std::vector<Index> nodesByInDegree() const;

    std::vector<RVNode*> m_nodes;
    std::vector<Index> m_places;  // by dense index
    std::vector<RVEdge*> m_edges;
    std::vector<Index> m_begins;  // of each node's part of m_outEdges
    std::vector<OutEdge> m_outEdges;
    std::vector<Index> m_inDegrees;
    std::vector<Index> m_sources;  // of the edges in graph order, in an undirected search one way only
    Chains m_parallels;
    Chains m_loops;
};

}  // namespace rv
