// The neighbours of the nodes of a graph, as path tests ask for them: nodes by dense index. Internal to the
// library.
//
// out(node) and in(node) give cursors over the edges from and to a node; step(edge, node) gives the next edge
// and the node at its other end, and false when there is none.
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
    void noteNode(const RVNode* node) { m_nodes[placeOf(node)] = node; }

    class Cursor {
    public:
        Cursor() = default;
        Cursor(const RVEdgeDList* edges, bool isOut) : m_pCell(edges->pFirstCell()), m_isOut(isOut) {}
        bool step(RVEdge*& edge, int& node) {
            if (m_pCell == nullptr) return false;
            edge = static_cast<RVEdge*>(m_pCell->pObject());
            node = (m_isOut ? edge->pTargetNode() : edge->pSourceNode())->denseIndex();
            m_pCell = m_pCell->pNextCell();
            return true;
        }

    private:
        const RVDListCell* m_pCell = nullptr;
        bool m_isOut = true;
    };
    Cursor out(int node) const { return {at(node)->pOutEdgeList(), true}; }
    Cursor in(int node) const { return {at(node)->pInEdgeList(), false}; }

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
            Range& range = m_ranges[placeOf(node)];
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

    // To be told before the edge is inverted.
    void invert(const RVEdge* edge) {
        Places& own = places(edge);
        exchange(own.source, --rangeOf(edge->pSourceNode()).firstIn, &Places::source);
        exchange(own.target, rangeOf(edge->pTargetNode()).firstIn++, &Places::target);
        std::swap(own.source, own.target);
    }

private:
    struct Entry {
        RVEdge* edge;
        int other;
    };

public:
    class Cursor {
    public:
        Cursor() = default;
        Cursor(const Entry* begin, const Entry* end) : m_pEntry(begin), m_pEnd(end) {}
        bool step(RVEdge*& edge, int& node) {
            if (m_pEntry == m_pEnd) return false;
            edge = m_pEntry->edge;
            node = m_pEntry->other;
            ++m_pEntry;
            return true;
        }

    private:
        const Entry* m_pEntry = nullptr;
        const Entry* m_pEnd = nullptr;
    };
    Cursor out(int node) const { return {place(at(node).begin), place(at(node).firstIn)}; }
    Cursor in(int node) const { return {place(at(node).firstIn), place(at(node).end)}; }

private:
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

    const Entry* place(std::size_t i) const { return m_entries.data() + i; }
    const Range& at(int node) const { return m_ranges[static_cast<std::size_t>(node)]; }
    Range& rangeOf(const RVNode* node) { return m_ranges[placeOf(node)]; }
    Places& places(const RVEdge* edge) { return m_places[placeOf(edge)]; }
    // Puts the entry at one place into the other one.
    void exchange(std::size_t& place, std::size_t other, std::size_t Places::*end) {
        places(m_entries[other].edge).*end = place;
        std::swap(m_entries[place], m_entries[other]);
        place = other;
    }
    std::vector<Entry> m_entries;
    std::vector<Range> m_ranges;   // by dense index
    std::vector<Places> m_places;  // by dense index
};

}  // namespace rv
