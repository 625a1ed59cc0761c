// Path tests in a graph that is acyclic and into which edges come one by one. Internal to the library.
//
// A path is searched from both ends at once, edge by edge in turn, so that a test ends when the side with
// the fewer edges is exhausted. Nodes have levels: no edge leads to a lower level than it comes from, so a
// search from one node to another does not look beyond their levels. Levels are a coarse topological order,
// kept in the way of Bender, Fineman, Gilbert and Tarjan (2015): an edge that comes in from a higher to a
// lower level lifts what its target reaches, or lowers what reaches its source, whichever of the two a search
// has exhausted.
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
            inEdges[placeOf(node)] = node->inDegree();
            if (node->inDegree() == 0) order.push_back(node->denseIndex());
        }
        for (std::size_t i = 0; i < order.size(); ++i) {
            state(order[i]).level = static_cast<int>(i);
            forEach(m_neighbours.out(order[i]), [&](int target) {
                if (--inEdges[static_cast<std::size_t>(target)] == 0) order.push_back(target);
            });
        }
        if (order.size() == static_cast<std::size_t>(graph->numberOfNodes())) return;
        for (State& each : m_states) each.level = 0;
    }

    Neighbours& neighbours() { return m_neighbours; }
    // An edge that tests do not see; none ends that.
    void hide(const RVEdge* edge) { m_pHidden = edge; }

    // Whether there is a path between two nodes. When there is none, levels are changed so that an edge from
    // `to` to `from` may come in.
    bool pathExists(const RVNode* from, const RVNode* to) {
        m_pMeeting = nullptr;
        if (from == to) return true;
        const int lowest = state(from).level;
        const int highest = state(to).level;
        if (lowest > highest) return false;
        begin(m_forward, from, m_neighbours.out(from->denseIndex()));
        begin(m_backward, to, m_neighbours.in(to->denseIndex()));
        for (bool forward = true;; forward = !forward) {
            Side& side = forward ? m_forward : m_backward;
            RVEdge* edge = nullptr;
            int node = 0;
            if (!side.edges.step(edge, node)) {
                if (side.next == side.nodes.size()) {
                    for (const int each : side.nodes) state(each).level = forward ? highest : lowest;
                    return false;
                }
                node = side.nodes[side.next++];
                side.edges = forward ? m_neighbours.out(node) : m_neighbours.in(node);
                continue;
            }
            const int level = state(node).level;
            if (edge == m_pHidden || level < lowest || level > highest) continue;
            if (reach(side, forward ? m_backward : m_forward, node, edge)) return true;
        }
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
        forEach(m_neighbours.in(index), [&](int source) {
            level = isSet ? std::max(level, state(source).level) : state(source).level;
            isSet = true;
        });
        if (isSet) return;
        forEach(m_neighbours.out(index), [&](int target) {
            level = isSet ? std::min(level, state(target).level) : state(target).level;
            isSet = true;
        });
    }

private:
    struct State {
        int level = 0;
        std::uint64_t mark = 0;        // of the side and the test that last reached the node
        RVEdge* pReachedBy = nullptr;  // then
    };
    using Cursor = typename Neighbours::Cursor;
    // The nodes reached from one end, in order, and the edges left of the one in hand.
    struct Side {
        std::vector<int> nodes;
        std::size_t next = 0;  // behind the one in hand
        Cursor edges;
        std::uint64_t mark = 0;
    };

    template <class F>
    static void forEach(Cursor cursor, F f) {
        RVEdge* edge = nullptr;
        int node = 0;
        while (cursor.step(edge, node)) f(node);
    }

    State& state(int node) { return m_states[static_cast<std::size_t>(node)]; }
    State& state(const RVNode* node) { return state(node->denseIndex()); }

    void begin(Side& side, const RVNode* node, Cursor edges) {
        side.nodes.assign(1, node->denseIndex());
        side.next = 1;
        side.edges = edges;
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
    const RVEdge* m_pHidden = nullptr;
    std::uint64_t m_lastMark = 0;
    Side m_forward;
    Side m_backward;
};

}  // namespace rv
