#include "rv/kernels/depth_first.h"

#include "rv/kernels/depth_first_scan.h"
#include "rv/kernels/search_starts.h"

namespace rv {

namespace {

class DepthFirstSearch : public DepthFirstScan<DepthFirstSearch> {
public:
    DepthFirstSearch(const Arcs& arcs, Pulse& pulse)
        : DepthFirstScan(arcs, pulse), m_completions(arcs.nodeLimit(), 0), m_order(arcs.nodeLimit()) {}

    void reach(Index node) { m_order[reached() - 1] = node; }
    void meet(Index, Index) {}
    void complete(Index node, Index) { m_completions[node] = ++m_completed; }

    DepthFirst result() {
        m_order.resize(reached());
        return {std::move(m_numbers), std::move(m_completions), std::move(m_parents), std::move(m_order)};
    }

private:
    Buffer<int> m_completions;
    int m_completed = 0;
    Buffer<Index> m_order;
};

}  // namespace

DepthFirst depthFirst(const SearchSpace& space, Pulse& pulse) {
    DepthFirstSearch search(space.arcs, pulse);
    SearchStarts(space, search).searchAll();
    return search.result();
}

DepthFirst depthFirst(const Arcs& arcs, Index start, Pulse& pulse) {
    DepthFirstSearch search(arcs, pulse);
    search.searchFrom(start);
    return search.result();
}

}  // namespace rv
