#include "rv/rootcause/range_search.h"

#include "rv/foundation/graph_access.h"

namespace rv {

namespace {

// As ArcWays, over the lists of the graph. Counts the arcs that it looks at.
template <class Cost, class IsFollowed>
struct LiveWays {
    std::span<RVNode* const> nodes;
    bool isForward;
    Cost cost;
    IsFollowed isFollowed;
    std::size_t& steps;

    template <class F>
    void forEach(Index node, F f) const {
        const RVNode* at = nodes[node];
        for (const RVEdge* edge : isForward ? *at->pOutEdgeList() : *at->pInEdgeList()) {
            ++steps;
            const Index number = indexOf(edge);
            const RVNode* other = isForward ? edge->pTargetNode() : edge->pSourceNode();
            if (isFollowed(number)) f(indexOf(other), number, cost(kNoIndex, number));
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
    const auto cost = [&question = m_question](Index, Index edge) { return question.costOfEdge(edge); };
    if (m_flat != nullptr) {
        search(start, pulse, [&](bool isForward, auto isFollowed) {
            return ArcWays(isForward ? m_flat->out() : m_flat->in(), cost, isFollowed);
        });
    } else {
        m_steps = 0;
        search(start, pulse, [&](bool isForward, auto isFollowed) {
            return LiveWays<decltype(cost), decltype(isFollowed)>{GraphAccess::nodes(m_question.graph),
                                                                  isForward, cost, isFollowed, m_steps};
        });
        noteWalk(m_question.graph, m_steps);
    }
    return m_scratch->reached;
}

template <class WaysOf>
void RangeSearch::search(Index start, Pulse& pulse, WaysOf waysOf) {
    const RangeQuestion& question = m_question;
    const auto leaving = [&](Index node) { return question.hasCosts ? question.costOfNode(node) : 0; };
    const auto find = [&](const auto&... ways) {
        findNearest(NearestWays(leaving, ways...), start, NearestBounds<int>{question.range},
                    m_scratch->labels, m_scratch->reached, pulse);
    };
    if (question.hasBothWays()) {
        find(waysOf(true, [&](Index edge) { return question.isFollowed(edge, true); }),
             waysOf(false, [&](Index edge) { return question.isFollowed(edge, false); }));
    } else {
        find(waysOf(!question.isReversed, EveryEdge()));
    }
}

}  // namespace rv
