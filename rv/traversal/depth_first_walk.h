// Depth-first search in arrays: a node's last out-edge is tried first. Internal to the library, not
// installed.
#pragma once

#include <vector>

#include "rv/traversal/search_graph.h"

namespace rv {

// Derived has
//   void reach(Index node)                           a node was given its number
//   void traverse(Index node, const OutEdge& edge)   one of its edges, before the target is reached or met
//   void meet(Index node, Index target)              an edge led to a node that had a number
//   void complete(Index node)                        all its out-edges have been tried
template <class Derived>
class DepthFirstWalk {
public:
    using Index = SearchGraph::Index;
    static constexpr Index kNone = SearchGraph::kNone;

    void searchAll() {
        m_graph.forEachStart([this](Index node) { return number(node) != 0; },
                             [this](Index node) { searchFrom(node); });
    }
    // REQUIRES: the node has no number.
    void searchFrom(Index start) {
        reachFrom(kNone, start);
        for (Index node = start; node != kNone;) {
            State& state = m_states[node];
            if (state.left == 0) {
                derived().complete(node);
                node = state.parent;
                continue;
            }
            const SearchGraph::OutEdge& edge = m_graph.outEdges(node)[--state.left];
            derived().traverse(node, edge);
            if (number(edge.target) == 0) {
                reachFrom(node, edge.target);
                node = edge.target;
            } else {
                derived().meet(node, edge.target);
            }
        }
    }

    const SearchGraph& graph() const { return m_graph; }
    // From 1; 0 until the node is reached.
    Index number(Index node) const { return m_states[node].number; }
    // None for a start node, and before the node is reached.
    Index parent(Index node) const { return m_states[node].parent; }

protected:
    explicit DepthFirstWalk(const SearchGraph& graph) : m_graph(graph), m_states(graph.size()) {}
    ~DepthFirstWalk() = default;

private:
    struct State {
        Index number = 0;
        Index parent = kNone;
        Index left = 0;  // out-edges that were not tried
    };

    Derived& derived() { return static_cast<Derived&>(*this); }
    void reachFrom(Index parent, Index node) {
        m_states[node] = {++m_reached, parent, static_cast<Index>(m_graph.outEdges(node).size())};
        derived().reach(node);
    }

    const SearchGraph& m_graph;
    std::vector<State> m_states;
    Index m_reached = 0;
};

}  // namespace rv
