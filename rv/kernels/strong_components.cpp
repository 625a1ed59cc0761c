// Invariant: the unfinished nodes are those reached and without a component, in the order in which they were
// reached; the low point of one is the number of an unfinished node that it reaches, the smallest that is
// known. A node that completes with its own number for a low point closes a component: itself and all
// unfinished nodes reached after it. From then on their numbers are above all low points, so that arcs to
// them change nothing.
//
// The nodes of closed components fill an array from the front, the unfinished ones from the back.

#include "rv/kernels/strong_components.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "rv/kernels/depth_first_scan.h"
#include "rv/kernels/search_starts.h"

namespace rv {

namespace {

class StrongSearch : public DepthFirstScan<StrongSearch> {
public:
    StrongSearch(const SearchSpace& space, Pulse& pulse)
        : DepthFirstScan(space.arcs, pulse), m_low(space.nodeLimit()), m_top(space.order.nodeCount) {
        m_components.numbers.assign(space.nodeLimit(), 0);
        m_components.groups.nodes.resize(m_top);
    }

    void reach(Index node) {
        m_low[node] = m_numbers[node];
        m_components.groups.nodes[--m_top] = node;
    }
    void meet(Index node, Index target) { m_low[node] = std::min(m_low[node], m_numbers[target]); }
    void complete(Index node, Index parent) {
        if (m_low[node] == m_numbers[node]) {
            closeComponent(node);
        } else {
            m_low[parent] = std::min(m_low[parent], m_low[node]);  // a root closes its component
        }
    }
    Components result() { return std::move(m_components); }

private:
    void closeComponent(Index root) {
        NodeGroups& groups = m_components.groups;
        const auto number = static_cast<int>(groups.begins.size());
        Index end = groups.begins.back();
        for (Index node = kNoIndex; node != root;) {
            node = groups.nodes[m_top++];
            groups.nodes[end++] = node;
            m_components.numbers[node] = number;
            m_numbers[node] = std::numeric_limits<int>::max();
        }
        groups.begins.push_back(end);
    }

    Buffer<int> m_low;  // by node
    Index m_top;        // of the unfinished nodes
    Components m_components;
};

}  // namespace

Components strongComponents(const SearchSpace& space, Pulse& pulse) {
    StrongSearch search(space, pulse);
    SearchStarts(space, search).searchAll();
    return search.result();
}

}  // namespace rv
