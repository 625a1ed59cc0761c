// Invariant: the unfinished nodes are those reached that are in no block yet but as the joint of blocks below
// them, in the order in which they were reached; the low point of a node is the smallest number that it, or a
// completed child, has met. Since a child meets its parent, its low point is at most the parent's number: it
// equals that number exactly when the parent joins the child's block to the rest.

#include "rv/kernels/blocks.h"

#include <algorithm>
#include <utility>

#include "rv/kernels/depth_first_scan.h"
#include "rv/kernels/search_starts.h"

namespace rv {

namespace {

class BlockSearch : public DepthFirstScan<BlockSearch> {
public:
    BlockSearch(const SearchSpace& space, Pulse& pulse)
        : DepthFirstScan(space.arcs, pulse),
          m_space(space),
          m_low(space.nodeLimit()),
          m_joined(space.nodeLimit(), 0),
          m_unfinished(space.order.nodeCount) {}

    void reach(Index node) {
        m_low[node] = m_numbers[node];
        m_unfinished[m_top++] = node;
    }
    void meet(Index node, Index target) { m_low[node] = std::min(m_low[node], m_numbers[target]); }
    void complete(Index node, Index parent) {
        if (parent == kNoIndex) {
            if (m_space.isIsolated(node)) closeBlock(node);
            return;
        }
        if (m_low[node] == m_numbers[parent]) {
            closeBlock(node, parent);
        } else {
            m_low[parent] = std::min(m_low[parent], m_low[node]);
        }
    }
    Blocks result() { return std::move(m_blocks); }

private:
    void closeBlock(Index first) {
        NodeGroups& groups = m_blocks.groups;
        for (Index node = kNoIndex; node != first;) groups.nodes.push_back(node = m_unfinished[--m_top]);
        groups.begins.push_back(static_cast<Index>(groups.nodes.size()));
    }
    void closeBlock(Index first, Index joint) {
        closeBlock(first);
        m_blocks.groups.nodes.push_back(joint);
        ++m_blocks.groups.begins.back();
        const bool isRoot = m_parents[joint] == kNoIndex;
        if (++m_joined[joint] == (isRoot ? 2 : 1)) m_blocks.articulationNodes.push_back(joint);
    }

    const SearchSpace& m_space;
    Buffer<int> m_low;     // by node
    Buffer<int> m_joined;  // by node, the blocks below it that are closed
    Buffer<Index> m_unfinished;
    Index m_top = 0;
    Blocks m_blocks;
};

}  // namespace

Blocks blocks(const SearchSpace& space, Pulse& pulse) {
    BlockSearch search(space, pulse);
    SearchStarts(space, search).searchAll();
    return search.result();
}

}  // namespace rv
