// The edges of a graph by their ends, in a hash table that grows with the graph's edges. Internal to the
// library.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/foundation/graph.h"

namespace rv {

class EdgeIndex {
public:
    // The edges from one node to another, linked in the order in which they were added.
    struct Group {
        std::uint64_t ends = 0;
        RVEdge* first = nullptr;
        RVEdge* last = nullptr;
        bool isTouched = false;  // for the user

        bool hasParallels() const { return first != last; }
    };

    // All edges of the graph, those of each node in out-edge order.
    explicit EdgeIndex(const RVGraph* graph) {
        m_next.resize(static_cast<std::size_t>(graph->edgeIndexLimit()));
        reserveSlots(static_cast<std::size_t>(graph->numberOfEdges()));
        for (const RVNode* node : *graph->pNodeList()) {
            for (RVEdge* edge : *node->pOutEdgeList()) add(edge);
        }
    }

    // The group of the edges from source to target; none without such an edge. Valid until an edge is added.
    Group* find(const RVNode* source, const RVNode* target) {
        const std::uint32_t found = m_slots[slotOf(endsOf(source, target))];
        return found == 0 || m_groups[found - 1].first == nullptr ? nullptr : &m_groups[found - 1];
    }
    Group* find(const RVEdge* edge) { return find(edge->pSourceNode(), edge->pTargetNode()); }
    // The next edge of the same group, or none.
    RVEdge* next(const RVEdge* edge) const { return m_next[placeOf(edge)]; }

    // Behind the others of its group.
    void add(RVEdge* edge) {
        const std::uint64_t ends = endsOf(edge->pSourceNode(), edge->pTargetNode());
        if (m_slots.size() < 2 * (m_groups.size() + 1)) reserveSlots(2 * m_groups.size());
        std::uint32_t& slot = m_slots[slotOf(ends)];
        if (slot == 0) {
            m_groups.push_back({ends});
            slot = static_cast<std::uint32_t>(m_groups.size());
        }
        if (placeOf(edge) >= m_next.size()) m_next.resize(placeOf(edge) + 1);
        m_next[placeOf(edge)] = nullptr;
        Group& group = m_groups[slot - 1];
        (group.first == nullptr ? group.first : m_next[placeOf(group.last)]) = edge;
        group.last = edge;
    }
    // Takes out all edges with the ends of this one.
    void removeGroup(const RVEdge* edge) {
        if (Group* group = find(edge)) group->first = group->last = nullptr;
    }

private:
    static std::uint64_t endsOf(const RVNode* source, const RVNode* target) {
        return static_cast<std::uint64_t>(source->denseIndex()) << 32 |
               static_cast<std::uint32_t>(target->denseIndex());
    }
    std::size_t slotOf(std::uint64_t ends) const {
        const std::uint64_t hash = (ends ^ ends >> 29) * 0x9E3779B97F4A7C15ULL;
        std::size_t slot = static_cast<std::size_t>(hash >> 32) & (m_slots.size() - 1);
        while (m_slots[slot] != 0 && m_groups[m_slots[slot] - 1].ends != ends)
            slot = (slot + 1) & (m_slots.size() - 1);
        return slot;
    }
    void reserveSlots(std::size_t groups) {
        std::size_t size = 16;
        while (size < 2 * groups) size *= 2;
        m_slots.assign(size, 0);
        for (std::size_t i = 0; i < m_groups.size(); ++i)
            m_slots[slotOf(m_groups[i].ends)] = static_cast<std::uint32_t>(i + 1);
    }

    std::vector<Group> m_groups;
    std::vector<std::uint32_t>
        m_slots;                  // place in m_groups + 1, 0 when free; a power of two, half full at most
    std::vector<RVEdge*> m_next;  // by dense index
};

}  // namespace rv
