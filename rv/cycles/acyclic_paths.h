// Path tests in a graph that is acyclic and into which edges come one by one. Internal to the library.
//
// A path is searched from both ends at once, the side with less work first, so that a test ends when the
// smaller of the two sets of nodes is exhausted. Nodes have levels: no edge leads to a lower level than it
// comes from, so a search from one node to another does not look beyond their levels.
//
// O(n + m) time for a test, the levels allowing; O(n) space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/foundation/graph.h"

namespace rv {

class AcyclicPaths {
public:
    // Levels by topological order. In a graph with a cycle all levels are equal, and nothing is excluded.
    explicit AcyclicPaths(const RVGraph* graph);

    // Whether there is a path between two nodes. When there is none, levels are changed so that an edge from
    // `to` to `from` may come in.
    bool pathExists(RVNode* from, RVNode* to);
    // Calls f(edge) for every edge of the path that the last test found, in no particular order.
    template <class F>
    void forEachPathEdge(F f) const {
        if (m_meeting == nullptr) return;
        f(m_meeting);
        const auto before = [&](const RVEdge* edge) { return m_reachedBy[placeOf(edge->pSourceNode())]; };
        const auto behind = [&](const RVEdge* edge) { return m_reachedBy[placeOf(edge->pTargetNode())]; };
        for (RVEdge* edge = before(m_meeting); edge != nullptr; edge = before(edge)) f(edge);
        for (RVEdge* edge = behind(m_meeting); edge != nullptr; edge = behind(edge)) f(edge);
    }
    // A node of two edges has come in: no path leads through it, or one in place of an edge between its
    // neighbours.
    void noteNode(const RVNode* node);

private:
    // The nodes seen from one end, in the order in which they were reached, and what looking at them cost.
    struct Side {
        std::vector<RVNode*> nodes;
        std::size_t next = 0;
        std::int64_t work = 0;
        std::uint64_t mark = 0;
    };

    int& level(const RVNode* node) { return m_levels[placeOf(node)]; }
    static std::size_t placeOf(const RVNode* node) { return static_cast<std::size_t>(node->denseIndex()); }
    void begin(Side& side, RVNode* node);
    bool extendForward(int highest);
    bool extendBackward(int lowest);
    bool reach(Side& side, const Side& other, RVNode* node, RVEdge* edge);

    std::vector<int> m_levels;           // by dense index
    std::vector<std::uint64_t> m_marks;  // of the side and the test that last reached the node
    std::vector<RVEdge*> m_reachedBy;    // of a node with the mark: the edge that the test came by
    RVEdge* m_meeting = nullptr;         // between what the sides have reached
    std::uint64_t m_lastMark = 0;
    Side m_forward;
    Side m_backward;
};

}  // namespace rv
