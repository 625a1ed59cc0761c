#include "rv/rootcause/range_search.h"

#include "rv/foundation/graph_access.h"

namespace rv {

namespace {

// The arcs of nodes one way, in the snapshot and over the lists of the graph. forEach calls f(edge, other
// end).
struct FlatHalf {
    const Arcs& arcs;

    template <class F>
    void forEach(Index node, F f) const {
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc)
            f(arcs.edges[arc], arcs.targets[arc]);
    }
};
struct LiveHalf {
    std::span<RVNode* const> nodes;
    bool isForward;

    template <class F>
    void forEach(Index node, F f) const {
        const RVNode* at = nodes[node];
        for (const RVEdge* edge : isForward ? *at->pOutEdgeList() : *at->pInEdgeList())
            f(indexOf(edge), indexOf(isForward ? edge->pTargetNode() : edge->pSourceNode()));
    }
};

// All ways out of a node (nearest.h).
template <class Half>
struct Ways {
    const RangeQuestion& question;
    const Half& out;
    const Half& in;
    std::size_t& steps;

    int leaving(Index node) const { return question.hasCosts ? question.costOfNode(node) : 0; }
    template <class F>
    void forEach(Index node, F f) const {
        forEachOf(out, true, node, f);
        forEachOf(in, false, node, f);
    }

private:
    template <class F>
    void forEachOf(const Half& half, bool isForward, Index node, F f) const {
        if (isForward == question.isReversed && !question.hasBothWays()) return;
        half.forEach(node, [&](Index edge, Index other) {
            ++steps;
            if (question.isFollowed(edge, isForward)) f(other, edge, question.costOfEdge(edge));
        });
    }
};

}  // namespace

RangeSearch::RangeSearch(const RangeQuestion& question)
    : m_question(question), m_flat(snapshotForPart(question.graph)), m_scratch(question.graph) {}

std::span<const Index> RangeSearch::reach(Index start, Pulse& pulse) {
    m_scratch->labels.begin(nodeLimitOf(m_question.graph));
    m_scratch->reached.clear();
    if (m_flat == nullptr && m_steps > 0) m_flat = snapshotForPart(m_question.graph);
    if (m_flat != nullptr) {
        search(FlatHalf{m_flat->out()}, FlatHalf{m_flat->in()}, start, pulse);
    } else {
        const std::span<RVNode* const> nodes = GraphAccess::nodes(m_question.graph);
        search(LiveHalf{nodes, true}, LiveHalf{nodes, false}, start, pulse);
        noteWalk(m_question.graph, m_steps);
    }
    return m_scratch->reached;
}

template <class Half>
void RangeSearch::search(const Half& out, const Half& in, Index start, Pulse& pulse) {
    m_steps = 0;
    const Ways<Half> ways{m_question, out, in, m_steps};
    findNearest(ways, start, NearestBounds<int>{m_question.range}, m_scratch->labels, m_scratch->reached,
                pulse);
}

}  // namespace rv
