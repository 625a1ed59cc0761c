// Path tests in a graph that is acyclic and into which edges come one by one. Internal to the library.
//
// A path is searched from both ends at once, the side with less work first, so that a test ends when the
// smaller of the two sets of nodes is exhausted. Nodes have levels: no edge leads to a lower level than it
// comes from, so a search from one node to another does not look beyond their levels. Levels are a coarse
// topological order, kept in the way of Bender, Fineman, Gilbert and Tarjan (2015): an edge that comes in
// from a higher to a lower level lifts what its target reaches, or lowers what reaches its source, whichever
// of the two a search has exhausted.
//
// O(n + m) time for a test, the levels allowing; O(n) space beside the neighbours.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/cycles/neighbours.h"

namespace rv {

template <class Neighbours>
class AcyclicPaths {
public:
    // Levels by topological order. In a graph with a cycle all levels are equal, and nothing is excluded.
    explicit AcyclicPaths(const RVGraph* graph)
        : m_neighbours(graph), m_states(static_cast<std::size_t>(graph->nodeIndexLimit())) {
        std::vector<int> inEdges(m_states.size());
        std::vector<int> order;
        for (const RVNode* node : *graph->pNodeList()) {
            inEdges[static_cast<std::size_t>(node->denseIndex())] = node->inDegree();
            if (node->inDegree() == 0) order.push_back(node->denseIndex());
        }
        for (std::size_t i = 0; i < order.size(); ++i) {
            state(order[i]).level = static_cast<int>(i);
            m_neighbours.anyOut(order[i], [&](int target, RVEdge*) {
                if (--inEdges[static_cast<std::size_t>(target)] == 0) order.push_back(target);
                return false;
            });
        }
        if (order.size() == static_cast<std::size_t>(graph->numberOfNodes())) return;
        for (State& each : m_states) each.level = 0;
    }

    Neighbours& neighbours() { return m_neighbours; }

    // Whether there is a path between two nodes. When there is none, levels are changed so that an edge from
    // `to` to `from` may come in.
    bool pathExists(const RVNode* from, const RVNode* to) {
        m_pMeeting = nullptr;
        if (from == to) return true;
        const int lowest = state(from).level;
        const int highest = state(to).level;
        if (lowest > highest) return false;
        begin(m_forward, from);
        begin(m_backward, to);
        const auto reachForward = [&](int node, RVEdge* edge) {
            return state(node).level <= highest && reach(m_forward, m_backward, node, edge);
        };
        const auto reachBackward = [&](int node, RVEdge* edge) {
            return state(node).level >= lowest && reach(m_backward, m_forward, node, edge);
        };
        while (!m_forward.isExhausted() && !m_backward.isExhausted()) {
            const int first = m_forward.nodes[m_forward.next];
            const int last = m_backward.nodes[m_backward.next];
            const std::int64_t forward = m_forward.work + m_neighbours.outDegree(first) + 1;
            const std::int64_t backward = m_backward.work + m_neighbours.inDegree(last) + 1;
            const bool goesForward = forward <= backward;
            Side& side = goesForward ? m_forward : m_backward;
            ++side.next;
            side.work = goesForward ? forward : backward;
            if (goesForward ? m_neighbours.anyOut(first, reachForward)
                            : m_neighbours.anyIn(last, reachBackward))
                return true;
        }
        const bool lifts = m_forward.isExhausted();
        for (const int node : (lifts ? m_forward : m_backward).nodes)
            state(node).level = lifts ? highest : lowest;
        return false;
    }

    // Calls f(edge) for every edge of the path that the last test found, in no particular order.
    template <class F>
    void forEachPathEdge(F f) {
        if (m_pMeeting == nullptr) return;
        f(m_pMeeting);
        const auto before = [&](const RVEdge* edge) { return state(edge->pSourceNode()).pReachedBy; };
        const auto behind = [&](const RVEdge* edge) { return state(edge->pTargetNode()).pReachedBy; };
        for (RVEdge* edge = before(m_pMeeting); edge != nullptr; edge = before(edge)) f(edge);
        for (RVEdge* edge = behind(m_pMeeting); edge != nullptr; edge = behind(edge)) f(edge);
    }

    // A node of two edges has come in: no path leads through it, or one in place of an edge between its
    // neighbours.
    void noteNode(const RVNode* node) {
        m_neighbours.noteNode(node);
        const int index = node->denseIndex();
        int& level = state(index).level;
        bool isSet = false;
        m_neighbours.anyIn(index, [&](int source, RVEdge*) {
            level = isSet ? std::max(level, state(source).level) : state(source).level;
            isSet = true;
            return false;
        });
        if (isSet) return;
        m_neighbours.anyOut(index, [&](int target, RVEdge*) {
            level = isSet ? std::min(level, state(target).level) : state(target).level;
            isSet = true;
            return false;
        });
    }

private:
    struct State {
        int level = 0;
        std::uint64_t mark = 0;        // of the side and the test that last reached the node
        RVEdge* pReachedBy = nullptr;  // then
    };
    // The nodes reached from one end, in order, and what looking at them cost.
    struct Side {
        bool isExhausted() const { return next == nodes.size(); }
        std::vector<int> nodes;
        std::size_t next = 0;
        std::int64_t work = 0;
        std::uint64_t mark = 0;
    };

    State& state(int node) { return m_states[static_cast<std::size_t>(node)]; }
    State& state(const RVNode* node) { return state(node->denseIndex()); }

    void begin(Side& side, const RVNode* node) {
        side.nodes.assign(1, node->denseIndex());
        side.next = 0;
        side.work = 0;
        side.mark = ++m_lastMark;
        state(node).mark = side.mark;
        state(node).pReachedBy = nullptr;
    }

    // Whether the other side has been there.
    bool reach(Side& side, const Side& other, int node, RVEdge* edge) {
        State& reached = state(node);
        if (reached.mark == other.mark) {
            m_pMeeting = edge;
            return true;
        }
        if (reached.mark == side.mark) return false;
        reached.mark = side.mark;
        reached.pReachedBy = edge;
        side.nodes.push_back(node);
        return false;
    }

    Neighbours m_neighbours;
    std::vector<State> m_states;   // by dense index
    RVEdge* m_pMeeting = nullptr;  // between what the sides have reached
    std::uint64_t m_lastMark = 0;
    Side m_forward;
    Side m_backward;
};

}  // namespace rv
