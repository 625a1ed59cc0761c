// The list of the nodes that are reached is its own queue. Nodes are joined to it without a branch: each
// target is written behind the last node, where it stays if it is new.

#include "rv/kernels/breadth_first.h"

#include <algorithm>
#include <utility>

#include "rv/foundation/prefetch.h"
#include "rv/kernels/search_starts.h"

namespace rv {

namespace {

class BreadthFirstSearch {
public:
    BreadthFirstSearch(const Arcs& arcs, Pulse& pulse) : m_arcs(arcs), m_pulse(pulse) {
        m_result.numbers.assign(arcs.nodeLimit(), 0);
        m_result.order.resize(std::size_t{arcs.nodeLimit()} + 1);
    }

    bool isReached(Index node) const { return m_result.numbers[node] != 0; }
    Index reached() const { return m_reached; }
    void searchFrom(Index start) {
        Index next = m_reached;
        reach(start);
        for (; next < m_reached; ++next) {
            prefetchAfter(next);
            expand(m_result.order[next]);
        }
    }
    BreadthFirst result() {
        m_result.order.resize(m_reached);
        return std::move(m_result);
    }

private:
    void reach(Index node) {
        m_result.order[m_reached] = node;
        m_result.numbers[node] = static_cast<int>(++m_reached);
    }
    void expand(Index node) {
        m_pulse.beat(1 + std::int64_t{m_arcs.degree(node)});
        Index* const order = m_result.order.data();
        int* const numbers = m_result.numbers.data();
        Index reached = m_reached;
        for (const Index target : m_arcs.targetsOf(node)) {
            const int number = numbers[target];
            order[reached] = target;
            reached += number == 0 ? 1 : 0;
            numbers[target] = number == 0 ? static_cast<int>(reached) : number;
        }
        m_reached = reached;
    }

    // The nodes in the queue are the future of the search.
    void prefetchAfter(Index place) const {
        const Index* const order = m_result.order.data();
        if (place + 16 < m_reached) prefetch(&m_arcs.first[order[place + 16]]);
        if (place + 8 < m_reached) prefetch(m_arcs.targets.data() + m_arcs.first[order[place + 8]]);
        if (place + 3 >= m_reached) return;
        const Index node = order[place + 3];
        const Index end = std::min(m_arcs.last[node], m_arcs.first[node] + 8);
        for (Index arc = m_arcs.first[node]; arc < end; ++arc)
            prefetch(&m_result.numbers[m_arcs.targets[arc]]);
    }

    const Arcs m_arcs;
    Pulse& m_pulse;
    BreadthFirst m_result;
    Index m_reached = 0;
};

}  // namespace

BreadthFirst breadthFirst(const SearchSpace& space, Pulse& pulse) {
    BreadthFirstSearch search(space.arcs, pulse);
    SearchStarts(space, search).searchAll();
    return search.result();
}

BreadthFirst breadthFirst(const Arcs& arcs, Index start, Pulse& pulse) {
    BreadthFirstSearch search(arcs, pulse);
    search.searchFrom(start);
    return search.result();
}

}  // namespace rv
