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
    std::size_t& steps;

    template <class F>
    void forEach(Index node, F f) const {
        const RVNode* at = nodes[node];
        for (const RVEdge* edge : isForward ? *at->pOutEdgeList() : *at->pInEdgeList()) {
            ++steps;
            f(indexOf(edge), indexOf(isForward ? edge->pTargetNode() : edge->pSourceNode()));
        }
    }
};

// All ways out of a node (nearest.h).
template <class Half>
struct Ways {
    const RangeQuestion& question;
    const Half& out;
    const Half& in;

    int leaving(Index node) const { return question.hasCosts ? question.costOfNode(node) : 0; }
    template <class F>
    void forEach(Index node, F f) const {
        const auto follow = [&](Index edge, Index other) { f(other, edge, question.costOfEdge(edge)); };
        if (!question.hasBothWays()) {
            (question.isReversed ? in : out).forEach(node, follow);
            return;
        }
        for (const bool isForward : {true, false}) {
            (isForward ? out : in).forEach(node, [&](Index edge, Index other) {
                if (question.isFollowed(edge, isForward)) follow(edge, other);
            });
        }
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
        m_steps = 0;
        search(LiveHalf{nodes, true, m_steps}, LiveHalf{nodes, false, m_steps}, start, pulse);
        noteWalk(m_question.graph, m_steps);
    }
    return m_scratch->reached;
}

template <class Half>
void RangeSearch::search(const Half& out, const Half& in, Index start, Pulse& pulse) {
    findNearest(Ways<Half>{m_question, out, in}, start, NearestBounds<int>{m_question.range},
                m_scratch->labels, m_scratch->reached, pulse);
}

}  // namespace rv
