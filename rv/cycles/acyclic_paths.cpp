// Levels are a coarse topological order, kept in the way of Bender, Fineman, Gilbert and Tarjan (2015): an
// edge that comes in from a higher to a lower level lifts what its target reaches, or lowers what reaches its
// source, whichever of the two the search had exhausted.

#include "rv/cycles/acyclic_paths.h"

#include <algorithm>

namespace rv {

AcyclicPaths::AcyclicPaths(const RVGraph* graph) {
    const auto limit = static_cast<std::size_t>(graph->nodeIndexLimit());
    m_levels.resize(limit);
    m_marks.resize(limit);
    m_reachedBy.resize(limit);

    std::vector<int> inEdges(limit);
    std::vector<const RVNode*> order;
    for (const RVNode* node : *graph->pNodeList()) {
        inEdges[placeOf(node)] = node->inDegree();
        if (node->inDegree() == 0) order.push_back(node);
    }
    for (std::size_t i = 0; i < order.size(); ++i) {
        level(order[i]) = static_cast<int>(i);
        for (const RVEdge* edge : *order[i]->pOutEdgeList()) {
            if (--inEdges[placeOf(edge->pTargetNode())] == 0) order.push_back(edge->pTargetNode());
        }
    }
    if (order.size() != static_cast<std::size_t>(graph->numberOfNodes()))
        std::fill(m_levels.begin(), m_levels.end(), 0);
}

void AcyclicPaths::noteNode(const RVNode* node) {
    bool isSet = false;
    for (const RVEdge* edge : *node->pInEdgeList()) {
        const int source = level(edge->pSourceNode());
        level(node) = isSet ? std::max(level(node), source) : source;
        isSet = true;
    }
    if (isSet) return;
    for (const RVEdge* edge : *node->pOutEdgeList()) {
        const int target = level(edge->pTargetNode());
        level(node) = isSet ? std::min(level(node), target) : target;
        isSet = true;
    }
}

bool AcyclicPaths::pathExists(RVNode* from, RVNode* to) {
    m_meeting = nullptr;
    if (from == to) return true;
    const int lowest = level(from);
    const int highest = level(to);
    if (lowest > highest) return false;
    begin(m_forward, from);
    begin(m_backward, to);
    for (;;) {
        if (m_forward.next == m_forward.nodes.size()) {
            for (const RVNode* node : m_forward.nodes) level(node) = highest;
            return false;
        }
        if (m_backward.next == m_backward.nodes.size()) {
            for (const RVNode* node : m_backward.nodes) level(node) = lowest;
            return false;
        }
        const std::int64_t forward = m_forward.work + m_forward.nodes[m_forward.next]->outDegree();
        const std::int64_t backward = m_backward.work + m_backward.nodes[m_backward.next]->inDegree();
        if (forward <= backward ? extendForward(highest) : extendBackward(lowest)) return true;
    }
}

void AcyclicPaths::begin(Side& side, RVNode* node) {
    side.nodes.assign(1, node);
    side.next = 0;
    side.work = 0;
    side.mark = ++m_lastMark;
    m_marks[placeOf(node)] = side.mark;
    m_reachedBy[placeOf(node)] = nullptr;
}

bool AcyclicPaths::extendForward(int highest) {
    const RVNode* node = m_forward.nodes[m_forward.next++];
    m_forward.work += node->outDegree() + 1;
    for (RVEdge* edge : *node->pOutEdgeList()) {
        RVNode* target = edge->pTargetNode();
        if (level(target) <= highest && reach(m_forward, m_backward, target, edge)) return true;
    }
    return false;
}

bool AcyclicPaths::extendBackward(int lowest) {
    const RVNode* node = m_backward.nodes[m_backward.next++];
    m_backward.work += node->inDegree() + 1;
    for (RVEdge* edge : *node->pInEdgeList()) {
        RVNode* source = edge->pSourceNode();
        if (level(source) >= lowest && reach(m_backward, m_forward, source, edge)) return true;
    }
    return false;
}

// Whether the other side has been there.
bool AcyclicPaths::reach(Side& side, const Side& other, RVNode* node, RVEdge* edge) {
    std::uint64_t& mark = m_marks[placeOf(node)];
    if (mark == other.mark) {
        m_meeting = edge;
        return true;
    }
    if (mark == side.mark) return false;
    mark = side.mark;
    m_reachedBy[placeOf(node)] = edge;
    side.nodes.push_back(node);
    return false;
}

}  // namespace rv
