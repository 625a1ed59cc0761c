// The neighbours of the nodes of a graph, as path tests ask for them: nodes by dense index. Internal to the
// library.
//
// anyOut(node, f) and anyIn(node, f) call f(neighbour, edge) for the edges from or to a node until it gives
// true, and say whether it did.
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "rv/foundation/graph.h"

namespace rv {

// Read from the lists of the graph, which may change.
class ListNeighbours {
public:
    explicit ListNeighbours(const RVGraph* graph) {
        m_nodes.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));
        for (const RVNode* node : *graph->pNodeList()) noteNode(node);
    }
    // A node has come in.
    void noteNode(const RVNode* node) { m_nodes[static_cast<std::size_t>(node->denseIndex())] = node; }

    int outDegree(int node) const { return at(node)->outDegree(); }
    int inDegree(int node) const { return at(node)->inDegree(); }
    template <class F>
    bool anyOut(int node, F f) const {
        for (RVEdge* edge : *at(node)->pOutEdgeList()) {
            if (f(edge->pTargetNode()->denseIndex(), edge)) return true;
        }
        return false;
    }
    template <class F>
    bool anyIn(int node, F f) const {
        for (RVEdge* edge : *at(node)->pInEdgeList()) {
            if (f(edge->pSourceNode()->denseIndex(), edge)) return true;
        }
        return false;
    }

private:
    const RVNode* at(int node) const { return m_nodes[static_cast<std::size_t>(node)]; }

    std::vector<const RVNode*> m_nodes;  // by dense index
};

// Arrays beside a graph whose edges are only inverted: several times as fast to walk.
class ArrayNeighbours {
public:
    explicit ArrayNeighbours(const RVGraph* graph) {
        const auto limit = static_cast<std::size_t>(graph->nodeIndexLimit());
        m_ranges.resize(limit);
        m_places.resize(static_cast<std::size_t>(graph->edgeIndexLimit()));
        m_entries.reserve(2 * static_cast<std::size_t>(graph->numberOfEdges()));
        for (const RVNode* node : *graph->pNodeList()) {
            Range& range = m_ranges[static_cast<std::size_t>(node->denseIndex())];
            range.begin = m_entries.size();
            for (RVEdge* edge : *node->pOutEdgeList()) {
                places(edge).source = m_entries.size();
                m_entries.push_back({edge, edge->pTargetNode()->denseIndex()});
            }
            range.firstIn = m_entries.size();
            for (RVEdge* edge : *node->pInEdgeList()) {
                places(edge).target = m_entries.size();
                m_entries.push_back({edge, edge->pSourceNode()->denseIndex()});
            }
            range.end = m_entries.size();
        }
    }

    // An edge that is not there; none ends that.
    void hide(const RVEdge* edge) { m_hidden = edge; }
    // To be told before the edge is inverted.
    void invert(const RVEdge* edge) {
        Places& own = places(edge);
        exchange(own.source, --rangeOf(edge->pSourceNode()).firstIn, &Places::source);
        exchange(own.target, rangeOf(edge->pTargetNode()).firstIn++, &Places::target);
        std::swap(own.source, own.target);
    }

    int outDegree(int node) const { return static_cast<int>(at(node).firstIn - at(node).begin); }
    int inDegree(int node) const { return static_cast<int>(at(node).end - at(node).firstIn); }
    template <class F>
    bool anyOut(int node, F f) const {
        return any(at(node).begin, at(node).firstIn, f);
    }
    template <class F>
    bool anyIn(int node, F f) const {
        return any(at(node).firstIn, at(node).end, f);
    }

private:
    struct Entry {
        RVEdge* edge;
        int other;
    };
    // Of a node's entries: the out-edges, then the in-edges.
    struct Range {
        std::size_t begin = 0;
        std::size_t firstIn = 0;
        std::size_t end = 0;
    };
    // Of an edge's entries.
    struct Places {
        std::size_t source = 0;
        std::size_t target = 0;
    };

    const Range& at(int node) const { return m_ranges[static_cast<std::size_t>(node)]; }
    Range& rangeOf(const RVNode* node) { return m_ranges[static_cast<std::size_t>(node->denseIndex())]; }
    Places& places(const RVEdge* edge) { return m_places[static_cast<std::size_t>(edge->denseIndex())]; }
    // Puts the entry at one place into the other one.
    void exchange(std::size_t& place, std::size_t other, std::size_t Places::*end) {
        places(m_entries[other].edge).*end = place;
        std::swap(m_entries[place], m_entries[other]);
        place = other;
    }
    template <class F>
    bool any(std::size_t begin, std::size_t end, F f) const {
        for (std::size_t i = begin; i < end; ++i) {
            if (m_entries[i].edge != m_hidden && f(m_entries[i].other, m_entries[i].edge)) return true;
        }
        return false;
    }

    std::vector<Entry> m_entries;
    std::vector<Range> m_ranges;   // by dense index
    std::vector<Places> m_places;  // by dense index
    const RVEdge* m_hidden = nullptr;
};

}  // namespace rv
