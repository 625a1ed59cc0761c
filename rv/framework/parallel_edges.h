// Which edges of a graph have parallels. Internal to the library, not installed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "rv/foundation/graph.h"
#include "rv/foundation/prefetch.h"

namespace rv {

// The groups of parallel edges of a graph that does not change meanwhile.
//
// Edges that may have parallels are found first, by the hashes of their pairs of ends, in one walk over the
// edge list. The groups of such an edge's source are then found exactly, when they are asked for, by one walk
// over the source's lists. O(n + m) in all, expected.
class ParallelEdges {
public:
    ParallelEdges(const RVGraph* graph, bool directed)
        : m_graph(graph), m_modifications(graph->modificationCount()), m_directed(directed) {
        findSuspects();
    }

    // Whether the answers hold: the graph has not been changed by a hook.
    bool holds(bool directed) const {
        return directed == m_directed && m_graph->modificationCount() == m_modifications;
    }

    // The parallels of an edge in the order in which its source's lists show them; empty when it has none.
    std::span<RVEdge* const> of(const RVEdge* edge) {
        if (!m_suspect[placeOf(edge)]) return {};
        const RVNode* source = edge->pSourceNode();
        if (m_analysed.empty()) {
            m_analysed.resize(static_cast<std::size_t>(m_graph->nodeIndexLimit()));
            m_ends.resize(m_analysed.size());
            m_groupOf.resize(m_suspect.size());
        }
        if (!m_analysed[placeOf(source)]) analyse(source);
        const std::uint32_t group = m_groupOf[placeOf(edge)];
        if (group == 0) return {};
        return {m_members.data() + m_groups[group - 1].begin, m_groups[group - 1].size};
    }

private:
    struct Group {
        std::size_t begin;
        std::size_t size;
    };
    // Of the edges between the node in hand and one other node.
    struct OtherEnd {
        int node = -1;  // the node in hand, else the rest is stale
        std::uint32_t count = 0;
        std::uint32_t group = 0;
    };

    // An edge in the table of hashes.
    struct Slot {
        std::uint32_t tag = 0;
        std::uint32_t edge = 0;  // dense index + 1, 0 in a free slot
    };

    static std::uint64_t hashOf(const RVEdge* edge, bool directed) {
        auto a = reinterpret_cast<std::uintptr_t>(edge->pSourceNode());
        auto b = reinterpret_cast<std::uintptr_t>(edge->pTargetNode());
        if (!directed && a > b) std::swap(a, b);
        std::uint64_t hash = (a * 0x9E3779B97F4A7C15ULL) ^ (b * 0xC2B2AE3D27D4EB4FULL);
        hash ^= hash >> 32;
        return hash * 0xBF58476D1CE4E5B9ULL;
    }

    // Marks every edge whose hash another edge has too. Edges are looked up some steps after their slot has
    // been asked for, so that the memory has time to answer.
    void findSuspects() {
        m_suspect.resize(static_cast<std::size_t>(m_graph->edgeIndexLimit()));
        int bits = 4;
        while ((std::int64_t{1} << bits) < 2 * std::int64_t{m_graph->numberOfEdges()}) ++bits;
        std::vector<Slot> table(std::size_t{1} << bits);
        const std::size_t mask = table.size() - 1;
        struct Pending {
            std::size_t slot;
            std::uint32_t tag;
            std::uint32_t edge;
        };
        constexpr std::size_t kAhead = 16;
        Pending pending[kAhead];
        std::size_t count = 0;
        const auto lookUp = [&](const Pending& entry) {
            std::size_t slot = entry.slot;
            for (; table[slot].edge != 0; slot = (slot + 1) & mask) {
                if (table[slot].tag != entry.tag) continue;
                m_suspect[table[slot].edge - 1] = true;
                m_suspect[entry.edge] = true;
                return;
            }
            table[slot] = {entry.tag, entry.edge + 1};
        };
        for (const RVEdge* edge : *m_graph->pEdgeList()) {
            if (edge->pSourceNode() == edge->pTargetNode() && !m_directed) m_suspect[placeOf(edge)] = true;
            const std::uint64_t hash = hashOf(edge, m_directed);
            Pending& entry = pending[count % kAhead];
            if (count >= kAhead) lookUp(entry);
            entry = {static_cast<std::size_t>(hash >> (64 - bits)), static_cast<std::uint32_t>(hash),
                     static_cast<std::uint32_t>(edge->denseIndex())};
            prefetch(&table[entry.slot]);
            ++count;
        }
        for (std::size_t i = count < kAhead ? 0 : count - kAhead; i < count; ++i) lookUp(pending[i % kAhead]);
    }

    template <class F>
    void forEachEdge(const RVNode* node, F f) {
        for (RVEdge* edge : *node->pOutEdgeList()) f(edge, edge->pTargetNode(), true);
        if (m_directed) return;
        for (RVEdge* edge : *node->pInEdgeList()) f(edge, edge->pSourceNode(), false);
    }

    void analyse(const RVNode* node) {
        m_analysed[placeOf(node)] = true;
        bool anyParallel = false;
        forEachEdge(node, [&](RVEdge*, const RVNode* other, bool) {
            OtherEnd& end = m_ends[placeOf(other)];
            if (end.node != node->denseIndex()) end = {node->denseIndex(), 0, 0};
            if (++end.count > 1) anyParallel = true;
        });
        if (!anyParallel) return;
        forEachEdge(node, [&](RVEdge* edge, const RVNode* other, bool out) {
            OtherEnd& end = m_ends[placeOf(other)];
            if (end.count < 2) return;
            if (end.group == 0) {
                m_groups.push_back({m_members.size(), 0});
                m_members.resize(m_members.size() + end.count);
                end.group = static_cast<std::uint32_t>(m_groups.size());
            }
            Group& group = m_groups[end.group - 1];
            m_members[group.begin + group.size++] = edge;
            if (out) m_groupOf[placeOf(edge)] = end.group;
        });
    }

    const RVGraph* m_graph;
    std::uint64_t m_modifications;
    bool m_directed;
    std::vector<bool> m_suspect;           // by edge: it may have parallels
    std::vector<OtherEnd> m_ends;          // by node
    std::vector<bool> m_analysed;          // by node
    std::vector<std::uint32_t> m_groupOf;  // by edge, from its source: place in m_groups + 1, 0 for none
    std::vector<Group> m_groups;
    std::vector<RVEdge*> m_members;
};

}  // namespace rv
